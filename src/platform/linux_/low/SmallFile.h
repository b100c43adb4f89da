#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// A kernel file that is read again and again: kept open, read from its start each time.
/// A file that was missing, was replaced by another of its name, or is gone is opened anew.
class SmallFile
{
public:
    static constexpr std::size_t kPage = 4096;

    /// @param usualSize what the content usually has room in; more is read in several pieces
    explicit SmallFile(std::string path, std::size_t usualSize = kPage);
    ~SmallFile();
    SmallFile(SmallFile &&other) noexcept;
    SmallFile &operator=(SmallFile &&other) noexcept;
    SmallFile(const SmallFile &) = delete;
    SmallFile &operator=(const SmallFile &) = delete;

    /// The whole content now, valid until the next read. Absent when it cannot be read; an empty
    /// file is an empty text. Content beyond 4 MiB is left out.
    std::optional<std::string_view> read();

    /// Why the last read() was absent, as errno.
    int error() const { return m_error; }
    const std::string &path() const { return m_path; }

private:
    bool open();
    void close();
    bool wasReplaced() const;
    bool fill();

    std::string m_path;
    int m_descriptor = -1;
    std::size_t m_usualSize = kPage;
    int m_error = 0;
    bool m_mayBeReplaced = false;
    std::vector<char> m_buffer;
    std::size_t m_size = 0;
};

/// Reads a file once, up to `limit` bytes; absent when it cannot be read.
std::optional<std::string> readWholeFile(const std::string &path, std::size_t limit = 4U << 20U);

} // namespace pulsebar
