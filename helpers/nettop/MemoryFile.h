#pragma once

#include "nettop/MemoryFormat.h"

#include <optional>
#include <string>

namespace pulsebar::nettop {

/// The memory on disk: `pulsebar/nettop.state` in a folder of the user's own. It may be deleted or
/// overwritten at any moment, by anybody who may; then there is nothing to remember.
///
/// While an object lives, others of this kind wait before they read the file: what one of them
/// makes of the memory is not overwritten by somebody who has not seen it. Who has waited for a
/// tenth of a second (the other may have been stopped) reads what there is, and does not write.
class MemoryFile
{
public:
    /// @param runtimeFolder as $XDG_RUNTIME_DIR; not used unless it is an absolute path and a
    ///        folder of this user's. Empty: there is no memory
    MemoryFile(const std::string &runtimeFolder, const MemoryOrigin &origin);
    ~MemoryFile();
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    /// Absent when there is none, or it is not to be trusted.
    std::optional<Memory> read() const;
    /// Replaces the file as a whole. False when it stays as it is, or could not be written.
    bool write(const Memory &memory) const;

private:
    bool lock() const;
    bool writeNew(std::string_view bytes) const;

    MemoryOrigin m_origin;
    int m_folder = -1;
    bool m_isLocked = false;
};

} // namespace pulsebar::nettop
