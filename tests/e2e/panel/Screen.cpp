#include "e2e/panel/Screen.h"

#include <QBuffer>
#include <QDir>
#include <QMap>
#include <QProcess>

#include <stdexcept>

namespace pulsebar::e2e {

namespace {

constexpr int kEnlarged = 3;
constexpr int kPatience = 20000;

QByteArray encoded(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

/// Sums up the words of the recogniser's table by their lines.
QVector<ReadLine> linesOf(const QByteArray &table, QPoint offset)
{
    QMap<QString, ReadLine> lines;
    for (const QByteArray &row : table.split('\n')) {
        const QList<QByteArray> field = row.split('\t');
        if (field.size() < 12 || field[0] != "5")
            continue;
        const QString key = QStringLiteral("%1 %2 %3")
                                .arg(field[2].toInt(), 4)
                                .arg(field[3].toInt(), 4)
                                .arg(field[4].toInt(), 4);
        const QRect word(field[6].toInt() / kEnlarged, field[7].toInt() / kEnlarged,
                         field[8].toInt() / kEnlarged, field[9].toInt() / kEnlarged);
        ReadLine &line = lines[key];
        line.text +=
            (line.text.isEmpty() ? QString() : QStringLiteral(" ")) + QString::fromUtf8(field[11]);
        line.place |= word.translated(offset);
        line.words += word.translated(offset);
    }
    return lines.values();
}

} // namespace

QRect ReadLine::placeOf(qsizetype begin, qsizetype end) const
{
    QRect all;
    const qsizetype last = text.left(end).count(u' ');
    for (qsizetype word = text.left(begin).count(u' '); word <= last && word < words.size(); ++word)
        all |= words[word];
    return all;
}

Screen::Screen(Desktop &desktop)
    : m_desktop(desktop)
{
}

QByteArray Screen::run(const QString &program, const QStringList &arguments,
                       const QByteArray &input) const
{
    QProcess process;
    process.setProcessEnvironment(m_desktop.environment());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(kPatience))
        throw std::runtime_error("a tool of the test does not end: " + program.toStdString());
    return process.readAllStandardOutput();
}

QImage Screen::look() const
{
    const QByteArray bytes =
        run(QStringLiteral("import"), {QStringLiteral("-silent"), QStringLiteral("-window"),
                                       QStringLiteral("root"), QStringLiteral("bmp:-")});
    return QImage::fromData(bytes).convertToFormat(QImage::Format_RGB32);
}

QRect Screen::difference(const QImage &one, const QImage &other)
{
    // Below that are shades that no eye sees.
    static constexpr int kVisible = 10;
    QRect all;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const int apart = qGray(one.pixel(x, y)) - qGray(other.pixel(x, y));
            if (apart > kVisible || apart < -kVisible)
                all |= QRect(x, y, 1, 1);
        }
    }
    return all;
}

QImage Screen::lookWhenStill(const std::function<QImage(const QImage &)> &part) const
{
    const auto lookAtPart = [this, &part] { return part ? part(look()) : look(); };
    QImage before = lookAtPart();
    waitFor([&] {
        waitFor([] { return false; }, 500);
        const QImage now = lookAtPart();
        const bool still = now == before;
        before = now;
        return still;
    });
    return before;
}

QVector<ReadLine> Screen::read(const QImage &image, const QRect &part) const
{
    const QImage cut = image.copy(part);
    const QImage large =
        cut.scaled(cut.size() * kEnlarged, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_Grayscale8);
    const QByteArray table =
        run(QStringLiteral("tesseract"),
            {QStringLiteral("stdin"), QStringLiteral("stdout"), QStringLiteral("--psm"),
             QStringLiteral("6"), QStringLiteral("tsv")},
            encoded(large));
    return linesOf(table, part.topLeft());
}

void Screen::point(QPoint at) const
{
    run(QStringLiteral("xdotool"),
        {QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())});
}

void Screen::click(QPoint at, int button, const QString &held) const
{
    point(at);
    QStringList arguments;
    if (!held.isEmpty())
        arguments = {QStringLiteral("keydown"), held};
    arguments += {QStringLiteral("click"), QString::number(button)};
    if (!held.isEmpty())
        arguments +=
            {QStringLiteral("sleep"), QStringLiteral("0.3"), QStringLiteral("keyup"), held};
    run(QStringLiteral("xdotool"), arguments);
}

void Screen::drag(QPoint from, QPoint to) const
{
    static constexpr int kSteps = 6;
    point(from);
    run(QStringLiteral("xdotool"), {QStringLiteral("mousedown"), QStringLiteral("1")});
    for (int step = 1; step <= kSteps; ++step)
        point(from + (to - from) * step / kSteps);
    run(QStringLiteral("xdotool"), {QStringLiteral("mouseup"), QStringLiteral("1")});
}

void Screen::type(const QString &key) const
{
    run(QStringLiteral("xdotool"), {QStringLiteral("key"), key});
}

void Screen::keep(const QString &name) const
{
    const QString folder = qEnvironmentVariable("PULSEBAR_KEEP_LOOKS");
    if (!folder.isEmpty())
        look().save(QDir(folder).filePath(name + QStringLiteral(".png")));
}

} // namespace pulsebar::e2e
