#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>

namespace pulsebar {

/// CPU time of all threads of a process in ns, from its CPU clock (clock_getcpuclockid(3)). No
/// rights are needed, and it costs a thirtieth of reading `stat`. Absent when there is no such
/// process, or no such clocks. A process whose clock stands still did not run.
std::optional<std::uint64_t> readProcessClock(pid_t pid);

/// False where clocks and /proc do not tell of the same processes: /proc of another process
/// namespace, or a kernel without such clocks.
bool processClocksMatchProc();

} // namespace pulsebar
