#include "util/Text.h"

namespace pulsebar {

namespace {

/// Where a cut at a marker begins and ends.
struct Match
{
    qsizetype begin;
    qsizetype end;
};

std::optional<Match> findFrom(const QString &text, const QString &marker, qsizetype from)
{
    if (marker.isEmpty())
        return std::nullopt;
    const qsizetype at = text.indexOf(marker, from, Qt::CaseInsensitive);
    if (at < 0)
        return std::nullopt;
    return Match{at, at + marker.size()};
}

} // namespace

Text substringTo(const Text &text, const QString &separator)
{
    if (!text)
        return std::nullopt;
    const auto match = findFrom(*text, separator, 0);
    if (!match || match->begin == 0)
        return std::nullopt;
    return text->left(match->begin);
}

Text substringFrom(const Text &text, const QString &separator)
{
    if (!text)
        return std::nullopt;
    const auto match = findFrom(*text, separator, 0);
    if (!match || match->end == text->size())
        return std::nullopt;
    return text->mid(match->end);
}

Text substringFromTo(const Text &text, const Text &start, const Text &end)
{
    if (!text || !start || !end)
        return std::nullopt;
    const auto first = findFrom(*text, *start, 0);
    if (!first || first->end == text->size())
        return std::nullopt;
    const auto last = findFrom(*text, *end, first->end);
    if (!last || last->begin == first->end)
        return std::nullopt;
    return text->mid(first->end, last->begin - first->end);
}

QString removeString(const QString &text, const QString &piece)
{
    return replaceStringFromTo(text, piece, QString());
}

Text removeString(const Text &text, const QString &piece)
{
    return replaceStringFromTo(text, piece, QString());
}

QString replaceStringFromTo(const QString &text, const Text &oldPiece, const QString &newPiece)
{
    if (!oldPiece || oldPiece->isEmpty())
        return text;
    QString result = text;
    return result.replace(*oldPiece, newPiece, Qt::CaseSensitive);
}

Text replaceStringFromTo(const Text &text, const Text &oldPiece, const QString &newPiece)
{
    if (!text)
        return std::nullopt;
    return replaceStringFromTo(*text, oldPiece, newPiece);
}

QString replaceReturnCode(const QString &text)
{
    QString result = text;
    result.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return result.replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

Text replaceReturnCode(const Text &text)
{
    if (!text)
        return std::nullopt;
    return replaceReturnCode(*text);
}

} // namespace pulsebar
