#include "util/ProcessNumber.h"

#include <algorithm>
#include <limits>

namespace pulsebar {

namespace {

constexpr qsizetype longest = std::numeric_limits<qint32>::digits10 + 1;

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

} // namespace

std::optional<qint64> processNumber(QStringView text)
{
    if (text.isEmpty() || text.size() > longest || text.front() == u'0' ||
        !std::all_of(text.begin(), text.end(), isDigit))
        return std::nullopt;
    qint64 number = 0;
    for (const QChar digit : text)
        number = number * 10 + (digit.unicode() - u'0');
    if (number < 2 || number > std::numeric_limits<qint32>::max())
        return std::nullopt;
    return number;
}

} // namespace pulsebar
