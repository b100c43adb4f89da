#include "top/Columns.h"

#include <algorithm>
#include <array>

namespace pulsebar::top {

namespace {

// In the order of the enumeration.
constexpr std::array columnTable{
    ColumnFacts{Column::Pid, "pid", "PID", 7},
    ColumnFacts{Column::Command, "command", "COMMAND", 24},
    ColumnFacts{Column::Cpu, "cpu", "%CPU", 6},
    ColumnFacts{Column::Time, "time", "TIME", 9},
    ColumnFacts{Column::Threads, "threads", "#TH", 6},
    ColumnFacts{Column::User, "user", "USER", 12},
    ColumnFacts{Column::MessagesSent, "msgsent", "#MSGSENT", 8},
    ColumnFacts{Column::MessagesReceived, "msgrecv", "#MSGRECV", 8},
    ColumnFacts{Column::UnixCalls, "sysbsd", "#SYSBSD", 9},
    ColumnFacts{Column::MachCalls, "sysmach", "#SYSMACH", 8},
    ColumnFacts{Column::Power, "power", "POWER", 6},
    ColumnFacts{Column::PageIns, "pageins", "PAGEINS", 8},
    ColumnFacts{Column::ResidentSize, "rsize", "RSIZE", 7},
    ColumnFacts{Column::VirtualSize, "vsize", "VSIZE", 8},
};

} // namespace

const ColumnFacts &factsOf(Column column)
{
    return columnTable[static_cast<std::size_t>(column)];
}

std::optional<std::vector<Column>> parseColumnList(std::string_view list)
{
    std::vector<Column> columns;
    for (;;) {
        const auto comma = list.find(',');
        const auto key = list.substr(0, comma);
        const auto found = std::find_if(columnTable.begin(), columnTable.end(),
                                        [&](const ColumnFacts &each) { return each.key == key; });
        if (found == columnTable.end())
            return std::nullopt;
        columns.push_back(found->column);
        if (comma == std::string_view::npos)
            return columns;
        list.remove_prefix(comma + 1);
    }
}

} // namespace pulsebar::top
