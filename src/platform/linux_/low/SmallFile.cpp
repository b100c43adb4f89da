#include "platform/linux_/low/SmallFile.h"

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace pulsebar {

namespace {

constexpr std::size_t largestSize = 4U << 20U;

/// The kernel hands out a file of many records in pieces of whole records, so that a short read
/// need not be its end. But no record is as long as half a page: a piece that left so much room is
/// the last one.
bool isLastPiece(ssize_t count, std::size_t room)
{
    constexpr std::size_t halfPage = 2048;
    const auto size = static_cast<std::size_t>(count);
    return size == 0 || (size < room && size < halfPage);
}

/// Opens for reading. In a recorded machine anything may have a file's name: a FIFO that nobody
/// writes to would be waited for without end.
int openForReading(const std::string &path)
{
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
}

/// Files of the kernel itself are never replaced by others.
bool isKernelFile(int descriptor)
{
    struct statfs facts
    {
    };
    return ::fstatfs(descriptor, &facts) == 0 &&
           (facts.f_type == PROC_SUPER_MAGIC || facts.f_type == SYSFS_MAGIC);
}

/// Whether an open file has lost what was behind it, so that another may have its name. After any
/// other failure the file is as good as it was, and asking its driver twice would cost twice.
bool isGone(int error)
{
    return error == ENODEV || error == ENOENT || error == ENXIO || error == ESRCH ||
           error == ESTALE;
}

ssize_t readAt(int descriptor, char *target, std::size_t size, std::size_t offset)
{
    ssize_t count = 0;
    do {
        count = ::pread(descriptor, target, size, static_cast<off_t>(offset));
    } while (count < 0 && errno == EINTR);
    return count;
}

} // namespace

SmallFile::SmallFile(std::string path, std::size_t usualSize)
    : m_path(std::move(path))
    , m_usualSize(usualSize)
{
}

SmallFile::~SmallFile()
{
    close();
}

SmallFile::SmallFile(SmallFile &&other) noexcept
    : m_path(std::move(other.m_path))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_usualSize(other.m_usualSize)
    , m_error(other.m_error)
    , m_mayBeReplaced(other.m_mayBeReplaced)
    , m_buffer(std::move(other.m_buffer))
    , m_size(std::exchange(other.m_size, 0))
{
}

SmallFile &SmallFile::operator=(SmallFile &&other) noexcept
{
    std::swap(m_path, other.m_path);
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_usualSize, other.m_usualSize);
    std::swap(m_error, other.m_error);
    std::swap(m_mayBeReplaced, other.m_mayBeReplaced);
    std::swap(m_buffer, other.m_buffer);
    std::swap(m_size, other.m_size);
    return *this;
}

bool SmallFile::open()
{
    m_descriptor = openForReading(m_path);
    if (m_descriptor < 0)
        m_error = errno;
    m_mayBeReplaced = m_descriptor >= 0 && !isKernelFile(m_descriptor);
    return m_descriptor >= 0;
}

void SmallFile::close()
{
    if (m_descriptor >= 0)
        ::close(std::exchange(m_descriptor, -1));
}

bool SmallFile::wasReplaced() const
{
    if (!m_mayBeReplaced)
        return false;
    struct stat facts
    {
    };
    return ::fstat(m_descriptor, &facts) != 0 || facts.st_nlink == 0;
}

bool SmallFile::fill()
{
    if (m_buffer.empty())
        m_buffer.resize(m_usualSize);
    m_size = 0;
    for (;;) {
        const auto count =
            readAt(m_descriptor, m_buffer.data() + m_size, m_buffer.size() - m_size, m_size);
        if (count < 0) {
            m_error = errno;
            return false;
        }
        const bool done = isLastPiece(count, m_buffer.size() - m_size);
        m_size += static_cast<std::size_t>(count);
        if (done)
            return true;
        if (m_size < m_buffer.size())
            continue;
        if (m_size >= largestSize)
            return true;
        m_buffer.resize(m_buffer.size() * 2);
    }
}

std::optional<std::string_view> SmallFile::read()
{
    if (m_descriptor >= 0 && wasReplaced())
        close();
    if (m_descriptor < 0 && !open())
        return std::nullopt;
    if (fill())
        return std::string_view(m_buffer.data(), m_size);
    if (!isGone(m_error))
        return std::nullopt;
    close();
    if (open() && fill())
        return std::string_view(m_buffer.data(), m_size);
    close();
    return std::nullopt;
}

std::optional<std::string> readWholeFile(const std::string &path, std::size_t limit)
{
    const int descriptor = openForReading(path);
    if (descriptor < 0)
        return std::nullopt;
    std::string text;
    bool failed = false;
    for (bool done = limit == 0; !done;) {
        const auto size = text.size();
        const auto room = std::min(limit - size, SmallFile::kPage);
        text.resize(size + room);
        const auto count = readAt(descriptor, text.data() + size, room, size);
        failed = count < 0;
        text.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        done = failed || isLastPiece(count, room) || text.size() >= limit;
    }
    ::close(descriptor);
    if (failed)
        return std::nullopt;
    return text;
}

} // namespace pulsebar
