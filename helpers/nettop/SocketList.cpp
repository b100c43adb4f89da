#include "nettop/SocketList.h"

#include <linux/inet_diag.h>
#include <sys/socket.h>

#include <algorithm>
#include <span>
#include <utility>

namespace pulsebar::nettop {

namespace {

/// This older request walks the kernel's table once for both families; the newer one has to be
/// made for each of them, and each time walks the table.
inet_diag_req everything()
{
    inet_diag_req request{};
    request.idiag_family = AF_INET;
    request.idiag_ext = 1U << (INET_DIAG_INFO - 1) | 1U << (INET_DIAG_CONG - 1);
    request.idiag_states = ~0U;
    request.id.idiag_cookie[0] = request.id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
    return request;
}

} // namespace

std::optional<std::vector<TcpSocket>> readTcpSockets(NetlinkDump &dump)
{
    constexpr int mostAttempts = 3;
    std::vector<TcpSocket> sockets;
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
    std::vector<TcpSocket> ordered;
    ordered.reserve(sockets.size());
    for (const auto &[cookie, place] : order) {
        const auto &socket = sockets[place];
        if (ordered.empty() || ordered.back().cookie != cookie)
            ordered.push_back(socket);
        else if (!ordered.back().hasCounters)
            ordered.back() = socket;
    }
    sockets = std::move(ordered);
}

} // namespace pulsebar::nettop
