#include "sensors/BinaryPropertyList.h"

#include <cstdint>
#include <optional>

namespace pulsebar {

namespace {

constexpr qsizetype TrailerSize = 32;
constexpr char Magic[] = "bplist";

/// What a container is made of: object numbers, one after another.
struct Parts
{
    std::uint64_t position = 0;
    std::uint64_t count = 0; ///< 0 = a leaf
};

class Walk
{
public:
    Walk(const QByteArray &bytes, int deepest, qsizetype mostNodes)
        : m_bytes(bytes)
        , m_deepest(deepest)
        , m_nodesLeft(mostNodes)
    {
    }

    /// False when the list is damaged, too large or too deep.
    bool everything()
    {
        const auto trailer = static_cast<std::uint64_t>(m_bytes.size() - TrailerSize);
        m_offsetSize = *number(trailer + 6, 1);
        m_referenceSize = *number(trailer + 7, 1);
        m_objects = *number(trailer + 8, 8);
        m_offsets = *number(trailer + 24, 8);
        return node(*number(trailer + 16, 8), 0);
    }

private:
    /// Most significant byte first; absent beyond the list's end.
    std::optional<std::uint64_t> number(std::uint64_t position, std::uint64_t size) const
    {
        const auto all = static_cast<std::uint64_t>(m_bytes.size());
        if (size < 1 || size > 8 || position > all || size > all - position)
            return std::nullopt;
        std::uint64_t value = 0;
        for (std::uint64_t i = 0; i < size; ++i) {
            const auto byte = static_cast<std::uint8_t>(m_bytes.constData()[position + i]);
            value = value << 8U | byte;
        }
        return value;
    }

    bool node(std::uint64_t object, int depth)
    {
        if (depth > m_deepest || --m_nodesLeft < 0 || object >= m_objects ||
            m_objects > static_cast<std::uint64_t>(m_bytes.size()))
            return false;
        const auto position = number(m_offsets + object * m_offsetSize, m_offsetSize);
        const auto parts = position ? partsAt(*position) : std::nullopt;
        if (!parts)
            return false;
        for (std::uint64_t i = 0; i < parts->count; ++i) {
            const auto part = number(parts->position + i * m_referenceSize, m_referenceSize);
            if (!part || !node(*part, depth + 1))
                return false;
        }
        return true;
    }

    /// Absent when there is no object, or one larger than the list.
    std::optional<Parts> partsAt(std::uint64_t position) const
    {
        const auto marker = number(position, 1);
        if (!marker)
            return std::nullopt;
        const std::uint64_t type = *marker >> 4U;
        if (type != 0xA && type != 0xC && type != 0xD)
            return Parts{};
        Parts parts{position + 1, *marker & 0xFU};
        if (parts.count == 0xF && !takeLongCount(parts))
            return std::nullopt;
        if (parts.count > static_cast<std::uint64_t>(m_bytes.size()))
            return std::nullopt;
        parts.count *= type == 0xD ? 2 : 1; // keys, then values
        return parts;
    }

    /// A count of 15 or more stands behind the marker as an integer of 1, 2, 4 or 8 bytes.
    bool takeLongCount(Parts &parts) const
    {
        const auto marker = number(parts.position, 1);
        if (!marker || *marker >> 4U != 1)
            return false;
        const std::uint64_t size = std::uint64_t{1} << (*marker & 0xFU);
        const auto count = number(parts.position + 1, size);
        if (!count)
            return false;
        parts = {parts.position + 1 + size, *count};
        return true;
    }

    const QByteArray &m_bytes;
    int m_deepest;
    qsizetype m_nodesLeft;
    std::uint64_t m_offsetSize = 0;
    std::uint64_t m_referenceSize = 0;
    std::uint64_t m_objects = 0;
    std::uint64_t m_offsets = 0;
};

} // namespace

bool isBinaryPropertyList(const QByteArray &bytes)
{
    return bytes.startsWith(Magic);
}

bool isTameBinaryPropertyList(const QByteArray &bytes, int deepest, qsizetype mostNodes)
{
    return bytes.size() >= TrailerSize + 8 && Walk(bytes, deepest, mostNodes).everything();
}

} // namespace pulsebar
