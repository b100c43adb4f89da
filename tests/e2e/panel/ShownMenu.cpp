#include "e2e/panel/ShownMenu.h"

#include <QPainter>

#include <stdexcept>

namespace pulsebar::e2e {

ShownMenu::ShownMenu(const Screen &screen, const QImage &closed, int above)
    : m_screen(screen)
    , m_before(closed)
    , m_closed(closed)
    , m_above(above)
{
}

/// Without what changes for other reasons: the panel's live title, and the highlighted rows of the
/// menus that were opened earlier.
QImage ShownMenu::masked(QImage image) const
{
    image = withoutTop(image);
    QPainter painter(&image);
    for (const QRect &other : m_others)
        painter.fillRect(other, Qt::black);
    return image;
}

QVector<ReadLine> ShownMenu::readNewest()
{
    const QImage now = m_screen.look();
    m_newest = Screen::difference(masked(m_before), masked(now));
    // The first shade of a frame is no menu yet.
    static constexpr int kSmallest = 20;
    if (m_newest.width() < kSmallest || m_newest.height() < kSmallest)
        return {};
    return m_screen.read(now, m_newest);
}

ReadLine ShownMenu::row(const QString &pattern)
{
    const QRegularExpression wanted(pattern, QRegularExpression::CaseInsensitiveOption);
    ReadLine found;
    QStringList seen;
    const bool there = waitFor([&] {
        seen.clear();
        for (const ReadLine &line : readNewest()) {
            seen += line.text;
            const QRegularExpressionMatch match = wanted.match(line.text);
            if (match.hasMatch()) {
                found = {
                    match.captured(), line.placeOf(match.capturedStart(), match.capturedEnd()), {}};
                return true;
            }
        }
        return false;
    });
    if (!there) {
        m_screen.keep(QStringLiteral("missing"));
        throw std::runtime_error("no row like \"" + pattern.toStdString() + "\" in:\n" +
                                 seen.join(u'\n').toStdString());
    }
    return found;
}

void ShownMenu::openSubmenu(const QString &pattern)
{
    const ReadLine opening = row(pattern);
    m_before = m_screen.look();
    m_others += m_newest;
    m_screen.click(opening.place.center());
}

void ShownMenu::choose(const QString &pattern, const QString &held)
{
    m_screen.click(row(pattern).place.center(), 1, held);
}

QStringList ShownMenu::texts()
{
    QStringList all;
    for (const ReadLine &line : readNewest())
        all += line.text;
    return all;
}

QImage ShownMenu::withoutTop(QImage image) const
{
    QPainter(&image).fillRect(0, 0, image.width(), m_above, Qt::black);
    return image;
}

QImage ShownMenu::picture() const
{
    return withoutTop(m_screen.look());
}

QImage ShownMenu::pictureWhenStill() const
{
    return m_screen.lookWhenStill([this](const QImage &image) { return withoutTop(image); });
}

bool ShownMenu::waitUntilClosed() const
{
    const QImage closed = withoutTop(m_closed);
    return waitFor([&] { return Screen::difference(closed, picture()).isEmpty(); });
}

} // namespace pulsebar::e2e
