#include "graph/RectText.h"

#include "util/DecimalText.h"

#include <QByteArray>

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace pulsebar {

namespace {

/// A text of a rectangle has four numbers of at most 309 digits before and 324 behind the point.
constexpr qsizetype kLongest = 3000;

QString numberText(double value)
{
    // Without "-0", which would make two texts of one number.
    return decimalText(std::isfinite(value) && value != 0.0 ? value : 0.0);
}

/// Takes what it is asked for off the front of a text.
class Reader
{
public:
    explicit Reader(const QByteArray &text)
        : m_at(text.constData())
        , m_end(text.constData() + text.size())
    {
    }

    bool take(const char *piece)
    {
        const std::size_t length = std::strlen(piece);
        if (m_end - m_at < static_cast<std::ptrdiff_t>(length) ||
            std::memcmp(m_at, piece, length) != 0)
            return false;
        m_at += length;
        return true;
    }

    bool takeNumber(double &number)
    {
        const auto [end, error] = std::from_chars(m_at, m_end, number, std::chars_format::fixed);
        m_at = end;
        return error == std::errc() && std::isfinite(number);
    }

    bool atEnd() const { return m_at == m_end; }

private:
    const char *m_at;
    const char *m_end;
};

} // namespace

QString textFromRect(const QRectF &rect)
{
    return QStringLiteral("{{%1, %2}, {%3, %4}}")
        .arg(numberText(rect.x()), numberText(rect.y()), numberText(rect.width()),
             numberText(rect.height()));
}

std::optional<QRectF> rectFromText(const QString &text)
{
    if (text.size() > kLongest)
        return std::nullopt;
    const QByteArray bytes = text.toUtf8();
    Reader reader(bytes);
    std::array<double, 4> numbers{};
    const std::array<const char *, 4> before{"{{", ", ", "}, {", ", "};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (!reader.take(before[i]) || !reader.takeNumber(numbers[i]))
            return std::nullopt;
    }
    if (!reader.take("}}") || !reader.atEnd())
        return std::nullopt;
    return QRectF(numbers[0], numbers[1], numbers[2], numbers[3]);
}

} // namespace pulsebar
