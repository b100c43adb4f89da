#include "util/Format.h"

#include <fmt/format.h>

#include <cmath>

namespace pulsebar {

namespace {

constexpr int MaximumWidth = 99;

/// One placeholder as it stands in a format, between "%" and its conversion letter.
struct Placeholder
{
    qsizetype position = 0; ///< number of the argument, from 1; 0 = the next one
    bool leftAligned = false;
    bool alwaysSigned = false;
    bool blankSigned = false;
    bool alternate = false;
    bool zeroFilled = false;
    int width = 0;
    int precision = -1; ///< -1 = not given
    char16_t conversion = 0;
};

/// Walks a format from left to right.
class Reader
{
public:
    explicit Reader(QStringView text)
        : m_text(text)
    {
    }
    bool atEnd() const { return m_at >= m_text.size(); }
    char16_t peek() const { return atEnd() ? u'\0' : m_text[m_at].unicode(); }
    char16_t take() { return atEnd() ? u'\0' : m_text[m_at++].unicode(); }
    bool accept(char16_t wanted)
    {
        const bool is = !atEnd() && peek() == wanted;
        m_at += is ? 1 : 0;
        return is;
    }
    QStringView takeUntilPercent()
    {
        const qsizetype percent = m_text.indexOf(QLatin1Char('%'), m_at);
        const qsizetype end = percent < 0 ? m_text.size() : percent;
        const QStringView literal = m_text.mid(m_at, end - m_at);
        m_at = end;
        return literal;
    }
    /// Digits as a number that stays small however many there are.
    int takeNumber()
    {
        int number = 0;
        while (peek() >= u'0' && peek() <= u'9')
            number = std::min(number * 10 + (take() - u'0'), 1000);
        return number;
    }
    qsizetype mark() const { return m_at; }
    void rewind(qsizetype mark) { m_at = mark; }

private:
    QStringView m_text;
    qsizetype m_at = 0;
};

void readPosition(Reader &reader, Placeholder &out)
{
    const qsizetype mark = reader.mark();
    const int number = reader.takeNumber();
    if (number > 0 && reader.accept(u'$'))
        out.position = number;
    else
        reader.rewind(mark);
}

bool readFlag(Reader &reader, Placeholder &out)
{
    switch (reader.peek()) {
    case u'-':
        out.leftAligned = true;
        break;
    case u'+':
        out.alwaysSigned = true;
        break;
    case u' ':
        out.blankSigned = true;
        break;
    case u'#':
        out.alternate = true;
        break;
    case u'0':
        out.zeroFilled = true;
        break;
    default:
        return false;
    }
    reader.take();
    return true;
}

void skipLength(Reader &reader)
{
    while (QStringView(u"hlqz").contains(QChar(reader.peek())))
        reader.take();
}

std::optional<Placeholder> readPlaceholder(Reader &reader)
{
    Placeholder out;
    readPosition(reader, out);
    while (readFlag(reader, out)) {
    }
    out.width = reader.takeNumber();
    if (reader.accept(u'.'))
        out.precision = reader.takeNumber();
    skipLength(reader);
    out.conversion = reader.take();
    if (out.width > MaximumWidth || out.precision > MaximumWidth)
        return std::nullopt;
    return out;
}

/// fmt's specification up to the type, e.g. "<+07.2".
std::string numberSpec(const Placeholder &placeholder, bool finite)
{
    std::string spec = "{:";
    if (placeholder.leftAligned)
        spec += '<';
    else if (!placeholder.zeroFilled || !finite)
        spec += '>';
    if (placeholder.alwaysSigned || placeholder.blankSigned)
        spec += placeholder.alwaysSigned ? '+' : ' ';
    if (placeholder.alternate)
        spec += '#';
    if (placeholder.zeroFilled && !placeholder.leftAligned && finite)
        spec += '0';
    if (placeholder.width > 0)
        spec += std::to_string(placeholder.width);
    return spec;
}

QString fromAscii(const std::string &text)
{
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

std::optional<QString> realText(const Placeholder &placeholder, double number,
                                const QString &decimalPoint)
{
    if (placeholder.conversion != u'f' && placeholder.conversion != u'g')
        return std::nullopt;
    std::string spec = numberSpec(placeholder, std::isfinite(number));
    spec += '.' + std::to_string(placeholder.precision < 0 ? 6 : placeholder.precision);
    spec += static_cast<char>(placeholder.conversion);
    spec += '}';
    // The sign of what is not a number is an accident of the division that made it.
    const double shown = std::isnan(number) ? std::fabs(number) : number;
    QString text = fromAscii(fmt::format(fmt::runtime(spec), shown));
    if (decimalPoint != u".")
        text.replace(QLatin1Char('.'), decimalPoint);
    return text;
}

template <typename Integer>
std::optional<QString> integerText(const Placeholder &placeholder, Integer number)
{
    const char16_t conversion = placeholder.conversion;
    if (conversion != u'd' && conversion != u'i' && conversion != u'u')
        return std::nullopt;
    std::string spec = numberSpec(placeholder, true) + "d}";
    std::erase(spec, '#');
    return fromAscii(fmt::format(fmt::runtime(spec), number));
}

std::optional<QString> stringText(const Placeholder &placeholder, const QString &text)
{
    if (placeholder.conversion != u'@')
        return std::nullopt;
    const QString cut = placeholder.precision < 0 ? text : text.left(placeholder.precision);
    return placeholder.leftAligned ? cut.leftJustified(placeholder.width)
                                   : cut.rightJustified(placeholder.width);
}

/// Knows which arguments a format has used.
class Filler
{
public:
    Filler(const FormatArguments &arguments, const QString &decimalPoint)
        : m_arguments(arguments)
        , m_used(arguments.size(), false)
        , m_decimalPoint(decimalPoint)
    {
    }

    std::optional<QString> fill(const Placeholder &placeholder)
    {
        const auto index = static_cast<std::size_t>(
            placeholder.position > 0 ? placeholder.position - 1 : m_next++);
        if (index >= m_arguments.size())
            return std::nullopt;
        m_used[index] = true;
        return std::visit([&](const auto &value) { return text(placeholder, value); },
                          m_arguments[index].value());
    }

    bool allUsed() const { return std::find(m_used.begin(), m_used.end(), false) == m_used.end(); }

private:
    std::optional<QString> text(const Placeholder &placeholder, const QString &value) const
    {
        return stringText(placeholder, value);
    }
    std::optional<QString> text(const Placeholder &placeholder, double value) const
    {
        return realText(placeholder, value, m_decimalPoint);
    }
    std::optional<QString> text(const Placeholder &placeholder, qint64 value) const
    {
        return integerText(placeholder, value);
    }
    std::optional<QString> text(const Placeholder &placeholder, quint64 value) const
    {
        return integerText(placeholder, value);
    }

    const FormatArguments &m_arguments;
    std::vector<bool> m_used;
    qsizetype m_next = 0;
    const QString &m_decimalPoint;
};

} // namespace

std::optional<QString> formatChecked(QStringView format, const FormatArguments &arguments,
                                     const QString &decimalPoint)
{
    QString result;
    Reader reader(format);
    Filler filler(arguments, decimalPoint);
    while (!reader.atEnd()) {
        result += reader.takeUntilPercent();
        if (!reader.accept(u'%'))
            break;
        if (reader.accept(u'%')) {
            result += QLatin1Char('%');
            continue;
        }
        const auto placeholder = readPlaceholder(reader);
        const auto text = placeholder ? filler.fill(*placeholder) : std::nullopt;
        if (!text)
            return std::nullopt;
        result += *text;
    }
    if (!filler.allUsed())
        return std::nullopt;
    return result;
}

QString plainFormatList(QStringView format, const FormatArguments &arguments)
{
    return formatChecked(format, arguments, QStringLiteral(".")).value_or(format.toString());
}

} // namespace pulsebar
