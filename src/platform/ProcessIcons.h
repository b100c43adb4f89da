#pragma once

#include <QString>

namespace pulsebar {

/// Finds the icon of the application that a process belongs to.
class ProcessIcons
{
public:
    virtual ~ProcessIcons() = default;
    /// @param pid process number in decimal digits
    /// @return a themed icon's name or an absolute path of an image file; empty when nothing
    ///         better than a generic program icon is known. Never blocks for long: at most a
    ///         few small file reads.
    virtual QString iconForPID(const QString &pid) = 0;
};

} // namespace pulsebar
