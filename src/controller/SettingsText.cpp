#include "controller/SettingsText.h"

#include "util/DecimalText.h"

#include <QStringList>

namespace pulsebar::settingsformat {

namespace {

/// Splits a value into its comma-separated texts, undoing quotes and escapes on the way.
class ValueReader
{
public:
    explicit ValueReader(const QString &text)
        : m_text(text)
    {
    }

    QStringList read()
    {
        while (m_at < m_text.size())
            step();
        endItem();
        return m_items;
    }

private:
    void step()
    {
        const QChar c = m_text[m_at++];
        if (c == u'"') {
            m_quoted = !m_quoted;
            m_keptLength = m_item.size();
        } else if (c == u'\\') {
            readEscape();
            m_keptLength = m_item.size();
        } else if (c == u',' && !m_quoted) {
            endItem();
        } else if (c == u';' && !m_quoted) {
            m_at = m_text.size();
        } else if (m_quoted || !m_item.isEmpty() || !c.isSpace()) {
            m_item += c;
            if (m_quoted)
                m_keptLength = m_item.size();
        }
    }

    /// Blanks around an item are layout, unless they were quoted or escaped.
    void endItem()
    {
        while (m_item.size() > m_keptLength && m_item.back().isSpace())
            m_item.chop(1);
        m_items += m_item;
        m_item.clear();
        m_keptLength = 0;
    }

    void readEscape()
    {
        if (m_at >= m_text.size())
            return;
        static constexpr QLatin1String kLetters("abfnrtv\"?'\\");
        static constexpr QLatin1String kMeanings("\a\b\f\n\r\t\v\"?'\\");
        const QChar c = m_text[m_at++];
        const qsizetype index = kLetters.indexOf(c);
        if (index >= 0)
            m_item += QChar(kMeanings[index]);
        else if (c == u'x')
            readCodePoint(16, 6);
        else if (c >= u'0' && c <= u'7') {
            --m_at;
            readCodePoint(8, 3);
        } else if (c.isHighSurrogate()) {
            // Half of a character could not be written.
            ++m_at;
        }
        // An escape that means nothing is left out, as QSettings does.
    }

    void readCodePoint(int base, int maxDigits)
    {
        char32_t code = 0;
        for (int digits = 0; digits < maxDigits && m_at < m_text.size(); ++digits, ++m_at) {
            bool isDigit = false;
            const int digit = QStringView(m_text).sliced(m_at, 1).toInt(&isDigit, base);
            if (!isDigit)
                break;
            code = code * static_cast<char32_t>(base) + static_cast<char32_t>(digit);
        }
        const bool valid = code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF);
        m_item += QChar::fromUcs4(valid ? code : char32_t(QChar::ReplacementCharacter));
    }

    const QString &m_text;
    qsizetype m_at = 0;
    bool m_quoted = false;
    QString m_item;
    /// What stands before this length was quoted or escaped and is never trimmed.
    qsizetype m_keptLength = 0;
    QStringList m_items;
};

/// Whether a person wrote a JSON object or array plainly: its first quote is not escaped, as
/// QSettings' own would be, and stands inside the brackets.
bool isPlainJson(const QString &text)
{
    const qsizetype quote = text.indexOf(u'"');
    const bool isBracketed = (text.startsWith(u'{') && text.endsWith(u'}')) ||
                             (text.startsWith(u'[') && text.endsWith(u']'));
    return quote > 0 && isBracketed && text[quote - 1] != u'\\';
}

/// An escape with as many digits as it can have, so that no following letter is taken for one.
void appendEscaped(QString &text, QChar c)
{
    switch (c.unicode()) {
    case '"':
    case '\\':
        text += u'\\';
        text += c;
        break;
    case '\n':
        text += QLatin1String("\\n");
        break;
    case '\r':
        text += QLatin1String("\\r");
        break;
    case '\t':
        text += QLatin1String("\\t");
        break;
    default:
        if (c < u' ' || c == QChar(0x7F))
            text += QLatin1String("\\x") + QString::number(c.unicode(), 16).rightJustified(6, u'0');
        else
            text += c;
    }
}

QString escapedText(const QString &plain)
{
    QString text;
    bool needsQuotes = plain.isEmpty() || plain.front().isSpace() || plain.back().isSpace();
    for (const QChar c : plain) {
        needsQuotes = needsQuotes || c == u',' || c == u';' || c == u'=' || c == u'"';
        appendEscaped(text, c);
    }
    return needsQuotes ? u'"' + text + u'"' : text;
}

std::optional<QString> listText(const QVariantList &list)
{
    QStringList texts;
    for (const QVariant &item : list) {
        const std::optional<QString> text = textFromValue(item);
        if (text)
            texts += *text;
    }
    if (texts.isEmpty())
        return std::nullopt;
    // A list that began with a plain bracket could read as JSON.
    if (texts.front().startsWith(u'{') || texts.front().startsWith(u'['))
        texts.front() = u'"' + texts.front() + u'"';
    return texts.join(QLatin1String(", "));
}

} // namespace

QVariant valueFromText(const QString &text)
{
    if (isPlainJson(text))
        return text;
    const QStringList items = ValueReader(text).read();
    return items.size() == 1 ? QVariant(items.front()) : QVariant(items);
}

std::optional<QString> textFromValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return escapedText(value.toString());
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        return listText(value.toList());
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Float:
        return decimalText(value.toFloat());
    case QMetaType::Double:
        return decimalText(value.toDouble());
    case QMetaType::Int:
    case QMetaType::LongLong:
        return QString::number(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return QString::number(value.toULongLong());
    default:
        return std::nullopt;
    }
}

} // namespace pulsebar::settingsformat
