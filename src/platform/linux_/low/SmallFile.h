#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// A kernel file that is read again and again: kept open, read from its start each time.
/// A file that was missing, was replaced by another of its name, or fails is opened anew.
class SmallFile
{
public:
    explicit SmallFile(std::string path);
    ~SmallFile();
    SmallFile(SmallFile &&other) noexcept;
    SmallFile &operator=(SmallFile &&other) noexcept;
    SmallFile(const SmallFile &) = delete;
    SmallFile &operator=(const SmallFile &) = delete;

    /// The whole content now, valid until the next read. Absent when it cannot be read; an empty
    /// file is an empty text. Content beyond 4 MiB is left out.
    std::optional<std::string_view> read();

    const std::string &path() const { return m_path; }

private:
    bool open();
    void close();
    bool wasReplaced() const;
    bool fill();

    std::string m_path;
    int m_descriptor = -1;
    bool m_mayBeReplaced = false;
    std::vector<char> m_buffer;
    std::size_t m_size = 0;
};

/// Reads a file once, up to `limit` bytes; absent when it cannot be read.
std::optional<std::string> readWholeFile(const std::string &path, std::size_t limit = 4U << 20U);

} // namespace pulsebar
