#include "processes/NettopReport.h"

#include "util/DecimalText.h"
#include "util/Sizes.h"
#include "util/Text.h"

#include <QHash>

#include <array>
#include <optional>
#include <utility>

namespace pulsebar {

namespace {

/// The first fields of a line; what follows them is not looked at, but has to be there.
struct Line
{
    static constexpr std::size_t kFields = 7;

    std::array<QStringView, kFields> fields;

    QStringView name() const { return fields[1]; }
    QStringView interface() const { return fields[2]; }
    QStringView state() const { return fields[3]; }
    qint64 bytesIn() const { return longFromText(fields[4]); }
    qint64 bytesOut() const { return longFromText(fields[5]); }
    bool isConnection() const { return name().startsWith(QLatin1String("tcp")); }
};

/// @return absent for the header and for what has too few fields
std::optional<Line> parseLine(QStringView text)
{
    if (text.startsWith(QLatin1String("time")))
        return std::nullopt;
    Line line;
    qsizetype from = 0;
    for (std::size_t i = 0; i < Line::kFields; ++i) {
        if (from < 0)
            return std::nullopt;
        const qsizetype comma = text.indexOf(u',', from);
        line.fields[i] = comma < 0 ? text.mid(from) : text.mid(from, comma - from);
        from = comma < 0 ? -1 : comma + 1;
    }
    return line;
}

template <typename Take> void forEachLine(QStringView text, Take take)
{
    qsizetype from = 0;
    while (from <= text.size()) {
        qsizetype end = text.indexOf(u'\n', from);
        if (end < 0)
            end = text.size();
        if (const std::optional<Line> line = parseLine(text.mid(from, end - from)))
            take(*line);
        from = end + 1;
    }
}

struct Totals
{
    qint64 in = 0;
    qint64 out = 0;
};

/// What each process had received and sent in all.
QHash<QString, Totals> totalsOf(const QByteArray &report)
{
    const QString text = QString::fromUtf8(report);
    QHash<QString, Totals> totals;
    forEachLine(text, [&](const Line &line) {
        if (!line.isConnection())
            totals.insert(line.name().toString(), {line.bytesIn(), line.bytesOut()});
    });
    return totals;
}

void insertIfPresent(QVariantMap &record, const QString &key, const Text &text)
{
    if (text)
        record.insert(key, *text);
}

QVariantMap connectionRecord(const Line &line)
{
    static const QString blank = QStringLiteral(" ");
    const QString name = line.name().toString();
    QVariantMap record{{QStringLiteral("interface"), line.interface().toString()},
                       {QStringLiteral("state"), line.state().toString()},
                       {QStringLiteral("bytes_in"), line.bytesIn()},
                       {QStringLiteral("bytes_out"), line.bytesOut()}};
    insertIfPresent(record, QStringLiteral("type"), substringTo(name, blank));
    insertIfPresent(record, QStringLiteral("address"), substringFrom(name, blank));
    return record;
}

QVariant growth(qint64 now, qint64 before)
{
    return subtract(static_cast<double>(now), static_cast<double>(before));
}

/// Builds the dictionary line by line; a process is put into it when its connections are complete.
class Records
{
public:
    explicit Records(const QHash<QString, Totals> &previous)
        : m_previous(previous)
    {
    }

    void take(const Line &line)
    {
        if (!line.isConnection())
            begin(line);
        else if (!m_process.isEmpty())
            m_connections.append(connectionRecord(line));
    }

    QVariantMap finish()
    {
        store();
        return std::move(m_result);
    }

private:
    void begin(const Line &line)
    {
        store();
        const QString name = line.name().toString();
        const qint64 in = line.bytesIn();
        const qint64 out = line.bytesOut();
        const auto before = m_previous.constFind(name);
        const bool isNew = before == m_previous.constEnd();
        m_process = {
            {QStringLiteral("name"), name},
            {QStringLiteral("bytes_in"), in},
            {QStringLiteral("bytes_out"), out},
            {QStringLiteral("bytes_in_delta"), isNew ? QVariant(0) : growth(in, before->in)},
            {QStringLiteral("bytes_out_delta"), isNew ? QVariant(0) : growth(out, before->out)}};
    }

    void store()
    {
        if (m_process.isEmpty())
            return;
        const QString name = m_process.value(QStringLiteral("name")).toString();
        m_process.insert(QStringLiteral("subprocess"), std::exchange(m_connections, {}));
        m_result.insert(name, std::exchange(m_process, {}));
    }

    const QHash<QString, Totals> &m_previous;
    QVariantMap m_result;
    QVariantMap m_process; ///< whose connections are being read; empty before the first
    QVariantList m_connections;
};

} // namespace

QVariantMap parseNettopReport(const QByteArray &report, const QByteArray &previous)
{
    const QHash<QString, Totals> totals = totalsOf(previous);
    const QString text = QString::fromUtf8(report);
    Records records(totals);
    forEachLine(text, [&records](const Line &line) { records.take(line); });
    return records.finish();
}

} // namespace pulsebar
