#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pulsebar {

/// A hardware fact. The numbers are the selectors by which facts have always been asked for.
enum class SystemFact : int {
    Machine = 1,
    Model = 2,
    PhysicalMemory = 5, ///< bytes
    UserMemory = 6,     ///< bytes
    PageSize = 7,       ///< bytes
    DiskNames = 8,
    DiskStatistics = 9,
    MachineArchitecture = 12,
    BusFrequency = 14, ///< hertz
    CpuFrequency = 15, ///< hertz
    CacheLine = 16,    ///< bytes
    L1InstructionCache = 17,
    L1DataCache = 18,
    L2Cache = 20,
    L3Cache = 22,
};

class SystemFacts
{
public:
    virtual ~SystemFacts() = default;
    /// UTF-8 text of a fact; absent when the system does not know the selector.
    virtual std::optional<std::string> text(int selector) const = 0;
    /// The fact as a number in its base unit (bytes, hertz); absent when unknown.
    virtual std::optional<std::int64_t> number(int selector) const = 0;
    /// A fact that goes by a name; absent when unknown. "hw.physicalcpu": the processor cores that
    /// are there, however many threads each of them runs.
    virtual std::optional<std::int64_t> numberByName(std::string_view name) const = 0;
};

} // namespace pulsebar
