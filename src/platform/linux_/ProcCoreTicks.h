#pragma once

#include "platform/Counters.h"
#include "platform/linux_/low/SmallFile.h"
#include "platform/linux_/low/Sysroot.h"

namespace pulsebar {

/// Ticks of the processors from /proc/stat, which is kept open. A processor that is offline has
/// no line there and no entry here; it comes back with the totals it had.
class ProcCoreTicks : public CoreTicksSource
{
public:
    explicit ProcCoreTicks(const Sysroot &root);
    std::optional<std::vector<CoreTicks>> readCoreTicks() override;

private:
    SmallFile m_stat;
};

} // namespace pulsebar
