#include "helpers/nettop/NettopRun.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sstream>
#include <unistd.h>

namespace pulsebar::nettop {

namespace {

std::vector<std::string> fieldsOf(const std::string &line)
{
    std::vector<std::string> fields;
    std::istringstream text(line);
    for (std::string field; std::getline(text, field, ',');)
        fields.push_back(field);
    return fields;
}

std::string readPart(int descriptor)
{
    std::string text(1U << 20U, '\0');
    const auto count = ::read(descriptor, text.data(), text.size());
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
}

std::string readToEnd(int descriptor)
{
    std::string all;
    for (auto part = readPart(descriptor); !part.empty(); part = readPart(descriptor))
        all += part;
    return all;
}

void setVariable(const char *name, const std::string &value)
{
    if (value.empty())
        ::unsetenv(name);
    else
        ::setenv(name, value.c_str(), 1);
}

[[noreturn]] void become(const NettopSetting &setting, int out, int errors)
{
    ::dup2(out, STDOUT_FILENO);
    ::dup2(errors, STDERR_FILENO);
    setVariable("XDG_RUNTIME_DIR", setting.runtimeFolder);
    setVariable("PULSEBAR_SYSROOT", setting.sysroot);
    std::string program(PULSEBAR_NETTOP);
    std::vector<char *> pointers{program.data()};
    for (const auto &argument : setting.arguments)
        pointers.push_back(const_cast<char *>(argument.c_str()));
    pointers.push_back(nullptr);
    // Its file may be out of the other user's reach: it is opened before.
    const int file = ::open(PULSEBAR_NETTOP, O_RDONLY | O_CLOEXEC);
    if (setting.user != 0 && ::setuid(setting.user) != 0)
        ::_exit(126);
    ::fexecve(file, pointers.data(), environ);
    ::_exit(127);
}

} // namespace

ReportedOwners parseReport(const std::string &text)
{
    ReportedOwners owners;
    ReportedOwner *current = nullptr;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("time"))
            continue;
        const auto fields = fieldsOf(line);
        EXPECT_GE(fields.size(), 7U) << line;
        if (fields.size() < 7)
            continue;
        if (!fields[1].starts_with("tcp")) {
            EXPECT_FALSE(owners.contains(fields[1])) << line;
            current = &owners[fields[1]];
            current->in = std::stoull(fields[4]);
            current->out = std::stoull(fields[5]);
            continue;
        }
        EXPECT_TRUE(current) << line;
        const auto blank = fields[1].find(' ');
        if (current)
            current->connections.push_back({fields[1].substr(0, blank), fields[1].substr(blank + 1),
                                            fields[2], fields[3], std::stoull(fields[4]),
                                            std::stoull(fields[5])});
    }
    return owners;
}

NettopRun::NettopRun(const NettopSetting &setting)
{
    std::array<int, 2> out{};
    std::array<int, 2> errors{};
    EXPECT_EQ(::pipe2(out.data(), O_DIRECT | O_CLOEXEC), 0);
    EXPECT_EQ(::pipe2(errors.data(), O_CLOEXEC), 0);
    m_pid = ::fork();
    if (m_pid == 0)
        become(setting, out[1], errors[1]);
    ::close(out[1]);
    ::close(errors[1]);
    m_out = out[0];
    m_errors = errors[0];
}

NettopRun::~NettopRun()
{
    closeOutput();
    ::close(m_errors);
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
}

std::string NettopRun::readOnce() const
{
    return readPart(m_out);
}

std::string NettopRun::readAll() const
{
    return readToEnd(m_out);
}

std::string NettopRun::readErrors() const
{
    return readToEnd(m_errors);
}

void NettopRun::closeOutput()
{
    if (m_out >= 0)
        ::close(m_out);
    m_out = -1;
}

int NettopRun::wait()
{
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_pid = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

ReportedOwners reportOf(const NettopSetting &setting)
{
    NettopRun run(setting);
    const auto text = run.readAll();
    EXPECT_EQ(run.readErrors(), "");
    EXPECT_EQ(run.wait(), 0);
    return parseReport(text);
}

} // namespace pulsebar::nettop
