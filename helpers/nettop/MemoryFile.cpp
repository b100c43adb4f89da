#include "nettop/MemoryFile.h"

#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace pulsebar::nettop {

namespace {

constexpr const char *subfolder = "pulsebar";
constexpr const char *fileName = "nettop.state";
constexpr const char *newFileName = "nettop.state.new";

/// Nobody else may put something there, or change what is there.
bool isOwn(int descriptor, mode_t type)
{
    struct stat facts
    {
    };
    return ::fstat(descriptor, &facts) == 0 && (facts.st_mode & S_IFMT) == type &&
           facts.st_uid == ::geteuid() && (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

int closeUnless(bool good, int descriptor)
{
    if (good || descriptor < 0)
        return descriptor;
    ::close(descriptor);
    return -1;
}

/// The folder for this program's files, made when it is missing; -1 when it is not to be used.
int openFolder(const std::string &runtimeFolder)
{
    if (!runtimeFolder.starts_with('/'))
        return -1;
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const int parent = ::open(runtimeFolder.c_str(), flags);
    // A folder made in another user's would be in that user's way.
    struct stat facts
    {
    };
    if (parent < 0 || ::fstat(parent, &facts) != 0 || facts.st_uid != ::geteuid()) {
        closeUnless(false, parent);
        return -1;
    }
    int folder = ::openat(parent, subfolder, flags | O_NOFOLLOW);
    if (folder < 0 && errno == ENOENT && ::mkdirat(parent, subfolder, S_IRWXU) == 0)
        folder = ::openat(parent, subfolder, flags | O_NOFOLLOW);
    ::close(parent);
    return closeUnless(folder >= 0 && isOwn(folder, S_IFDIR), folder);
}

bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto count = ::write(descriptor, bytes.data(), bytes.size());
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return false;
    }
    return true;
}

bool readAll(int descriptor, std::string &bytes)
{
    std::size_t size = 0;
    while (size < bytes.size()) {
        const auto count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
        if (count > 0)
            size += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            return false;
    }
    return true;
}

} // namespace

MemoryFile::MemoryFile(const std::string &runtimeFolder, const MemoryOrigin &origin)
    : m_origin(origin)
    , m_folder(openFolder(runtimeFolder))
{
    m_isLocked = m_folder >= 0 && lock();
}

MemoryFile::~MemoryFile()
{
    closeUnless(false, m_folder);
}

bool MemoryFile::lock() const
{
    constexpr int attempts = 20;
    constexpr timespec pause{0, 5'000'000};
    for (int i = 0; i < attempts; ++i) {
        if (::flock(m_folder, LOCK_EX | LOCK_NB) == 0)
            return true;
        ::nanosleep(&pause, nullptr);
    }
    return false;
}

std::optional<Memory> MemoryFile::read() const
{
    if (m_folder < 0)
        return std::nullopt;
    const int file = ::openat(m_folder, fileName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    struct stat facts
    {
    };
    std::string bytes;
    bool good = file >= 0 && isOwn(file, S_IFREG) && ::fstat(file, &facts) == 0 &&
                static_cast<std::size_t>(facts.st_size) <= largestMemory;
    if (good) {
        bytes.resize(static_cast<std::size_t>(facts.st_size));
        good = readAll(file, bytes);
    }
    closeUnless(false, file);
    return good ? decodeMemory(bytes, m_origin) : std::nullopt;
}

bool MemoryFile::writeNew(std::string_view bytes) const
{
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    int file = ::openat(m_folder, newFileName, flags, S_IRUSR | S_IWUSR);
    // What is left of a run that was killed.
    if (file < 0 && errno == EEXIST && ::unlinkat(m_folder, newFileName, 0) == 0)
        file = ::openat(m_folder, newFileName, flags, S_IRUSR | S_IWUSR);
    if (file < 0)
        return false;
    const bool written = writeAll(file, bytes);
    ::close(file);
    if (written && ::renameat(m_folder, newFileName, m_folder, fileName) == 0)
        return true;
    ::unlinkat(m_folder, newFileName, 0);
    return false;
}

bool MemoryFile::write(const Memory &memory) const
{
    if (!m_isLocked)
        return false;
    const auto bytes = encodeMemory(memory, m_origin);
    return !bytes.empty() && writeNew(bytes);
}

} // namespace pulsebar::nettop
