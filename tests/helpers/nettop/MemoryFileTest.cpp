#include "nettop/MemoryFile.h"

#include "helpers/common/TestFolder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <unistd.h>

namespace pulsebar::nettop {
namespace {

namespace fs = std::filesystem;

class MemoryFileTest : public testing::Test
{
protected:
    MemoryFileTest()
    {
        m_memory.owners.resize(1);
        m_memory.owners[0].pid = 10;
        m_memory.owners[0].received = 4711;
    }
    std::optional<Memory> read() { return MemoryFile(m_runtime.path(), {}).read(); }
    bool write() { return MemoryFile(m_runtime.path(), {}).write(m_memory); }
    std::string folder() const { return m_runtime.path() + "/pulsebar"; }
    std::string file() const { return folder() + "/nettop.state"; }
    /// Neither trusted nor followed; the next report is right, and remembered where it can be.
    void expectSurvived(bool canBeWritten)
    {
        EXPECT_FALSE(read());
        EXPECT_EQ(write(), canBeWritten);
        EXPECT_EQ(read().has_value(), canBeWritten);
    }
    static bool inChild(const std::function<bool()> &act)
    {
        const auto child = ::fork();
        if (child == 0)
            ::_exit(act() ? 0 : 1);
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    TestFolder m_runtime;
    Memory m_memory;
};

TEST_F(MemoryFileTest, IsMadeForItsUserAlone)
{
    EXPECT_FALSE(read());
    ASSERT_TRUE(write());
    EXPECT_EQ(read(), m_memory);
    EXPECT_EQ(fs::status(folder()).permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_TRUE(write());
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), 1);
}

TEST_F(MemoryFileTest, SurvivesGarbage)
{
    write();
    for (const auto &text : {std::string(), std::string(100'000, 'x'), std::string("PBNETTOP")}) {
        m_runtime.write("pulsebar/nettop.state", text);
        expectSurvived(true);
    }
}

TEST_F(MemoryFileTest, FollowsNoLink)
{
    write();
    const auto victim = m_runtime.path() + "/victim";
    fs::copy(file(), victim);
    fs::remove(file());
    fs::create_symlink(victim, file());
    expectSurvived(true);
    EXPECT_FALSE(fs::is_symlink(file()));
    // Nor one that takes the place of the folder, or of the file in the making.
    fs::rename(folder(), m_runtime.path() + "/elsewhere");
    fs::create_directory_symlink(m_runtime.path() + "/elsewhere", folder());
    expectSurvived(false);
    fs::remove(folder());
    write();
    fs::create_symlink(victim, file() + ".new");
    EXPECT_TRUE(write());
    EXPECT_EQ(read(), m_memory);
    EXPECT_FALSE(fs::exists(file() + ".new"));
}

TEST_F(MemoryFileTest, WaitsForNoPipe)
{
    write();
    fs::remove(file());
    ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
    expectSurvived(true);
}

TEST_F(MemoryFileTest, WorksAroundFolders)
{
    fs::create_directories(file());
    expectSurvived(false);
    fs::remove(file());
    fs::create_directories(file() + ".new/x");
    expectSurvived(false);
    fs::remove_all(folder());
    m_runtime.write("pulsebar", "a file");
    expectSurvived(false);
}

TEST_F(MemoryFileTest, TrustsNothingThatOthersMayWrite)
{
    write();
    ASSERT_EQ(::chmod(file().c_str(), 0666), 0);
    expectSurvived(true);
    ASSERT_EQ(::chmod(folder().c_str(), 0777), 0);
    expectSurvived(false);
}

TEST_F(MemoryFileTest, LeavesOtherUsersAlone)
{
    const std::string path = m_runtime.path();
    ASSERT_EQ(::chmod(path.c_str(), 0777), 0);
    // A folder that is not this user's, where one could be made.
    EXPECT_TRUE(inChild([&] {
        return ::setuid(65534) == 0 && !MemoryFile(path, {}).write(m_memory) &&
               !fs::exists(path + "/pulsebar");
    }));
    // A folder and a file put there by another.
    write();
    ASSERT_EQ(::chown(file().c_str(), 65534, 65534), 0);
    EXPECT_FALSE(read());
    ASSERT_EQ(::chown(folder().c_str(), 65534, 65534), 0);
    expectSurvived(false);
}

TEST_F(MemoryFileTest, WorksWithoutAFolder)
{
    for (const std::string path : {"", "relative", "/nonexistent/folder", "/dev/null"}) {
        const MemoryFile none(path, {});
        EXPECT_FALSE(none.read());
        EXPECT_FALSE(none.write(m_memory));
    }
    const MemoryFile file(m_runtime.path(), {});
    fs::remove_all(folder());
    EXPECT_FALSE(file.read());
    EXPECT_FALSE(file.write(m_memory));
}

TEST_F(MemoryFileTest, KeepsTheOldFileWhenThereIsNoRoom)
{
    write();
    EXPECT_TRUE(inChild([this] {
        const rlimit limit{64, 64};
        std::signal(SIGXFSZ, SIG_IGN);
        return ::setrlimit(RLIMIT_FSIZE, &limit) == 0 && !write() && read() == m_memory;
    }));
    EXPECT_FALSE(fs::exists(file() + ".new"));
}

TEST_F(MemoryFileTest, TwoDoNotWriteAtOnce)
{
    write();
    const auto start = std::chrono::steady_clock::now();
    const MemoryFile first(m_runtime.path(), {});
    EXPECT_TRUE(first.read());
    {
        const MemoryFile second(m_runtime.path(), {});
        EXPECT_EQ(second.read(), m_memory);
        EXPECT_FALSE(second.write(Memory()));
    }
    EXPECT_EQ(first.read(), m_memory);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_TRUE(first.write(m_memory));
}

} // namespace
} // namespace pulsebar::nettop
