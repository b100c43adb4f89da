#pragma once

#include <QString>

#include <functional>

namespace pulsebar {

/// The desktop's file manager.
class FileViewer
{
public:
    virtual ~FileViewer() = default;

    /// Asks it to open the folder of a file with the file selected. Never waits for it.
    /// @param path absolute path
    /// @param otherwise called later, once, when no file manager does that
    virtual void showFile(const QString &path, std::function<void()> otherwise) = 0;
};

} // namespace pulsebar
