// What a battery's files say, in any text: one file per line, in the order of the figures.
#include "platform/linux_/low/Scan.h"
#include "platform/linux_/low/power_supply.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace pulsebar;
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    Scan lines(text);
    BatteryFigures figures;
    figures.status = parseSupplyText(lines.line().value_or(""));
    for (auto *figure :
         {&figures.chargeNow, &figures.chargeFull, &figures.energyNow, &figures.energyFull,
          &figures.capacity, &figures.voltageNow, &figures.currentNow, &figures.powerNow})
        *figure = parseSupplyNumber(lines.line().value_or(""));
    const ChargeLevel level = chargeLevel(figures);
    if (hasChargePair(figures) && !level.isComplete())
        std::abort();
    if (level.now.value_or(0) < 0 || level.full.value_or(0) < 0 ||
        millivolts(figures).value_or(0) < 0)
        std::abort();
    const auto current = milliamperes(figures).value_or(0);
    if (figures.status == "Discharging" ? current > 0 : current < 0)
        std::abort();
    const auto one = text.substr(0, size / 2);
    const auto other = text.substr(size / 2);
    if (comesBefore(one, other) && comesBefore(other, one))
        std::abort();
    if (!comesBefore(one, other) && !comesBefore(other, one) && one != other)
        std::abort();
    return 0;
}
