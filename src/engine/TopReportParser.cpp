#include "engine/TopReportParser.h"

#include "util/DecimalText.h"
#include "util/Format.h"
#include "util/Text.h"
#include "util/Values.h"

#include <QStringDecoder>

#include <array>

namespace pulsebar {

namespace {

constexpr int NameColumn = 1;
constexpr int CpuColumn = 2;
constexpr char16_t Blank = u' ';

QString columnKey(int column)
{
    static const std::array<QString, 13> keys{
        QStringLiteral("PID"),
        QStringLiteral("ProcessName"),
        QStringLiteral("CPUUsage"),
        QStringLiteral("CPUTime"),
        QStringLiteral("Thread"),
        QStringLiteral("User"),
        QStringLiteral("MachMessageSent"),
        QStringLiteral("MachMessageRecieve"),
        QStringLiteral("UNIXSystemCall"),
        QStringLiteral("MachSystemCall"),
        QStringLiteral("EnergyUsage"),
        QStringLiteral("PageIns"),
        QStringLiteral("RealMemorySize"),
    };
    return static_cast<std::size_t>(column) < keys.size() ? keys[static_cast<std::size_t>(column)]
                                                          : QString();
}

std::optional<QString> decodeStrictly(const QByteArray &data)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless |
                                                     QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder(data);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

QVariantMap parseMemory(const Text &whole)
{
    QVariantMap stats;
    Text line = substringFromTo(whole, QStringLiteral("PhysMem: "), QStringLiteral("."));
    if (!line)
        return stats;
    for (int blanks = 4; blanks >= 2; --blanks)
        line = replaceStringFromTo(line, QString(blanks, QLatin1Char(' ')), QStringLiteral(" "));
    line = replaceStringFromTo(line, QStringLiteral(" ("), QStringLiteral(", "));
    line = removeString(removeString(line, QStringLiteral(")")), QStringLiteral("."));
    if (line->startsWith(QLatin1Char(' ')))
        line->remove(0, 1);
    for (const QString &part : line->split(QStringLiteral(", "))) {
        const Text value = substringTo(part, QStringLiteral(" "));
        const Text key = substringFrom(part, QStringLiteral(" "));
        if (value && key)
            stats.insert(*key, *value);
    }
    return stats;
}

/// sys and idle are looked for in the whole text, not in the CPU line alone.
void parseCpu(TopReport &report)
{
    const Text line =
        substringFromTo(report.text, QStringLiteral("CPU usage: "), QStringLiteral("\n"));
    report.user = substringTo(line, QStringLiteral("%"));
    report.sys = substringFromTo(report.text, QStringLiteral("user, "), QStringLiteral("%"));
    report.idle = substringFromTo(report.text, QStringLiteral("sys, "), QStringLiteral("%"));
    const float idle = report.idle ? floatFromText(*report.idle) : 0.0F;
    report.total = plainFormat(u"%f", 100.0F - idle);
}

bool isWhiteSpace(QChar character)
{
    const char16_t unit = character.unicode();
    return unit == Blank || (unit >= u'\t' && unit <= u'\r');
}

/// Hands out the blank-separated tokens of a row.
class RowScanner
{
public:
    explicit RowScanner(QStringView row)
        : m_row(row)
    {
        skipSpace();
    }
    bool atEnd() const { return m_at == m_row.size(); }
    QStringView next()
    {
        const qsizetype blank = m_row.indexOf(QChar(Blank), m_at);
        const qsizetype end = blank < 0 ? m_row.size() : blank;
        const QStringView token = m_row.mid(m_at, end - m_at);
        m_at = end;
        skipSpace();
        return token;
    }

private:
    void skipSpace()
    {
        while (m_at < m_row.size() && isWhiteSpace(m_row[m_at]))
            ++m_at;
    }

    QStringView m_row;
    qsizetype m_at = 0;
};

/// The CPU share that a token of the CPU column tells; absent when it is a word of the name.
std::optional<double> cpuShare(const QString &token)
{
    if (!token.contains(QLatin1Char('.')) && !token.contains(QLatin1Char(',')))
        return std::nullopt;
    const double value = doubleFromText(token);
    if (value == 0.0 && token != u"0.0")
        return std::nullopt;
    return value / 100.0;
}

/// Grows in place, so that a name of very many words costs no more than its length.
void appendWord(Text &name, const QString &word)
{
    if (name)
        name->append(QLatin1Char(' ')).append(word);
    else
        name = word;
}

QVariantMap parseRow(QStringView row)
{
    QVariantMap entry;
    Text name;
    RowScanner scanner(row);
    for (int column = 0; !scanner.atEnd() && !columnKey(column).isEmpty(); ++column) {
        const QStringView token = scanner.next();
        if (column == CpuColumn) {
            const QString word = removeString(token.toString(), QStringLiteral("%"));
            if (const auto share = cpuShare(word)) {
                entry.insert(columnKey(column), plainFormat(u"%f", *share));
            } else {
                appendWord(name, word);
                column = NameColumn;
            }
        } else if (token == u"N/A") {
            continue;
        } else if (column == NameColumn) {
            name = token.toString();
        } else {
            entry.insert(columnKey(column), token.toString());
        }
    }
    if (name)
        entry.insert(columnKey(NameColumn), *name);
    return entry;
}

void addEnergy(const QVariantMap &entry, TopReport &report)
{
    const auto energy = entry.constFind(QStringLiteral("EnergyUsage"));
    if (energy == entry.constEnd())
        return;
    report.energyConsumption += floatValue(*energy);
    const auto name = entry.constFind(QStringLiteral("ProcessName"));
    if (name != entry.constEnd())
        report.energyUsageDict.insert(name->toString(), *energy);
}

/// Takes the pieces between line ends one by one, the one after the last line end included.
class LineReader
{
public:
    explicit LineReader(QStringView text)
        : m_text(text)
    {
    }
    std::optional<QStringView> next()
    {
        if (m_at > m_text.size())
            return std::nullopt;
        const qsizetype found = m_text.indexOf(QLatin1Char('\n'), m_at);
        const qsizetype end = found < 0 ? m_text.size() : found;
        const QStringView line = m_text.mid(m_at, end - m_at);
        m_at = end + 1;
        return line;
    }

private:
    QStringView m_text;
    qsizetype m_at = 0;
};

void parseProcesses(TopReport &report, int listMax)
{
    const Text rows = substringFrom(report.text, QStringLiteral("%CPU"));
    if (!rows)
        return;
    LineReader reader(*rows);
    reader.next(); // the rest of the column heads
    for (int row = 0; row < listMax; ++row) {
        const auto line = reader.next();
        if (!line)
            return;
        const QVariantMap entry = parseRow(*line);
        addEnergy(entry, report);
        report.processList.append(entry);
    }
}

} // namespace

TopReport parseTopReport(const QByteArray &data, int listMax)
{
    TopReport report;
    report.text = decodeStrictly(data);
    report.memoryStats = parseMemory(report.text);
    parseCpu(report);
    parseProcesses(report, listMax);
    return report;
}

} // namespace pulsebar
