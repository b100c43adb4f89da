#include "platform/linux_/low/SmallFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace pulsebar {

namespace {

constexpr std::size_t firstSize = 4096;
constexpr std::size_t largestSize = 4U << 20U;

ssize_t readAt(int descriptor, char *target, std::size_t size, std::size_t offset)
{
    ssize_t count = 0;
    do {
        count = ::pread(descriptor, target, size, static_cast<off_t>(offset));
    } while (count < 0 && errno == EINTR);
    return count;
}

} // namespace

SmallFile::SmallFile(std::string path)
    : m_path(std::move(path))
{
}

SmallFile::~SmallFile()
{
    close();
}

SmallFile::SmallFile(SmallFile &&other) noexcept
    : m_path(std::move(other.m_path))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_buffer(std::move(other.m_buffer))
    , m_size(std::exchange(other.m_size, 0))
{
}

SmallFile &SmallFile::operator=(SmallFile &&other) noexcept
{
    std::swap(m_path, other.m_path);
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_buffer, other.m_buffer);
    std::swap(m_size, other.m_size);
    return *this;
}

bool SmallFile::open()
{
    m_descriptor = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    return m_descriptor >= 0;
}

void SmallFile::close()
{
    if (m_descriptor >= 0)
        ::close(std::exchange(m_descriptor, -1));
}

bool SmallFile::wasReplaced() const
{
    struct stat facts
    {
    };
    return ::fstat(m_descriptor, &facts) != 0 || facts.st_nlink == 0;
}

bool SmallFile::fill()
{
    if (m_buffer.empty())
        m_buffer.resize(firstSize);
    m_size = 0;
    for (;;) {
        const auto count =
            readAt(m_descriptor, m_buffer.data() + m_size, m_buffer.size() - m_size, m_size);
        if (count < 0)
            return false;
        // The kernel may hand out a long file in pieces: only a read of nothing is its end.
        if (count == 0)
            return true;
        m_size += static_cast<std::size_t>(count);
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
    if (!fill()) {
        close();
        if (!open() || !fill()) {
            close();
            return std::nullopt;
        }
    }
    return std::string_view(m_buffer.data(), m_size);
}

std::optional<std::string> readWholeFile(const std::string &path, std::size_t limit)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        return std::nullopt;
    std::string text;
    ssize_t count = 0;
    do {
        const auto size = text.size();
        text.resize(std::min(limit, size + firstSize));
        count = readAt(descriptor, text.data() + size, text.size() - size, size);
        text.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    } while (count > 0 && text.size() < limit);
    ::close(descriptor);
    if (count < 0)
        return std::nullopt;
    return text;
}

} // namespace pulsebar
