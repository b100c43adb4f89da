// Stands in for the sampler. The first argument says how to behave, the rest is the sampler's own
// command line, or the behaviour's operands where it has some:
//   arguments          writes its command line, blanks between, and waits
//   flood BYTES        writes that many bytes that are no report, in one write, and waits
//   endless            writes without a pause
//   exit STATUS TEXT   writes TEXT and exits
//   killed             ends by a signal
//   stubborn           ignores SIGTERM, writes "ready" and waits
//   close              closes its output and waits
//   heir               writes "ready", leaves a child behind that keeps the output open, exits
//                      with 0
//   masked             writes "blocked" or "open", as it finds SIGTERM, and waits
#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

void say(const std::string &text)
{
    std::size_t at = 0;
    while (at < text.size()) {
        const ssize_t count = ::write(STDOUT_FILENO, text.data() + at, text.size() - at);
        if (count <= 0)
            std::exit(9);
        at += static_cast<std::size_t>(count);
    }
}

/// Waits to be ended; never outlives the test that started it.
[[noreturn]] void wait()
{
    ::alarm(60);
    for (;;)
        ::pause();
}

std::string joined(int argc, char **argv)
{
    std::string line;
    for (int i = 2; i < argc; ++i)
        line += (i > 2 ? " " : "") + std::string(argv[i]);
    return line;
}

std::string noise(std::size_t bytes)
{
    std::string text(bytes, '\0');
    unsigned state = 1;
    for (char &character : text) {
        state = state * 1103515245U + 12345U;
        character = static_cast<char>(state >> 16);
    }
    return text;
}

[[noreturn]] void sayWithoutEnd()
{
    ::alarm(60);
    for (;;)
        say("one line after the other\n");
}

void leaveHeir()
{
    const pid_t parent = ::getpid();
    if (::fork() == 0) {
        while (::getppid() == parent)
            ::usleep(1000);
        ::alarm(3);
        ::pause();
        std::exit(0);
    }
    say("ready");
    std::exit(0);
}

} // namespace

int main(int argc, char **argv)
{
    const std::string_view mode = argc > 1 ? argv[1] : "";
    if (mode == "arguments")
        say(joined(argc, argv));
    else if (mode == "flood")
        say(noise(static_cast<std::size_t>(std::atol(argv[2]))));
    else if (mode == "endless")
        sayWithoutEnd();
    else if (mode == "exit") {
        say(argv[3]);
        return std::atoi(argv[2]);
    } else if (mode == "killed")
        ::raise(SIGKILL);
    else if (mode == "stubborn") {
        ::signal(SIGTERM, SIG_IGN);
        say("ready");
    } else if (mode == "close")
        ::close(STDOUT_FILENO);
    else if (mode == "heir")
        leaveHeir();
    else if (mode == "masked") {
        sigset_t blocked;
        ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
        say(::sigismember(&blocked, SIGTERM) == 1 ? "blocked" : "open");
    }
    wait();
}
