#include "views/ByteRates.h"

#include <cmath>

namespace pulsebar::byterates {

int unitFor(double bytesPerSecond)
{
    static constexpr double kParts = 1000.0; // as many as kDecimals tell apart
    for (int i = static_cast<int>(kUnits.size()) - 1; i > 0; --i) {
        const double rate = bytesPerSecond / kUnits[static_cast<std::size_t>(i)].bytes;
        if (rate >= 1 && rate * kParts == std::floor(rate * kParts))
            return i;
    }
    return 0;
}

} // namespace pulsebar::byterates
