#include "statusitem/TitleText.h"

#include "util/WindowSystem.h"

#include <algorithm>

namespace pulsebar {

namespace {

constexpr qsizetype longestShortTitle = 4;

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isNumberPart(const QString &text, qsizetype at)
{
    const bool point = text[at] == u'.' || text[at] == u',';
    return isDigit(text[at]) || (point && at + 1 < text.size() && isDigit(text[at + 1]));
}

/// "K", "M", "G", … of a byte size, "°" of a temperature, else nothing.
QString shortUnit(QStringView rest)
{
    rest = rest.trimmed();
    if (rest.startsWith(u'\u2103') || rest.startsWith(u'\u2109') || rest.startsWith(u'\u00b0')) {
        return QStringLiteral("°");
    }
    if (rest.size() >= 2 && QStringView(u"KMGTPE").contains(rest[0]) && rest[1] == u'B') {
        return QString(rest[0]);
    }
    return {};
}

/// Without its fraction when the number alone says enough or would be too long.
QString shortNumber(QString number, const QString &unit)
{
    const bool keepsFraction =
        !unit.isEmpty() && unit != u"°" && number.size() + unit.size() <= longestShortTitle;
    if (!keepsFraction) {
        const auto point =
            std::find_if(number.cbegin(), number.cend(), [](QChar c) { return !isDigit(c); });
        number.truncate(point - number.cbegin());
    }
    return number + unit;
}

QString firstWord(const QString &title)
{
    const QString text = title.simplified();
    return text.section(u' ', 0, 0).left(longestShortTitle);
}

} // namespace

QString shortTitle(const QString &title)
{
    const auto first = std::find_if(title.cbegin(), title.cend(), isDigit);
    if (first == title.cend()) {
        return firstWord(title);
    }
    const qsizetype begin = first - title.cbegin();
    qsizetype end = begin;
    while (end < title.size() && isNumberPart(title, end)) {
        ++end;
    }
    return shortNumber(title.mid(begin, end - begin), shortUnit(QStringView(title).mid(end)));
}

double itemWidth(double textWidth, double guideWidth, double imageWidth, double length)
{
    return std::max({textWidth + imageWidth, guideWidth + imageWidth, length});
}

QPoint placeUpward(QPoint topLeft, int height, int screenHeight)
{
    return {topLeft.x(), turnedOver(topLeft.y(), height, screenHeight)};
}

QPoint placeDownward(QPoint bottomLeft, int height, int screenHeight)
{
    return {bottomLeft.x(), turnedOver(bottomLeft.y(), height, screenHeight)};
}

QPoint insideArea(QPoint topLeft, QSize size, const QRect &area)
{
    const int right = area.x() + area.width() - size.width();
    const int bottom = area.y() + area.height() - size.height();
    return {std::max(area.x(), std::min(topLeft.x(), right)),
            std::max(area.y(), std::min(topLeft.y(), bottom))};
}

bool cutToSquare(QSize wanted, QSize given)
{
    return given.width() < wanted.width() && given.width() * 2 < given.height() * 3;
}

} // namespace pulsebar
