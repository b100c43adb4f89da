#pragma once

#include "e2e/Desktop.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QVector>

namespace pulsebar::e2e {

/// A line of text as it was recognised on the screen, and where.
struct ReadLine
{
    QString text;
    QRect place;
    QVector<QRect> words = {}; ///< the place of every word, which blanks part

    /// The place of the words that the text's characters from `begin` to `end` belong to.
    QRect placeOf(qsizetype begin, qsizetype end) const;
};

/// The display of a desktop, as somebody sits before it: looks, reads, points, clicks and types.
class Screen
{
public:
    explicit Screen(Desktop &desktop);

    QImage look() const;
    /// The smallest rectangle that holds all that differs; empty when nothing does.
    static QRect difference(const QImage &one, const QImage &other);
    /// Looks until two looks half a second apart are alike, for programs draw in several steps.
    /// `part` leaves out what changes all the time.
    QImage lookWhenStill(const std::function<QImage(const QImage &)> &part = {}) const;

    /// Character recognition: takes 5 for S and lines for letters, so look for loose patterns.
    QVector<ReadLine> read(const QImage &image, const QRect &part) const;

    void point(QPoint at) const;
    /// `held` are keys as xdotool names them, such as "ctrl", held during the click.
    void click(QPoint at, int button = 1, const QString &held = {}) const;
    void drag(QPoint from, QPoint to) const;
    void type(const QString &key) const;

    /// Keeps a look in the folder that PULSEBAR_KEEP_LOOKS names, for a person; else does nothing.
    void keep(const QString &name) const;

private:
    QByteArray run(const QString &program, const QStringList &arguments,
                   const QByteArray &input = {}) const;

    Desktop &m_desktop;
};

} // namespace pulsebar::e2e
