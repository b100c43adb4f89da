#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace pulsebar::top {

enum class Column {
    Pid,
    Command,
    Cpu,
    Time,
    Threads,
    User,
    MessagesSent,
    MessagesReceived,
    UnixCalls,
    MachCalls,
    Power,
    PageIns,
    ResidentSize,
    VirtualSize,
};

struct ColumnFacts
{
    Column column;
    std::string_view key;   ///< as -stats names it
    std::string_view title; ///< as the column header prints it: never with a blank
    unsigned width;         ///< characters kept for it; a longer value pushes the rest aside
};

const ColumnFacts &factsOf(Column column);

/// Comma-separated keys. Absent when one is unknown or the list is empty.
std::optional<std::vector<Column>> parseColumnList(std::string_view list);

} // namespace pulsebar::top
