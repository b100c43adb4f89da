#pragma once

#include <QUrl>

namespace pulsebar {

/// Hands what a URL names to the program that the user has chosen for its kind.
class UrlOpener
{
public:
    virtual ~UrlOpener() = default;
    /// Returns at once; what becomes of it is not waited for.
    /// @return false when there is nothing to hand it to, which is logged once
    virtual bool open(const QUrl &url) = 0;
};

} // namespace pulsebar
