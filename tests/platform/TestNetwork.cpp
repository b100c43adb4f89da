#include "platform/TestNetwork.h"

#include <gtest/gtest.h>
#include <libmnl/libmnl.h>
#include <linux/if_ether.h>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <linux/rtnetlink.h>
#include <linux/veth.h>
#include <net/if.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <memory>
#include <sched.h>
#include <unistd.h>
#include <vector>

namespace pulsebar {

namespace {

int presentNamespace()
{
    return ::open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC);
}

bool canMakeNamespaces()
{
    const int before = presentNamespace();
    const bool made = ::unshare(CLONE_NEWNET) == 0 && ::setns(before, CLONE_NEWNET) == 0;
    ::close(before);
    return made;
}

/// Who is not root may make network namespaces within a user namespace of his own. There is no way
/// back, so the process stays in there, in an empty network.
bool mayMakeNamespaces()
{
    if (canMakeNamespaces())
        return true;
    const auto user = ::getuid();
    const auto group = ::getgid();
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    return canMakeNamespaces();
}

/// One request to rtnetlink and its acknowledgement.
class Request
{
public:
    Request(std::uint16_t type, std::uint16_t flags)
        : m_header(mnl_nlmsg_put_header(m_buffer.data()))
    {
        m_header->nlmsg_type = type;
        m_header->nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | NLM_F_ACK | flags);
        m_header->nlmsg_seq = 1;
        m_link = static_cast<ifinfomsg *>(mnl_nlmsg_put_extra_header(m_header, sizeof(ifinfomsg)));
    }

    nlmsghdr *message() { return m_header; }
    ifinfomsg &link() { return *m_link; }

    /// @return 0 or the kernel's error number
    int send()
    {
        const std::unique_ptr<mnl_socket, int (*)(mnl_socket *)> socket(
            mnl_socket_open(NETLINK_ROUTE), &mnl_socket_close);
        if (!socket || mnl_socket_bind(socket.get(), 0, MNL_SOCKET_AUTOPID) < 0 ||
            mnl_socket_sendto(socket.get(), m_header, m_header->nlmsg_len) < 0)
            return errno;
        std::array<char, 8192> answer{};
        const auto size = mnl_socket_recvfrom(socket.get(), answer.data(), answer.size());
        if (size < 0 || mnl_cb_run(answer.data(), static_cast<std::size_t>(size), 1,
                                   mnl_socket_get_portid(socket.get()), nullptr, nullptr) < 0)
            return errno;
        return 0;
    }

private:
    alignas(nlmsghdr) std::array<char, 4096> m_buffer{};
    nlmsghdr *m_header;
    ifinfomsg *m_link;
};

/// IFLA_LINKINFO with a kind and what `data` adds for it.
void putInfo(nlmsghdr *message, const char *kind, const std::function<void(nlmsghdr *)> &data)
{
    nlattr *info = mnl_attr_nest_start(message, IFLA_LINKINFO);
    mnl_attr_put_strz(message, IFLA_INFO_KIND, kind);
    nlattr *inner = mnl_attr_nest_start(message, IFLA_INFO_DATA);
    data(message);
    mnl_attr_nest_end(message, inner);
    mnl_attr_nest_end(message, info);
}

unsigned indexOf(const std::string &name)
{
    const unsigned index = ::if_nametoindex(name.c_str());
    EXPECT_NE(index, 0U) << "no interface " << name;
    return index;
}

void putDescriptor(nlmsghdr *message, int descriptor)
{
    mnl_attr_put_u32(message, IFLA_NET_NS_FD, static_cast<std::uint32_t>(descriptor));
}

int addUpperOfKind(const char *kind, const std::string &name, unsigned lower, int home)
{
    Request request(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
    mnl_attr_put_strz(request.message(), IFLA_IFNAME, name.c_str());
    mnl_attr_put_u32(request.message(), IFLA_LINK, lower);
    putDescriptor(request.message(), home);
    putInfo(request.message(), kind, [&](nlmsghdr *message) {
        if (std::strcmp(kind, "vlan") == 0)
            mnl_attr_put_u16(message, IFLA_VLAN_ID, 5);
        else
            mnl_attr_put_u32(message, IFLA_MACVLAN_MODE, MACVLAN_MODE_BRIDGE);
    });
    return request.send();
}

} // namespace

TestNetwork::TestNetwork()
{
    EXPECT_TRUE(mayMakeNamespaces())
        << "no network namespace can be made: " << std::strerror(errno);
    const int before = presentNamespace();
    EXPECT_EQ(::unshare(CLONE_NEWNET), 0) << std::strerror(errno);
    m_descriptor = presentNamespace();
    setUp("lo");
    EXPECT_EQ(::setns(before, CLONE_NEWNET), 0) << std::strerror(errno);
    ::close(before);
}

TestNetwork::~TestNetwork()
{
    ::close(m_descriptor);
}

TestNetwork::Visit::Visit(const TestNetwork &network)
    : m_before(presentNamespace())
{
    EXPECT_EQ(::setns(network.m_descriptor, CLONE_NEWNET), 0) << std::strerror(errno);
}

TestNetwork::Visit::~Visit()
{
    EXPECT_EQ(::setns(m_before, CLONE_NEWNET), 0) << std::strerror(errno);
    ::close(m_before);
}

void TestNetwork::addPair(const std::string &name, const TestNetwork &other,
                          const std::string &otherName)
{
    {
        const Visit visit(*this);
        Request request(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
        mnl_attr_put_strz(request.message(), IFLA_IFNAME, name.c_str());
        putInfo(request.message(), "veth", [&](nlmsghdr *message) {
            nlattr *peer = mnl_attr_nest_start(message, VETH_INFO_PEER);
            mnl_nlmsg_put_extra_header(message, sizeof(ifinfomsg));
            mnl_attr_put_strz(message, IFLA_IFNAME, otherName.c_str());
            putDescriptor(message, other.m_descriptor);
            mnl_attr_nest_end(message, peer);
        });
        ASSERT_EQ(request.send(), 0) << name;
    }
    setUp(name);
    const Visit visit(other);
    Request request(RTM_NEWLINK, 0);
    request.link().ifi_index = static_cast<int>(indexOf(otherName));
    request.link().ifi_flags = request.link().ifi_change = IFF_UP;
    ASSERT_EQ(request.send(), 0) << otherName;
}

void TestNetwork::addBridge(const std::string &name)
{
    const Visit visit(*this);
    Request request(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
    request.link().ifi_flags = request.link().ifi_change = IFF_UP;
    mnl_attr_put_strz(request.message(), IFLA_IFNAME, name.c_str());
    putInfo(request.message(), "bridge", [](nlmsghdr *) {});
    ASSERT_EQ(request.send(), 0) << name;
}

void TestNetwork::makePort(const std::string &name, const std::string &bridge)
{
    const Visit visit(*this);
    Request request(RTM_NEWLINK, 0);
    request.link().ifi_index = static_cast<int>(indexOf(name));
    mnl_attr_put_u32(request.message(), IFLA_MASTER, indexOf(bridge));
    ASSERT_EQ(request.send(), 0) << name;
}

void TestNetwork::addUpper(const std::string &name, const std::string &lower,
                           const TestNetwork &home)
{
    {
        const Visit visit(*this);
        const unsigned index = indexOf(lower);
        int error = addUpperOfKind("vlan", name, index, home.m_descriptor);
        if (error == EOPNOTSUPP)
            error = addUpperOfKind("macvlan", name, index, home.m_descriptor);
        ASSERT_EQ(error, 0) << name << ": " << std::strerror(error);
    }
    const Visit visit(home);
    Request request(RTM_NEWLINK, 0);
    request.link().ifi_index = static_cast<int>(indexOf(name));
    request.link().ifi_flags = request.link().ifi_change = IFF_UP;
    ASSERT_EQ(request.send(), 0) << name;
}

void TestNetwork::setUp(const std::string &name, bool up)
{
    const Visit visit(*this);
    Request request(RTM_NEWLINK, 0);
    request.link().ifi_index = static_cast<int>(indexOf(name));
    request.link().ifi_change = IFF_UP;
    request.link().ifi_flags = up ? IFF_UP : 0;
    ASSERT_EQ(request.send(), 0) << name;
}

void TestNetwork::remove(const std::string &name)
{
    const Visit visit(*this);
    Request request(RTM_DELLINK, 0);
    request.link().ifi_index = static_cast<int>(indexOf(name));
    ASSERT_EQ(request.send(), 0) << name;
}

void TestNetwork::send(const std::string &name, int frames, std::size_t frameSize)
{
    const Visit visit(*this);
    const int socket = ::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
    ASSERT_GE(socket, 0) << std::strerror(errno);
    std::vector<unsigned char> frame(frameSize, 0);
    std::fill_n(frame.begin(), ETH_ALEN, 0xFF);
    frame[ETH_ALEN] = 0x02; // a locally administered sender
    // Local experimental type: no protocol answers.
    frame[2 * ETH_ALEN] = 0x88;
    frame[2 * ETH_ALEN + 1] = 0xB5;
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_ifindex = static_cast<int>(indexOf(name));
    for (int i = 0; i < frames; ++i) {
        const auto sent = ::sendto(socket, frame.data(), frame.size(), 0,
                                   reinterpret_cast<const sockaddr *>(&address), sizeof address);
        ASSERT_EQ(sent, static_cast<ssize_t>(frame.size())) << std::strerror(errno);
    }
    ::close(socket);
}

} // namespace pulsebar
