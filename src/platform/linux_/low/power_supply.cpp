#include "platform/linux_/low/power_supply.h"

#include "platform/linux_/low/Scan.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace pulsebar {

namespace {

constexpr std::string_view blanks = " \t\n\r\v\f";
constexpr std::string_view digits = "0123456789";

constexpr std::int64_t microInMilli = 1000;

/// No battery has that many volts, amperes or watts; beyond it products would overflow.
bool isSane(std::int64_t value)
{
    constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 1024;
    return value >= -limit && value <= limit;
}

/// What counts something cannot be below 0: some drivers say -1 for what they do not know.
std::optional<std::int64_t> countOf(std::optional<std::int64_t> value)
{
    return value && *value >= 0 ? value : std::nullopt;
}

/// Of a value in millionths, in thousandths and without its sign.
std::optional<std::int64_t> magnitude(std::optional<std::int64_t> value)
{
    if (!value || !isSane(*value))
        return std::nullopt;
    return std::abs(*value) / microInMilli;
}

std::optional<std::int64_t> currentFromPower(const BatteryFigures &figures)
{
    const auto voltage = countOf(figures.voltageNow);
    if (!voltage || *voltage == 0 || !figures.powerNow || !isSane(*figures.powerNow))
        return std::nullopt;
    // Microwatts over microvolts are amperes.
    return std::abs(*figures.powerNow) * microInMilli / *voltage;
}

/// Takes a run of digits from the front, without leading zeros.
std::string_view takeNumber(std::string_view &text)
{
    const auto end = std::min(text.find_first_not_of(digits), text.size());
    std::string_view number = text.substr(0, end);
    text.remove_prefix(end);
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

bool startsWithDigit(std::string_view text)
{
    return !text.empty() && digits.find(text.front()) != std::string_view::npos;
}

} // namespace

std::string_view parseSupplyText(std::string_view text)
{
    const auto begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::optional<std::int64_t> parseSupplyNumber(std::string_view text)
{
    Scan scan(parseSupplyText(text));
    const auto number = scan.signedNumber();
    return scan.atEnd() ? number : std::nullopt;
}

bool hasChargePair(const BatteryFigures &figures)
{
    return (countOf(figures.chargeNow) && countOf(figures.chargeFull)) ||
           (countOf(figures.energyNow) && countOf(figures.energyFull));
}

ChargeLevel chargeLevel(const BatteryFigures &figures)
{
    const ChargeLevel charge{countOf(figures.chargeNow), countOf(figures.chargeFull)};
    const ChargeLevel energy{countOf(figures.energyNow), countOf(figures.energyFull)};
    if (charge.isComplete())
        return charge;
    if (energy.isComplete())
        return energy;
    if (const auto percent = countOf(figures.capacity))
        return {percent, 100};
    return charge.now || charge.full ? charge : energy;
}

std::optional<std::int64_t> millivolts(const BatteryFigures &figures)
{
    return magnitude(countOf(figures.voltageNow));
}

std::optional<std::int64_t> milliamperes(const BatteryFigures &figures)
{
    auto current = magnitude(figures.currentNow);
    if (!current)
        current = currentFromPower(figures);
    if (current && figures.status == "Discharging")
        return -*current;
    return current;
}

bool isExternalSupply(std::string_view type)
{
    return type == "Mains" || type == "Wireless" || type.starts_with("USB");
}

bool comesBefore(std::string_view one, std::string_view other)
{
    const auto whole = one.compare(other);
    while (!one.empty() && !other.empty()) {
        if (startsWithDigit(one) && startsWithDigit(other)) {
            const auto left = takeNumber(one);
            const auto right = takeNumber(other);
            if (left.size() != right.size())
                return left.size() < right.size();
            if (left != right)
                return left < right;
        } else if (one.front() != other.front()) {
            return one.front() < other.front();
        } else {
            one.remove_prefix(1);
            other.remove_prefix(1);
        }
    }
    if (one.empty() && other.empty())
        return whole < 0; // told apart by leading zeros only
    return one.empty();
}

} // namespace pulsebar
