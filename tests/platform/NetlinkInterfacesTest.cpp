#include "platform/linux_/NetlinkInterfaces.h"

#include "platform/TestNetwork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>

namespace pulsebar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Interfaces = std::vector<InterfaceCounters>;

/// A source that lives in a network of its own.
class Observer
{
public:
    explicit Observer(const TestNetwork &network)
        : m_network(network)
    {
    }

    Interfaces read()
    {
        const TestNetwork::Visit visit(m_network);
        auto interfaces = m_source.readInterfaceCounters();
        EXPECT_TRUE(interfaces);
        return interfaces.value_or(Interfaces());
    }

    std::vector<std::string> counted()
    {
        std::vector<std::string> names;
        for (const auto &link : read()) {
            if (link.linkLevel)
                names.push_back(link.name);
        }
        return names;
    }

    /// What the program would show: the sum over all that are up, of a link, and no loopback.
    std::uint64_t sum(std::uint64_t InterfaceCounters::*counter)
    {
        std::uint64_t total = 0;
        for (const auto &link : read()) {
            if (link.up && !link.loopback && link.linkLevel)
                total += link.*counter;
        }
        return total;
    }

private:
    const TestNetwork &m_network;
    NetlinkInterfaces m_source;
};

constexpr int frames = 500;
constexpr std::size_t frameSize = 1000;
constexpr std::uint64_t sent = frames * frameSize;

/// Frames travel on their own time; what arrives beside them (neighbour discovery) is far less
/// than half of them, and a frame that was counted twice is not.
void expectCountedOnce(const std::function<std::uint64_t()> &sum, std::uint64_t before)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (sum() - before < sent && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    EXPECT_GE(sum() - before, sent);
    EXPECT_LT(sum() - before, sent + sent / 2);
}

/// The kernel opens new interfaces and the ports of a bridge to traffic in its own time: a second
/// later where many came and went on the machine. What is sent before that is lost.
void waitUntilOpen(TestNetwork &network, const std::string &name,
                   const std::function<std::uint64_t()> &sum)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    const std::uint64_t before = sum();
    while (sum() - before < frameSize && std::chrono::steady_clock::now() < deadline) {
        network.send(name, 1, frameSize);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

TEST(NetlinkInterfaces, AnEmptyNetworkHasItsLoopbackOnly)
{
    const TestNetwork network;
    const auto interfaces = Observer(network).read();
    const auto loopback = std::ranges::find(interfaces, "lo", &InterfaceCounters::name);
    ASSERT_NE(loopback, interfaces.end());
    EXPECT_TRUE(loopback->up);
    EXPECT_TRUE(loopback->loopback);
    EXPECT_FALSE(loopback->linkLevel);
    EXPECT_THAT(Observer(network).counted(), IsEmpty());
}

TEST(NetlinkInterfaces, AContainersOnlyInterfaceCounts)
{
    TestNetwork world;
    TestNetwork container;
    world.addPair("veth1", container, "eth0");
    EXPECT_THAT(Observer(container).counted(), ElementsAre("eth0"));
}

TEST(NetlinkInterfaces, TrafficOfAContainerIsCountedOnceThereThoughItPassesAnUpperInterface)
{
    TestNetwork world;
    TestNetwork container;
    world.addPair("veth1", container, "eth0");
    container.addUpper("upper0", "eth0");
    Observer observer(container);
    EXPECT_THAT(observer.counted(), ElementsAre("eth0"));

    const auto out = [&] { return observer.sum(&InterfaceCounters::outBytes); };
    waitUntilOpen(container, "upper0", out);
    const auto before = out();
    container.send("upper0", frames, frameSize);
    expectCountedOnce(out, before);

    const auto in = [&] { return observer.sum(&InterfaceCounters::inBytes); };
    waitUntilOpen(world, "veth1", in);
    const auto inBefore = in();
    world.send("veth1", frames, frameSize);
    expectCountedOnce(in, inBefore);
}

TEST(NetlinkInterfaces, TrafficThatCrossesABridgeIsCountedOnce)
{
    TestNetwork world;
    TestNetwork host;
    TestNetwork container;
    world.addPair("wire", host, "eth0");
    host.addBridge("br0");
    host.addPair("veth1", container, "eth0");
    host.makePort("eth0", "br0");
    host.makePort("veth1", "br0");
    Observer observer(host);
    EXPECT_THAT(observer.counted(), ElementsAre("eth0"));

    const auto out = [&] { return observer.sum(&InterfaceCounters::outBytes); };
    const auto in = [&] { return observer.sum(&InterfaceCounters::inBytes); };
    waitUntilOpen(container, "eth0", out);
    const auto outBefore = out();
    const auto inBefore = in();
    container.send("eth0", frames, frameSize);
    expectCountedOnce(out, outBefore);
    // The host's end of the container's pair received all of it.
    EXPECT_LT(in() - inBefore, sent / 2);
}

TEST(NetlinkInterfaces, HostEndsWithoutABridgeDoNotCountBesideTheHostsOwn)
{
    TestNetwork world;
    TestNetwork host;
    TestNetwork pod;
    world.addPair("wire", host, "eth0");
    host.addPair("pod1", pod, "eth0");
    EXPECT_THAT(Observer(host).counted(), ElementsAre("eth0"));
    EXPECT_THAT(Observer(pod).counted(), ElementsAre("eth0"));
}

TEST(NetlinkInterfaces, AnUpperInterfaceThatWasMovedIntoAContainerCountsThere)
{
    TestNetwork world;
    TestNetwork host;
    TestNetwork container;
    world.addPair("wire", host, "eth0");
    host.addUpper("lan0", "eth0", container);
    Observer observer(container);
    EXPECT_THAT(observer.counted(), ElementsAre("lan0"));
    const auto out = [&] { return observer.sum(&InterfaceCounters::outBytes); };
    waitUntilOpen(container, "lan0", out);
    const auto before = out();
    container.send("lan0", frames, frameSize);
    expectCountedOnce(out, before);
}

TEST(NetlinkInterfaces, APairWithinOneNetworkIsListedAndNotCounted)
{
    TestNetwork network;
    network.addPair("left", network, "right");
    Observer observer(network);
    EXPECT_THAT(observer.counted(), IsEmpty());
    EXPECT_GE(observer.read().size(), 3U);
}

TEST(NetlinkInterfaces, FollowsInterfacesAsTheyComeChangeAndGo)
{
    TestNetwork world;
    TestNetwork network;
    Observer observer(network);
    EXPECT_THAT(observer.counted(), IsEmpty());
    network.addPair("eth0", world, "veth0");
    EXPECT_THAT(observer.counted(), ElementsAre("eth0"));
    network.addPair("eth1", world, "veth1");
    EXPECT_THAT(observer.counted(), UnorderedElementsAre("eth0", "eth1"));
    network.setUp("eth1", false);
    const auto interfaces = observer.read();
    EXPECT_FALSE(std::ranges::find(interfaces, "eth1", &InterfaceCounters::name)->up);
    EXPECT_TRUE(std::ranges::find(interfaces, "eth0", &InterfaceCounters::name)->up);
    network.remove("eth0");
    EXPECT_THAT(observer.counted(), ElementsAre("eth1"));
}

TEST(NetlinkInterfaces, ALongListComesWhole)
{
    // More than fits into one buffer of the kernel's answer.
    constexpr std::size_t pairs = 80;
    TestNetwork network;
    for (std::size_t i = 0; i < pairs; ++i)
        network.addPair('a' + std::to_string(i), network, 'b' + std::to_string(i));
    Observer observer(network);
    EXPECT_GE(observer.read().size(), 2 * pairs + 1);
    EXPECT_GE(observer.read().size(), 2 * pairs + 1);
}

TEST(NetlinkInterfaces, WithoutASocketTheAnswerIsAbsentAndComesBackLater)
{
    NetlinkInterfaces source;
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{0, limit.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_FALSE(source.readInterfaceCounters());
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_TRUE(source.readInterfaceCounters());
}

} // namespace
} // namespace pulsebar
