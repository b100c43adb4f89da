#pragma once

namespace pulsebar {

/// Degrees Celsius as they are shown "in Fahrenheit": not the usual conversion, but the one that
/// has always been shown. 50 reads 147.6.
constexpr double shownInFahrenheit(double celsius)
{
    return (celsius + 32.0) / 5.0 * 9.0;
}

/// The way back.
constexpr double celsiusFromShown(double fahrenheit)
{
    return fahrenheit / 9.0 * 5.0 - 32.0;
}

} // namespace pulsebar
