#pragma once

#include <cstddef>
#include <string>

namespace pulsebar {

/// A network namespace of the running kernel, empty but for its loopback interface, that a test
/// fills with real interfaces. It is gone with the object, and everything in it. Works for root and
/// for users who may make user namespaces. Calls fail the running test when the kernel refuses.
class TestNetwork
{
public:
    /// Makes a namespace; the caller stays where it is.
    TestNetwork();
    ~TestNetwork();
    TestNetwork(const TestNetwork &) = delete;
    TestNetwork &operator=(const TestNetwork &) = delete;

    /// While it lives, the calling thread is in the namespace.
    class Visit
    {
    public:
        explicit Visit(const TestNetwork &network);
        ~Visit();
        Visit(const Visit &) = delete;
        Visit &operator=(const Visit &) = delete;

    private:
        int m_before;
    };

    /// A veth pair with one end here and the other in `other`, which may be this one. Both are up.
    void addPair(const std::string &name, const TestNetwork &other, const std::string &otherName);
    void addBridge(const std::string &name);
    void makePort(const std::string &name, const std::string &bridge);
    /// An interface on top of another, in `home`: a VLAN or, where the kernel is built without
    /// VLANs, a macvlan, which stands on its lower interface in the same way.
    void addUpper(const std::string &name, const std::string &lower, const TestNetwork &home);
    void addUpper(const std::string &name, const std::string &lower)
    {
        addUpper(name, lower, *this);
    }
    void setUp(const std::string &name, bool up = true);
    void remove(const std::string &name);

    /// Sends broadcast frames out of an interface.
    void send(const std::string &name, int frames, std::size_t frameSize);

private:
    int m_descriptor = -1;
};

} // namespace pulsebar
