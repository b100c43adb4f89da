// Stands for a desktop's session manager (X Session Management Protocol): takes one program into
// the session, and ends the session when told to.
//
// On its standard output stands, a line each: its address for $SESSION_MANAGER; "joined" for a
// program that came; for an ended session what the program said of being started again
// ("restart N"), "saved" once it has stored what it has, and "left" when it is gone.
// On its standard input "logout" ends the session, "checkpoint" has it saved, and it goes on.

extern "C" {
#include <X11/ICE/ICElib.h>
#include <X11/ICE/ICEutil.h>
#include <X11/SM/SMlib.h>
}

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

struct Session
{
    std::vector<IceConn> connections;
    SmsConn program = nullptr;
    int restartStyle = SmRestartIfRunning; // what the protocol says of programs that say nothing
    bool ends = false;
};

void say(const std::string &line)
{
    std::puts(line.c_str());
    std::fflush(stdout);
}

Status registerProgram(SmsConn connection, SmPointer /*data*/, char *previousId)
{
    std::free(previousId); // NOLINT: the library hands it over
    char *id = SmsGenerateClientID(connection);
    SmsRegisterClientReply(connection, id);
    std::free(id); // NOLINT
    say("joined");
    // The protocol has every newcomer store itself once.
    SmsSaveYourself(connection, SmSaveLocal, False, SmInteractStyleNone, False);
    return 1;
}

void setProperties(SmsConn /*connection*/, SmPointer data, int count, SmProp **properties)
{
    for (int i = 0; i < count; ++i) {
        const SmProp &property = *properties[i];
        if (std::strcmp(property.name, SmRestartStyleHint) == 0 && property.num_vals == 1)
            static_cast<Session *>(data)->restartStyle =
                *static_cast<unsigned char *>(property.vals[0].value);
        SmFreeProperty(properties[i]);
    }
    std::free(properties); // NOLINT
}

void saved(SmsConn connection, SmPointer data, Bool /*success*/)
{
    auto &session = *static_cast<Session *>(data);
    say("restart " + std::to_string(session.restartStyle));
    say("saved");
    if (session.ends)
        SmsDie(connection);
    else
        SmsSaveComplete(connection);
}

void left(SmsConn connection, SmPointer data, int count, char **reasons)
{
    SmFreeReasons(count, reasons);
    auto &session = *static_cast<Session *>(data);
    IceConn ice = SmsGetIceConnection(connection);
    std::erase(session.connections, ice);
    SmsCleanUp(connection);
    IceSetShutdownNegotiation(ice, False);
    IceCloseConnection(ice);
    session.program = nullptr;
    say("left");
}

Status newProgram(SmsConn connection, SmPointer data, unsigned long *mask, SmsCallbacks *callbacks,
                  char ** /*reason*/)
{
    static_cast<Session *>(data)->program = connection;
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
            SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
            SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    *callbacks = {};
    callbacks->register_client = {registerProgram, data};
    callbacks->interact_request = {[](SmsConn asking, SmPointer, int) { SmsInteract(asking); },
                                   data};
    callbacks->interact_done = {[](SmsConn, SmPointer, Bool) {}, data};
    callbacks->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {},
                                        data};
    callbacks->save_yourself_phase2_request = {
        [](SmsConn asking, SmPointer) { SmsSaveYourselfPhase2(asking); }, data};
    callbacks->save_yourself_done = {saved, data};
    callbacks->close_connection = {left, data};
    callbacks->set_properties = {setProperties, data};
    callbacks->delete_properties = {[](SmsConn, SmPointer, int, char **) {}, data};
    callbacks->get_properties = {
        [](SmsConn asking, SmPointer) { SmsReturnProperties(asking, 0, nullptr); }, data};
    return 1;
}

void command(Session &session, const std::string &line)
{
    if (session.program == nullptr)
        return;
    session.ends = line == "logout\n";
    SmsSaveYourself(session.program, SmSaveBoth, session.ends ? True : False, SmInteractStyleAny,
                    False);
}

void accept(Session &session, IceListenObj listener)
{
    IceAcceptStatus status = IceAcceptSuccess;
    IceConn connection = IceAcceptConnection(listener, &status);
    if (connection == nullptr)
        return;
    while (IceConnectionStatus(connection) == IceConnectPending)
        IceProcessMessages(connection, nullptr, nullptr);
    if (IceConnectionStatus(connection) == IceConnectAccepted)
        session.connections.push_back(connection);
}

/// Waits for what comes next and answers it. @return false at the end of the input
bool serve(Session &session, IceListenObj listener)
{
    std::vector<pollfd> sources{{STDIN_FILENO, POLLIN, 0},
                                {IceGetListenConnectionNumber(listener), POLLIN, 0}};
    const std::vector<IceConn> connections = session.connections;
    for (IceConn connection : connections)
        sources.push_back({IceConnectionNumber(connection), POLLIN, 0});
    ::poll(sources.data(), sources.size(), -1);
    for (std::size_t i = 0; i < connections.size(); ++i) {
        if (sources[i + 2].revents != 0 &&
            IceProcessMessages(connections[i], nullptr, nullptr) == IceProcessMessagesIOError) {
            std::erase(session.connections, connections[i]);
            say("left");
        }
    }
    if (sources[1].revents != 0)
        accept(session, listener);
    if (sources[0].revents == 0)
        return true;
    std::array<char, 64> text{};
    const ssize_t size = ::read(STDIN_FILENO, text.data(), text.size());
    if (size <= 0)
        return false;
    command(session, std::string(text.data(), static_cast<std::size_t>(size)));
    return true;
}

/// Whoever reaches the socket is of this machine.
Bool admit(char * /*host*/)
{
    return True;
}

} // namespace

int main()
{
    Session session;
    std::array<char, 256> error{};
    if (SmsInitialize("test", "1", newProgram, &session, admit, error.size(), error.data()) == 0)
        return EXIT_FAILURE;
    IceSetIOErrorHandler([](IceConn) {});
    int count = 0;
    IceListenObj *listeners = nullptr;
    if (IceListenForConnections(&count, &listeners, error.size(), error.data()) == 0)
        return EXIT_FAILURE;
    IceListenObj local = nullptr;
    for (int i = 0; i < count; ++i) {
        char *address = IceGetListenConnectionString(listeners[i]);
        if (std::strncmp(address, "local/", 6) == 0) {
            local = listeners[i];
            IceSetHostBasedAuthProc(local, admit);
            say(address);
        }
        std::free(address); // NOLINT
    }
    if (local == nullptr)
        return EXIT_FAILURE;
    while (serve(session, local)) {
    }
    IceFreeListenObjs(count, listeners);
    return EXIT_SUCCESS;
}
