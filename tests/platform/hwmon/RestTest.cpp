#include "platform/TemporaryMachine.h"
#include "platform/linux_/hwmon/DeviceSleep.h"
#include "platform/linux_/hwmon/DiskRest.h"
#include "platform/linux_/hwmon/InputFiles.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace pulsebar {
namespace {

using namespace std::chrono_literals;
using Outcome = InputReading::Outcome;

TEST(ParseRuntimeStatus, KnowsTheKernelsWords)
{
    EXPECT_EQ(parseRuntimeStatus("suspended\n"), RuntimeStatus::Asleep);
    EXPECT_EQ(parseRuntimeStatus("suspending\n"), RuntimeStatus::Asleep);
    EXPECT_EQ(parseRuntimeStatus("active\n"), RuntimeStatus::Awake);
    EXPECT_EQ(parseRuntimeStatus("resuming\n"), RuntimeStatus::Awake);
    for (const char *text : {"unsupported\n", "error\n", "", "suspendedly\n", "\n"})
        EXPECT_EQ(parseRuntimeStatus(text), RuntimeStatus::NoWord) << text;
}

class DeviceSleepTest : public testing::Test
{
protected:
    std::string put(const std::string &name, const std::string &word) const
    {
        m_machine.write(name, word + '\n');
        return m_machine.path(name);
    }
    bool isAsleepNow(const std::vector<std::string> &files)
    {
        m_sleep.beginRound();
        return m_sleep.isAsleep(files);
    }

    TemporaryMachine m_machine;
    DeviceSleep m_sleep;
};

TEST_F(DeviceSleepTest, TheNearestWithAWordDecides)
{
    const auto none = put("none", "unsupported");
    const auto asleep = put("asleep", "suspended");
    const auto awake = put("awake", "active");
    EXPECT_TRUE(isAsleepNow({asleep}));
    EXPECT_TRUE(isAsleepNow({none, asleep, awake}));
    EXPECT_FALSE(isAsleepNow({none, awake, asleep}));
    EXPECT_FALSE(isAsleepNow({none}));
    EXPECT_FALSE(isAsleepNow({m_machine.path("missing")}));
    EXPECT_FALSE(isAsleepNow({}));
}

TEST_F(DeviceSleepTest, FollowsEveryRound)
{
    const auto file = put("device", "active");
    EXPECT_FALSE(isAsleepNow({file}));
    put("device", "suspended");
    EXPECT_FALSE(m_sleep.isAsleep({file})) << "read twice in a round";
    EXPECT_TRUE(isAsleepNow({file}));
    put("device", "resuming");
    EXPECT_FALSE(isAsleepNow({file}));
}

TEST_F(DeviceSleepTest, WhatHasNoWordIsAskedAgainAtTheNextListing)
{
    const auto file = put("device", "unsupported");
    EXPECT_FALSE(isAsleepNow({file}));
    put("device", "suspended");
    EXPECT_FALSE(isAsleepNow({file}));
    m_sleep.beginListing();
    EXPECT_TRUE(isAsleepNow({file}));
}

BlockStat work(std::uint64_t reads)
{
    BlockStat stat;
    stat.readOperations = reads;
    return stat;
}

TEST(IdleTime, CountsFromTheLastWork)
{
    const IdleTime::Clock::time_point start{};
    IdleTime idle;
    EXPECT_EQ(idle.look(work(5), start), 0s);
    EXPECT_EQ(idle.look(work(5), start + 10s), 10s);
    EXPECT_EQ(idle.look(work(5), start + 130s), 130s);
    EXPECT_EQ(idle.look(work(6), start + 131s), 0s);
    BlockStat written = work(6);
    written.writeOperations = 1;
    EXPECT_EQ(idle.look(written, start + 140s), 0s);
    EXPECT_EQ(idle.look(written, start + 141s), 1s);
}

TEST(DiskRest, ADiskWithoutWorkForTwoMinutesIsLeftAlone)
{
    const TemporaryMachine machine;
    const auto put = [&](const char *reads) {
        machine.write("stat", std::string(reads) + " 0 8 0 0 0 0 0 0 0 0\n");
    };
    put("5");
    const IdleTime::Clock::time_point start{};
    DiskRest disk(machine.path("stat"));
    EXPECT_FALSE(disk.mayHaveStopped(start));
    EXPECT_FALSE(disk.mayHaveStopped(start + 119s));
    EXPECT_TRUE(disk.mayHaveStopped(start + 120s));
    put("6");
    EXPECT_FALSE(disk.mayHaveStopped(start + 121s));
    EXPECT_TRUE(disk.mayHaveStopped(start + 241s));
}

TEST(DiskRest, WithoutCountersNothingIsKnown)
{
    const TemporaryMachine machine;
    DiskRest missing(machine.path("stat"));
    EXPECT_FALSE(missing.mayHaveStopped({}));
    machine.write("stat", "garbage\n");
    EXPECT_FALSE(missing.mayHaveStopped(IdleTime::Clock::time_point(1h)));
}

TEST(OutcomeOfError, TellsRestFromFailure)
{
    for (const int error : {ENODATA, EAGAIN, ENETDOWN, EBUSY, EPERM})
        EXPECT_EQ(outcomeOfError(error), Outcome::Resting) << error;
    for (const int error : {ENODEV, ENOENT, ENXIO})
        EXPECT_EQ(outcomeOfError(error), Outcome::Gone) << error;
    for (const int error : {EIO, EACCES, EINVAL, ETIMEDOUT})
        EXPECT_EQ(outcomeOfError(error), Outcome::Failed) << error;
}

/// Files whose content and errors a test says.
class InputFilesTest : public testing::Test
{
protected:
    struct Content
    {
        std::string text;
        int error = 0;
        int readings = 0;
    };

    PatientFiles::Options options()
    {
        PatientFiles::Options options;
        options.budget = 10s;
        options.open = [this](const std::string &path) {
            return [this, path](std::string &text) {
                Content &content = m_contents[path];
                ++content.readings;
                text = content.text;
                return content.error;
            };
        };
        return options;
    }

    std::unordered_map<std::string, Content> m_contents;
    InputFiles m_inputs{options()};
};

TEST_F(InputFilesTest, ReadsAFileOnceInARound)
{
    m_contents["a"] = {"47000\n"};
    m_inputs.adopt({"a"});
    m_inputs.beginRound();
    EXPECT_EQ(m_inputs.read(0).value, 47000);
    EXPECT_EQ(m_inputs.read(0).value, 47000);
    EXPECT_EQ(m_contents["a"].readings, 1);
    m_inputs.beginRound();
    m_inputs.read(0);
    EXPECT_EQ(m_contents["a"].readings, 2);
    m_inputs.forget(0);
    m_inputs.read(0);
    EXPECT_EQ(m_contents["a"].readings, 3);
}

TEST_F(InputFilesTest, SaysWhyThereIsNoReading)
{
    m_contents["rest"] = {"", ENODATA};
    m_contents["gone"] = {"", ENODEV};
    m_contents["failed"] = {"", EIO};
    m_contents["garbage"] = {"hot\n"};
    m_contents["empty"] = {""};
    m_inputs.adopt({"rest", "gone", "failed", "garbage", "empty"});
    m_inputs.beginRound();
    EXPECT_EQ(m_inputs.read(0).outcome, Outcome::Resting);
    EXPECT_EQ(m_inputs.read(1).outcome, Outcome::Gone);
    EXPECT_EQ(m_inputs.read(2).outcome, Outcome::Failed);
    EXPECT_EQ(m_inputs.read(3).outcome, Outcome::Failed);
    EXPECT_EQ(m_inputs.read(4).outcome, Outcome::Failed);
    EXPECT_EQ(m_inputs.lastReading(0).outcome, Outcome::Resting);
    m_inputs.beginRound();
    EXPECT_EQ(m_inputs.lastReading(0).outcome, Outcome::Value);
}

TEST_F(InputFilesTest, NoticesOnceThatAFileWent)
{
    m_contents["a"] = {"1\n"};
    m_inputs.adopt({"a"});
    m_inputs.beginRound();
    m_inputs.read(0);
    EXPECT_FALSE(m_inputs.hasLost());
    m_contents["a"].error = ENODEV;
    m_inputs.beginRound();
    m_inputs.read(0);
    EXPECT_TRUE(m_inputs.hasLost());
    m_inputs.beginRound();
    m_inputs.read(0);
    EXPECT_FALSE(m_inputs.hasLost());
}

TEST_F(InputFilesTest, KeepsWhatIsAdoptedAgain)
{
    m_contents["a"] = {"1\n"};
    m_contents["b"] = {"2\n"};
    m_contents["c"] = {"3\n"};
    m_inputs.adopt({"a", "b"});
    m_inputs.beginRound();
    EXPECT_EQ(m_inputs.read(1).value, 2);
    m_inputs.adopt({"c", "b"});
    EXPECT_EQ(m_inputs.read(1).value, 2);
    EXPECT_EQ(m_contents["b"].readings, 1);
    EXPECT_EQ(m_inputs.read(0).value, 3);
}

} // namespace
} // namespace pulsebar
