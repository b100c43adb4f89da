#include "nettop/SocketList.h"

#include <linux/inet_diag.h>
#include <sys/socket.h>

#include <algorithm>
#include <span>
#include <utility>

namespace pulsebar::nettop {

namespace {

/// TCP_NEW_SYN_RECV.
constexpr unsigned newSynReceived = 12;

/// This older request walks the kernel's table once for both families; the newer one has to be
/// made for each of them, and each time walks the table.
inet_diag_req everything()
{
    inet_diag_req request{};
    request.idiag_family = AF_INET;
    request.idiag_ext = 1U << (INET_DIAG_INFO - 1) | 1U << (INET_DIAG_CONG - 1);
    // Not those that are only bound (a state after TCP_NEW_SYN_RECV, the last that the kernel had
    // before it could list them): they have no connection, and another table of the kernel would
    // have to be walked for them.
    request.idiag_states = (1U << (newSynReceived + 1)) - 1;
    request.id.idiag_cookie[0] = request.id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
    return request;
}

/// Moves each socket once, along the cycles of the order: a second list of this size would cost
/// more than the sorting.
void moveIntoPlaces(std::vector<TcpSocket> &sockets,
                    std::vector<std::pair<std::uint64_t, std::size_t>> &order)
{
    for (std::size_t start = 0; start < order.size(); ++start) {
        if (order[start].second == start)
            continue;
        const auto first = sockets[start];
        auto place = start;
        for (auto from = order[place].second; from != start; from = order[place].second) {
            sockets[place] = sockets[from];
            order[place].second = place;
            place = from;
        }
        sockets[place] = first;
        order[place].second = place;
    }
}

} // namespace

std::optional<std::vector<TcpSocket>> readTcpSockets(NetlinkDump &dump, std::size_t expected)
{
    constexpr int mostAttempts = 3;
    std::vector<TcpSocket> sockets;
    sockets.reserve(expected);
    const auto request = everything();
    auto result = NetlinkDump::Result::Interrupted;
    for (int attempt = 0; attempt < mostAttempts && result == NetlinkDump::Result::Interrupted;
         ++attempt) {
        sockets.clear();
        result = dump.ask(TCPDIAG_GETSOCK, std::as_bytes(std::span(&request, 1)),
                          [&](std::uint16_t /*type*/, NetlinkBytes content) {
                              if (const auto socket = parseTcpSocket(content))
                                  sockets.push_back(*socket);
                          });
    }
    if (result == NetlinkDump::Result::Failed)
        return std::nullopt;
    orderByCookie(sockets);
    return sockets;
}

void orderByCookie(std::vector<TcpSocket> &sockets)
{
    std::vector<std::pair<std::uint64_t, std::size_t>> order;
    order.reserve(sockets.size());
    for (std::size_t i = 0; i < sockets.size(); ++i)
        order.emplace_back(sockets[i].cookie, i);
    std::sort(order.begin(), order.end());
    moveIntoPlaces(sockets, order);
    std::size_t kept = 0;
    for (auto &socket : sockets) {
        if (kept > 0 && sockets[kept - 1].cookie == socket.cookie) {
            if (!sockets[kept - 1].hasCounters)
                sockets[kept - 1] = socket;
        } else {
            if (&sockets[kept] != &socket)
                sockets[kept] = socket;
            ++kept;
        }
    }
    sockets.resize(kept);
}

} // namespace pulsebar::nettop
