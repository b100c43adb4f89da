#include "platform/linux_/low/SmallFile.h"

#include "platform/linux_/low/Sysroot.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace pulsebar {
namespace {

class SmallFileTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = testing::TempDir() + "pulsebar-smallfile-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
        m_path = m_folder / "file";
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }
    void write(const std::string &text) const { std::ofstream(m_path, std::ios::binary) << text; }

    std::filesystem::path m_folder;
    std::filesystem::path m_path;
};

TEST_F(SmallFileTest, ReadsFromTheStartEachTime)
{
    write("first text");
    SmallFile file(m_path);
    EXPECT_EQ(file.read(), "first text");
    EXPECT_EQ(file.read(), "first text");
    write("2nd");
    EXPECT_EQ(file.read(), "2nd");
}

TEST_F(SmallFileTest, NoticesAFileOfTheSameNameThatTookItsPlace)
{
    write("old");
    SmallFile file(m_path);
    EXPECT_EQ(file.read(), "old");
    const auto other = m_folder / "other";
    std::ofstream(other) << "new";
    std::filesystem::rename(other, m_path);
    EXPECT_EQ(file.read(), "new");
}

TEST_F(SmallFileTest, ComesAndGoesWithTheFile)
{
    SmallFile file(m_path);
    EXPECT_FALSE(file.read());
    write("");
    EXPECT_EQ(file.read(), "");
    std::filesystem::remove(m_path);
    EXPECT_FALSE(file.read());
    write("back");
    EXPECT_EQ(file.read(), "back");
}

TEST_F(SmallFileTest, ReadsMoreThanOneBufferAndStopsAtItsLimit)
{
    write(std::string(100'000, 'x'));
    SmallFile file(m_path);
    EXPECT_EQ(file.read()->size(), 100'000U);
    write(std::string((4U << 20U) + 5, 'y'));
    EXPECT_EQ(file.read()->size(), 4U << 20U);
    EXPECT_EQ(readWholeFile(m_path, 10), "yyyyyyyyyy");
}

TEST_F(SmallFileTest, AFifoThatNobodyWritesToIsNotWaitedFor)
{
    ASSERT_EQ(::mkfifo(m_path.c_str(), 0600), 0);
    ::alarm(10); // ends the test where it would hang
    SmallFile file(m_path);
    EXPECT_FALSE(file.read());
    EXPECT_FALSE(readWholeFile(m_path));
    ::alarm(0);
}

TEST_F(SmallFileTest, AFolderCannotBeRead)
{
    SmallFile file(m_folder);
    EXPECT_FALSE(file.read());
}

TEST(SmallFile, AKernelFileThatLostWhatItWasAboutIsOpenedAnew)
{
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::pause();
        ::_exit(0);
    }
    SmallFile file("/proc/" + std::to_string(child) + "/stat");
    EXPECT_TRUE(file.read());
    ::kill(child, SIGKILL);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_FALSE(file.read());
    EXPECT_EQ(file.error(), ENOENT); // what the open one says is ESRCH
}

TEST(Sysroot, ResolvesBelowItsFolder)
{
    EXPECT_EQ(Sysroot().path("/proc/stat"), "/proc/stat");
    EXPECT_FALSE(Sysroot().isRecorded());
    EXPECT_EQ(Sysroot("/machine/").path("/proc/stat"), "/machine/proc/stat");
    EXPECT_TRUE(Sysroot("/machine").isRecorded());
}

TEST(Sysroot, FollowsTheEnvironment)
{
    ::setenv("PULSEBAR_SYSROOT", "/recorded", 1);
    EXPECT_EQ(Sysroot::fromEnvironment().path("/sys/block"), "/recorded/sys/block");
    ::setenv("PULSEBAR_SYSROOT", "", 1);
    EXPECT_FALSE(Sysroot::fromEnvironment().isRecorded());
    ::unsetenv("PULSEBAR_SYSROOT");
    EXPECT_FALSE(Sysroot::fromEnvironment().isRecorded());
}

} // namespace
} // namespace pulsebar
