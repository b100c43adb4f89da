#include "common/Output.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace pulsebar {
namespace {

constexpr std::uint64_t millisecond = 1'000'000;

class OutputTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::signal(SIGPIPE, SIG_IGN);
        ASSERT_EQ(::pipe(m_ends.data()), 0);
    }
    void TearDown() override
    {
        closeReader();
        ::close(m_ends[1]);
    }
    void closeReader()
    {
        if (m_ends[0] >= 0)
            ::close(m_ends[0]);
        m_ends[0] = -1;
    }
    std::string readAll(std::size_t size) const
    {
        std::string text(size, '\0');
        std::size_t got = 0;
        while (got < size) {
            const auto count = ::read(m_ends[0], text.data() + got, size - got);
            if (count <= 0)
                break;
            got += static_cast<std::size_t>(count);
        }
        text.resize(got);
        return text;
    }
    std::array<int, 2> m_ends{-1, -1};
};

TEST_F(OutputTest, SleepsUntilTheMoment)
{
    const Output output(m_ends[1]);
    const auto moment = monotonicNow() + 20 * millisecond;
    EXPECT_TRUE(output.sleepUntil(moment));
    EXPECT_GE(monotonicNow(), moment);
    EXPECT_TRUE(output.sleepUntil(moment));
}

TEST_F(OutputTest, WakesWhenTheReaderGoes)
{
    const Output output(m_ends[1]);
    std::thread reader([this] { closeReader(); });
    const auto start = monotonicNow();
    EXPECT_FALSE(output.sleepUntil(start + 30'000 * millisecond));
    EXPECT_LT(monotonicNow() - start, 20'000 * millisecond);
    reader.join();
    EXPECT_FALSE(output.write("text"));
}

TEST_F(OutputTest, NeverLeavesAReportHalfWritten)
{
    // Somebody else made the pipe non-blocking, and it is smaller than the report.
    ASSERT_EQ(::fcntl(m_ends[1], F_SETFL, O_NONBLOCK), 0);
    const std::string text(300'000, 'x');
    std::string got;
    std::thread reader([&] { got = readAll(text.size()); });
    EXPECT_TRUE(Output(m_ends[1]).write(text));
    reader.join();
    EXPECT_EQ(got, text);
}

TEST_F(OutputTest, GivesUpOnAFullPipeWhoseReaderGoes)
{
    ASSERT_EQ(::fcntl(m_ends[1], F_SETFL, O_NONBLOCK), 0);
    std::thread reader([this] {
        readAll(10);
        closeReader();
    });
    EXPECT_FALSE(Output(m_ends[1]).write(std::string(300'000, 'x')));
    reader.join();
}

} // namespace
} // namespace pulsebar
