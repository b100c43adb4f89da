#pragma once

#include <QString>

#include <concepts>
#include <optional>
#include <variant>
#include <vector>

namespace pulsebar {

/// One argument of a printf-style format: a text, a real number or an integer.
class FormatArgument
{
public:
    FormatArgument(const QString &text)
        : m_value(text)
    {
    }
    FormatArgument(double number)
        : m_value(number)
    {
    }
    FormatArgument(float number)
        : m_value(static_cast<double>(number))
    {
    }
    template <std::signed_integral Integer>
    FormatArgument(Integer number)
        : m_value(static_cast<qint64>(number))
    {
    }
    template <std::unsigned_integral Integer>
    FormatArgument(Integer number)
        : m_value(static_cast<quint64>(number))
    {
    }

    const std::variant<QString, double, qint64, quint64> &value() const { return m_value; }

private:
    std::variant<QString, double, qint64, quint64> m_value;
};

using FormatArguments = std::vector<FormatArgument>;

/// Fills a printf-style format. Known placeholders: `%@` a text; `%f` and `%g` a real number;
/// `%d`, `%i` and `%u` an integer, with or without the length `l`, `ll`, `h`, `z`, `q`; `%%` a
/// percent sign. Flags `-+ 0#`, width and precision (at most 99) and positions (`%2$@`) are
/// understood. Absent unless the placeholders fit the arguments in number and kind, each argument
/// being used.
/// @param decimalPoint what stands between the whole part and the fraction of real numbers
std::optional<QString> formatChecked(QStringView format, const FormatArguments &arguments,
                                     const QString &decimalPoint);

/// plainFormat(format, arguments...): a format of our own, numbers always with a point. A format
/// that does not fit its arguments comes back as it is.
QString plainFormatList(QStringView format, const FormatArguments &arguments);

template <typename... Values> QString plainFormat(QStringView format, const Values &...values)
{
    return plainFormatList(format, {FormatArgument(values)...});
}

} // namespace pulsebar
