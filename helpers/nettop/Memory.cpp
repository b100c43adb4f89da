#include "nettop/Memory.h"

#include <utility>

namespace pulsebar::nettop {

void dropOwners(Memory &memory, const std::vector<bool> &keep)
{
    std::vector<std::uint32_t> places(memory.owners.size(), noOwner);
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < memory.owners.size(); ++i) {
        if (!keep[i])
            continue;
        places[i] = next;
        if (next != i)
            memory.owners[next] = std::move(memory.owners[i]);
        ++next;
    }
    memory.owners.resize(next);
    for (auto &socket : memory.sockets) {
        if (socket.owner != noOwner)
            socket.owner = places[socket.owner];
    }
}

} // namespace pulsebar::nettop
