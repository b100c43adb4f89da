#include "nettop/MemoryFormat.h"
#include "nettop/Names.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace pulsebar::nettop;

/// Whatever the bytes were, the answer is consistent and survives being written again.
void check(const Memory &memory)
{
    for (const auto &socket : memory.sockets) {
        if (socket.owner >= memory.owners.size())
            std::abort();
    }
    for (const auto &owner : memory.owners) {
        if (owner.name.find_first_of(",\n") != std::string::npos || owner.name.starts_with("tcp"))
            std::abort();
    }
    if (decodeMemory(encodeMemory(memory, {}), {}) != memory)
        std::abort();
}

} // namespace

/// A file; the same bytes as the records after a header that fits them; and as a process's name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    if (const auto memory = decodeMemory(text, {}))
        check(*memory);
    Memory made;
    const auto count = size / (sizeof(SocketRecord) * 2);
    made.owners.resize(count);
    made.sockets.resize(count);
    if (count > 0)
        std::memcpy(made.sockets.data(), data, count * sizeof(SocketRecord));
    for (std::size_t i = 0; i < count; ++i) {
        made.sockets[i].cookie = i + 1;
        made.sockets[i].owner %= static_cast<std::uint32_t>(count);
        made.owners[i].name = text.substr(count * sizeof(SocketRecord) + i * 8, 8);
    }
    if (const auto memory = decodeMemory(encodeMemory(made, {}), {}))
        check(*memory);
    const auto end = text.find('\0');
    const auto field = fieldForProcess(text.substr(0, end), text.substr(std::min(end, size)));
    const auto user = fieldForUser(text);
    if (field.empty() || (field + user).find_first_of(",\n") != std::string::npos ||
        field.starts_with("tcp") || user.starts_with("tcp"))
        std::abort();
    return 0;
}
