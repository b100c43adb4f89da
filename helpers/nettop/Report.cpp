#include "nettop/Report.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <tuple>

namespace pulsebar::nettop {

namespace {

constexpr std::string_view header =
    "time,,interface,state,bytes_in,bytes_out,rx_ooo,re-tx,rtt_avg,rcvsize,tx_win,cc_algo\n";
/// Fields after the byte counters, which a process does not have.
constexpr std::string_view noDetails = ",,,,,,\n";

/// A line in the making. Its callers see to it that it never grows as long as its space.
class Line
{
public:
    Line &add(std::string_view text)
    {
        const auto size = std::min(text.size(), left());
        m_end = std::copy_n(text.data(), size, m_end);
        return *this;
    }
    Line &add(char c) { return add(std::string_view(&c, 1)); }
    Line &add(std::uint64_t number)
    {
        const auto [end, error] = std::to_chars(m_end, m_end + left(), number);
        if (error == std::errc())
            m_end = end;
        return *this;
    }
    Line &padded(std::uint64_t number, std::uint64_t digitsAsTen)
    {
        for (auto unit = digitsAsTen; unit >= 10 && number < unit; unit /= 10)
            add('0');
        return add(number);
    }
    std::string_view text() const
    {
        return {m_space.data(), static_cast<std::size_t>(m_end - m_space.data())};
    }

private:
    std::size_t left() const
    {
        return static_cast<std::size_t>(m_space.data() + m_space.size() - m_end);
    }

    std::array<char, 512> m_space;
    char *m_end = m_space.data();
};

void addIpv4(Line &line, const std::byte *bytes)
{
    for (int i = 0; i < 4; ++i) {
        if (i > 0)
            line.add('.');
        line.add(std::uint64_t{std::to_integer<unsigned char>(bytes[i])});
    }
}

void addIpv6(Line &line, const std::byte *bytes)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET6, bytes, text.data(), text.size());
    line.add('[').add(std::string_view(text.data())).add(']');
}

void addEnd(Line &line, const std::array<std::byte, 16> &address, std::uint16_t port, bool isIpv6)
{
    constexpr std::size_t ipv4InMapped = 12;
    if (!isIpv6)
        addIpv4(line, address.data());
    else if (isMappedIpv4(address))
        addIpv4(line, address.data() + ipv4InMapped);
    else
        addIpv6(line, address.data());
    line.add(':').add(std::uint64_t{port});
}

void addAddresses(Line &line, const TcpSocket &socket)
{
    const bool isPlain = !socket.isIpv6 || isMappedIpv4(socket.localAddress);
    line.add(isPlain ? "tcp4 " : "tcp6 ");
    addEnd(line, socket.localAddress, socket.localPort, socket.isIpv6);
    line.add("<->");
    if (socket.state == TcpState::Listen)
        line.add("*:*");
    else
        addEnd(line, socket.remoteAddress, socket.remotePort, socket.isIpv6);
}

void addDetails(Line &line, const TcpSocket &socket)
{
    constexpr std::uint64_t usPerMs = 1000;
    const auto &counters = socket.counters;
    line.add(',').add(std::uint64_t{counters.outOfOrder}).add(',').add(counters.resent).add(',');
    line.add(counters.roundTrip / usPerMs).add('.').padded(counters.roundTrip % usPerMs, 100);
    line.add(" ms,").add(std::uint64_t{counters.receiveSpace});
    line.add(',').add(std::uint64_t{counters.sendWindow}).add(',');
    for (const char c : socket.congestionControl) {
        if (c == '\0')
            break;
        line.add(c > ' ' && c != ',' && c != '\x7F' ? c : '?');
    }
    line.add('\n');
}

} // namespace

std::string addressText(const TcpSocket &socket)
{
    Line line;
    addAddresses(line, socket);
    return std::string(line.text());
}

Report::Report(const Memory &memory, InterfaceNames &interfaces, UserNamer nameUser)
    : m_memory(memory)
    , m_interfaces(interfaces)
    , m_nameUser(std::move(nameUser))
{
}

/// Sorts sockets by owner; the order among those of an owner stays.
void Report::group(std::size_t sockets, const Accounts &accounts)
{
    const auto &owners = m_memory.owners;
    m_starts.assign(owners.size() + 1, 0);
    for (std::size_t i = 0; i < sockets; ++i)
        ++m_starts[accounts.ownerOf(i) + 1];
    m_owners.clear();
    for (std::uint32_t i = 0; i < owners.size(); ++i) {
        if (m_starts[i + 1] > 0 || owners[i].moved())
            m_owners.push_back(i);
        m_starts[i + 1] += m_starts[i];
    }
    m_grouped.resize(sockets);
    auto next = m_starts;
    for (std::uint32_t i = 0; i < sockets; ++i)
        m_grouped[next[accounts.ownerOf(i)]++] = i;
    std::sort(m_owners.begin(), m_owners.end(), [&](auto a, auto b) {
        return std::tuple(!owners[a].isProcess(), owners[a].pid, owners[a].uid) <
               std::tuple(!owners[b].isProcess(), owners[b].pid, owners[b].uid);
    });
}

void Report::setTime(const timespec &time)
{
    constexpr long nsPerUs = 1000;
    tm local{};
    ::localtime_r(&time.tv_sec, &local);
    Line line;
    line.padded(static_cast<std::uint64_t>(local.tm_hour), 10).add(':');
    line.padded(static_cast<std::uint64_t>(local.tm_min), 10).add(':');
    line.padded(static_cast<std::uint64_t>(local.tm_sec), 10).add('.');
    line.padded(static_cast<std::uint64_t>(time.tv_nsec / nsPerUs), 100000).add(',');
    m_time = line.text();
}

void Report::addOwner(const OwnerRecord &owner)
{
    Line line;
    line.add(m_time);
    if (owner.isProcess())
        line.add(owner.name).add('.').add(static_cast<std::uint64_t>(owner.pid));
    else if (owner.uid == OwnerRecord::nobodyKnown)
        line.add("closed connections");
    else
        line.add(m_nameUser(owner.uid));
    line.add(",,,").add(owner.received).add(',').add(owner.sent).add(noDetails);
    m_text += line.text();
}

void Report::addConnection(const TcpSocket &socket, const SocketRecord &record)
{
    Line line;
    line.add(m_time);
    addAddresses(line, socket);
    line.add(',').add(m_interfaces.nameFor(socket)).add(',').add(nameOfTcpState(socket.state));
    line.add(',').add(std::max(record.received, socket.counters.received));
    line.add(',').add(std::max(record.sent, socket.counters.sent));
    if (socket.hasCounters && socket.state != TcpState::Listen)
        addDetails(line, socket);
    else
        line.add(noDetails);
    m_text += line.text();
}

const std::string &Report::write(const std::vector<TcpSocket> &sockets, const Accounts &accounts,
                                 const timespec &time)
{
    constexpr std::size_t usualLine = 128;
    group(sockets.size(), accounts);
    setTime(time);
    m_text.clear();
    m_text.reserve((sockets.size() + m_owners.size() + 4) * usualLine);
    m_text += header;
    for (const auto owner : m_owners) {
        addOwner(m_memory.owners[owner]);
        for (auto i = m_starts[owner]; i < m_starts[owner + 1]; ++i) {
            const auto place = m_grouped[i];
            addConnection(sockets[place], accounts.recordOf(place));
        }
    }
    return m_text;
}

} // namespace pulsebar::nettop
