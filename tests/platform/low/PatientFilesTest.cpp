#include "platform/linux_/low/PatientFiles.h"

#include <gtest/gtest.h>
#include <sys/types.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <thread>

namespace pulsebar {
namespace {

using namespace std::chrono_literals;

/// Time that passes only when a test, or a driver of it, says so.
using Time = std::atomic<std::chrono::nanoseconds::rep>;

PatientFiles::Clock::time_point at(const Time &time)
{
    return PatientFiles::Clock::time_point(std::chrono::nanoseconds(time.load()));
}

void pass(Time &time, std::chrono::nanoseconds span)
{
    time += span.count();
}

/// What is behind a file: answers as a test wants, as slowly as it wants.
class Driver
{
public:
    explicit Driver(Time &time)
        : m_time(time)
    {
    }

    void answer(std::string value, std::chrono::nanoseconds cost = 0ns, int error = 0)
    {
        const std::lock_guard lock(m_mutex);
        m_value = std::move(value);
        m_cost = cost;
        m_error = error;
    }
    void beSlowEveryThirdTime(std::chrono::nanoseconds cost)
    {
        const std::lock_guard lock(m_mutex);
        m_cost = cost;
        m_everyThird = true;
    }
    void hold()
    {
        const std::lock_guard lock(m_mutex);
        m_held = true;
    }
    void release()
    {
        const std::lock_guard lock(m_mutex);
        m_held = false;
        m_changed.notify_all();
    }

    int read(std::string &text)
    {
        std::unique_lock lock(m_mutex);
        ++m_begun;
        m_reader = std::this_thread::get_id();
        ::pthread_sigmask(SIG_SETMASK, nullptr, &m_signals);
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_held; });
        text = m_value;
        pass(m_time, m_everyThird && m_begun % 3 != 0 ? 0ns : m_cost);
        ++m_finished;
        m_changed.notify_all();
        return m_error;
    }

    int begun()
    {
        const std::lock_guard lock(m_mutex);
        return m_begun;
    }
    bool waitForBegun(int count)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, 20s, [&] { return m_begun >= count; });
    }
    bool waitForFinished(int count)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, 20s, [&] { return m_finished >= count; });
    }
    bool wasReadHere()
    {
        const std::lock_guard lock(m_mutex);
        return m_reader == std::this_thread::get_id();
    }
    bool readerTakes(int signal)
    {
        const std::lock_guard lock(m_mutex);
        return ::sigismember(&m_signals, signal) == 0;
    }

private:
    Time &m_time;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_value;
    std::chrono::nanoseconds m_cost{0};
    int m_error = 0;
    bool m_everyThird = false;
    bool m_held = false;
    int m_begun = 0;
    int m_finished = 0;
    std::thread::id m_reader;
    sigset_t m_signals{};
};

class PatientFilesTest : public testing::Test
{
protected:
    PatientFilesTest() { m_options.budget = 20s; }
    ~PatientFilesTest() override
    {
        for (auto &[path, driver] : m_drivers)
            driver->release();
    }

    Driver &driver(const std::string &path)
    {
        auto &place = m_drivers[path];
        if (!place)
            place = std::make_shared<Driver>(*m_time);
        return *place;
    }

    PatientFiles &files()
    {
        if (m_files)
            return *m_files;
        m_options.now = [time = m_time] { return at(*time); };
        m_options.open = [this](const std::string &path) -> PatientFiles::ReadFile {
            driver(path);
            return [driver = m_drivers[path], time = m_time](std::string &text) {
                return driver->read(text);
            };
        };
        m_files = std::make_unique<PatientFiles>(m_options);
        return *m_files;
    }

    /// What a reading in a round of its own says.
    std::string read(PatientFiles::Handle handle)
    {
        files().beginRound();
        const FileReading reading = files().read(handle);
        if (reading.isNotYet())
            return "not yet";
        return reading.isValue() ? std::string(reading.text) : "error";
    }

    /// Asks until a background reading that has just left the driver was taken over.
    bool readsSoon(PatientFiles::Handle handle, const std::string &expected)
    {
        const auto deadline = std::chrono::steady_clock::now() + 20s;
        while (std::chrono::steady_clock::now() < deadline) {
            if (read(handle) == expected)
                return true;
            std::this_thread::yield();
        }
        return false;
    }

    /// What a file says that is waited for without end, in the round that is.
    std::string readsSoonInRound(PatientFiles::Handle handle)
    {
        const FileReading reading = files().read(handle);
        return reading.isValue() ? std::string(reading.text) : "no value";
    }

    /// A file that was found to be slow, at its first reading.
    PatientFiles::Handle addSlow(const std::string &path, const std::string &value)
    {
        driver(path).answer(value, 5ms);
        const auto handle = files().add(path);
        EXPECT_EQ(read(handle), value);
        return handle;
    }

    std::shared_ptr<Time> m_time = std::make_shared<Time>(0);
    std::map<std::string, std::shared_ptr<Driver>> m_drivers;
    PatientFiles::Options m_options;
    std::unique_ptr<PatientFiles> m_files;
};

TEST_F(PatientFilesTest, OnlyTheFirstReadingOfAQuickFileIsTakenInTheBackground)
{
    driver("quick").answer("1");
    const auto handle = files().add("quick");
    EXPECT_EQ(driver("quick").begun(), 0);
    EXPECT_EQ(read(handle), "1");
    EXPECT_FALSE(driver("quick").wasReadHere());
    driver("quick").answer("2");
    EXPECT_EQ(read(handle), "2");
    EXPECT_TRUE(driver("quick").wasReadHere());
    EXPECT_EQ(driver("quick").begun(), 2);
}

TEST_F(PatientFilesTest, AFirstReadingBeyondTheBudgetIsHandedOutLater)
{
    m_options.budget = 1ms;
    driver("late").answer("1");
    driver("late").hold();
    const auto handle = files().add("late");
    EXPECT_EQ(read(handle), "not yet");
    EXPECT_EQ(read(handle), "not yet");
    driver("late").release();
    EXPECT_TRUE(readsSoon(handle, "1"));
}

TEST_F(PatientFilesTest, NothingIsWaitedForBeforeTheFirstRound)
{
    driver("file").hold();
    const auto handle = files().add("file");
    EXPECT_TRUE(files().read(handle).isNotYet());
}

TEST_F(PatientFilesTest, TheBudgetIsForAllFilesOfARound)
{
    m_options.budget = 100ms;
    std::vector<PatientFiles::Handle> handles;
    for (int number = 0; number < 50; ++number) {
        const std::string path = "stuck" + std::to_string(number);
        driver(path).hold();
        handles.push_back(files().add(path));
    }
    const auto begin = std::chrono::steady_clock::now();
    files().beginRound();
    for (const auto handle : handles)
        EXPECT_TRUE(files().read(handle).isNotYet());
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(waited, 90ms);
    EXPECT_LT(waited, 2500ms); // one budget per file would be five seconds
}

TEST_F(PatientFilesTest, TheFirstRoundOfAFileHasABudgetOfItsOwn)
{
    m_options.budget = 0ns;
    m_options.firstBudget = 20s;
    driver("late").answer("1");
    driver("late").hold();
    const auto handle = files().add("late");
    std::thread bus([this] {
        EXPECT_TRUE(driver("late").waitForBegun(1));
        driver("late").release();
    });
    EXPECT_EQ(read(handle), "1");
    bus.join();
    // Not one more round has it: this would take the 20 seconds.
    driver("stuck").hold();
    const auto stuck = files().add("stuck");
    files().beginRound();
    files().beginRound();
    EXPECT_TRUE(files().read(stuck).isNotYet());
}

TEST_F(PatientFilesTest, AReadingIsWaitedForInOneRoundOnly)
{
    m_options.firstBudget = 20ms;
    driver("stuck").hold();
    const auto handle = files().add("stuck");
    EXPECT_EQ(read(handle), "not yet");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(read(handle), "not yet");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 15s); // of a budget of 20
}

TEST_F(PatientFilesTest, WhatIsExpectedIsReadOneAfterAnother)
{
    driver("a").answer("1");
    driver("b").answer("2");
    const auto a = files().add("a");
    const auto b = files().add("b");
    files().beginRound();
    files().expect(a);
    files().expect(b);
    ASSERT_TRUE(driver("b").waitForFinished(1));
    driver("a").answer("3");
    EXPECT_EQ(files().read(a).text, "1");
    EXPECT_EQ(readsSoonInRound(b), "2");
    EXPECT_EQ(driver("a").begun(), 1);
    EXPECT_EQ(driver("b").begun(), 1);
    EXPECT_EQ(read(a), "3");
    EXPECT_TRUE(driver("a").wasReadHere());
}

TEST_F(PatientFilesTest, WhatWasExpectedInAnEarlierRoundIsReadAgain)
{
    driver("a").answer("1");
    const auto handle = files().add("a");
    files().beginRound();
    files().expect(handle);
    EXPECT_EQ(readsSoonInRound(handle), "1");
    const auto late = files().add("late");
    driver("late").answer("1");
    files().beginRound();
    files().expect(late);
    ASSERT_TRUE(driver("late").waitForFinished(1));
    driver("late").answer("2");
    EXPECT_TRUE(readsSoon(late, "2"));
    files().expect(9999); // nobody's
}

TEST_F(PatientFilesTest, OfASlowFileTheNewestFinishedReadingIsHandedOut)
{
    const auto handle = addSlow("slow", "1");
    driver("slow").answer("2", 5ms);
    driver("slow").hold();
    EXPECT_EQ(read(handle), "1"); // does not wait for the one that it asks for
    ASSERT_TRUE(driver("slow").waitForBegun(2));
    EXPECT_FALSE(driver("slow").wasReadHere());
    for (int count = 0; count < 5; ++count)
        EXPECT_EQ(read(handle), "1");
    driver("slow").release();
    EXPECT_TRUE(readsSoon(handle, "2"));
}

TEST_F(PatientFilesTest, AFileIsAskedForOnceAtATime)
{
    const auto handle = addSlow("slow", "1");
    driver("slow").hold();
    for (int count = 0; count < 10; ++count)
        EXPECT_EQ(read(handle), "1");
    ASSERT_TRUE(driver("slow").waitForBegun(2));
    driver("slow").release();
    addSlow("last", "behind all others");
    EXPECT_EQ(driver("slow").begun(), 2);
}

TEST_F(PatientFilesTest, AQuickFileTurnsSlowWithTheSecondSlowReading)
{
    driver("file").answer("1");
    const auto handle = files().add("file");
    read(handle);
    driver("file").answer("2", 5ms);
    EXPECT_EQ(read(handle), "2");
    EXPECT_EQ(read(handle), "2");
    EXPECT_TRUE(driver("file").wasReadHere());
    driver("file").answer("3", 5ms);
    EXPECT_EQ(read(handle), "2"); // that reading is still the newest
    EXPECT_TRUE(readsSoon(handle, "3"));
    EXPECT_FALSE(driver("file").wasReadHere());
}

TEST_F(PatientFilesTest, ASingleSlowReadingMayBeTheSchedulersFault)
{
    driver("file").answer("1");
    const auto handle = files().add("file");
    read(handle);
    for (int count = 0; count < 4; ++count) {
        driver("file").answer("slow", 5ms);
        EXPECT_EQ(read(handle), "slow");
        driver("file").answer("quick");
        EXPECT_EQ(read(handle), "quick");
        EXPECT_TRUE(driver("file").wasReadHere());
    }
}

TEST_F(PatientFilesTest, OneVerySlowReadingIsEnough)
{
    driver("file").answer("1");
    const auto handle = files().add("file");
    read(handle);
    driver("file").answer("2", 50ms);
    EXPECT_EQ(read(handle), "2");
    EXPECT_TRUE(driver("file").wasReadHere());
    ASSERT_EQ(driver("file").begun(), 2);
    EXPECT_EQ(read(handle), "2");
    ASSERT_TRUE(driver("file").waitForFinished(3));
    EXPECT_FALSE(driver("file").wasReadHere());
}

TEST_F(PatientFilesTest, AFileThatIsQuickAgainReturnsToTheCallingThread)
{
    const auto handle = addSlow("file", "slow");
    driver("file").answer("1");
    EXPECT_EQ(read(handle), "slow");
    EXPECT_TRUE(readsSoon(handle, "1"));
    for (int round = 0; round < 4; ++round) {
        driver("file").answer(std::to_string(round));
        EXPECT_EQ(read(handle), std::to_string(round)); // waited for, as the last one was quick
    }
    EXPECT_TRUE(driver("file").wasReadHere());
}

TEST_F(PatientFilesTest, QuickReadingsAmongSlowOnesChangeNothing)
{
    const auto handle = addSlow("file", "1");
    driver("file").beSlowEveryThirdTime(5ms);
    while (driver("file").begun() < 30) {
        EXPECT_EQ(read(handle), "1");
        EXPECT_FALSE(driver("file").wasReadHere());
        std::this_thread::yield();
    }
}

TEST_F(PatientFilesTest, AnOldReadingIsDropped)
{
    m_options.firstBudget = 20s;
    m_options.budget = 1ms;
    const auto handle = addSlow("file", "1");
    driver("file").hold();
    pass(*m_time, 75s);
    EXPECT_EQ(read(handle), "1");
    ASSERT_TRUE(driver("file").waitForBegun(2));
    pass(*m_time, 1ms);
    EXPECT_EQ(read(handle), "not yet");
    driver("file").answer("2", 5ms);
    driver("file").release();
    EXPECT_TRUE(readsSoon(handle, "2"));
}

TEST_F(PatientFilesTest, AfterALongPauseTheReadingIsWaitedFor)
{
    const auto handle = addSlow("file", "1");
    pass(*m_time, 3600s);
    driver("file").answer("2", 5ms);
    EXPECT_EQ(read(handle), "2");
}

TEST_F(PatientFilesTest, FailuresAreReadings)
{
    driver("file").answer("ignored", 0ms, ENODATA);
    const auto handle = files().add("file");
    files().beginRound();
    for (int round = 0; round < 2; ++round) { // in the background, and here
        const FileReading reading = files().read(handle);
        EXPECT_EQ(reading.state, FileReading::State::Failed);
        EXPECT_EQ(reading.error, ENODATA);
        EXPECT_EQ(reading.text, "");
        EXPECT_FALSE(reading.isGone());
    }
    for (const int error : {ENOENT, ENODEV}) {
        driver("file").answer("", 0ms, error);
        EXPECT_TRUE(files().read(handle).isGone());
    }
    driver("file").answer("back");
    EXPECT_EQ(read(handle), "back");
}

TEST_F(PatientFilesTest, AFileMayBeForgottenWhileItIsRead)
{
    const auto handle = addSlow("slow", "1");
    driver("slow").hold();
    read(handle);
    ASSERT_TRUE(driver("slow").waitForBegun(2));
    files().remove(handle);
    files().remove(handle);
    EXPECT_EQ(files().read(handle).error, ENOENT);
    driver("slow").release();
    const auto again = files().add("slow");
    EXPECT_NE(again, handle);
    EXPECT_EQ(read(again), "1");
    files().remove(again);
    EXPECT_TRUE(driver("slow").waitForFinished(3));
}

TEST_F(PatientFilesTest, AForgottenFileIsNotReadAnyMore)
{
    const auto first = addSlow("first", "1");
    const auto second = addSlow("second", "2");
    driver("first").hold();
    read(first);
    ASSERT_TRUE(driver("first").waitForBegun(2));
    read(second); // waits behind the first
    files().remove(second);
    driver("first").release();
    addSlow("third", "3"); // read after what was before it
    EXPECT_EQ(driver("second").begun(), 1);
}

TEST_F(PatientFilesTest, IsDestroyedWhileAReadingHangs)
{
    const auto handle = addSlow("stuck", "1");
    driver("stuck").hold();
    read(handle);
    ASSERT_TRUE(driver("stuck").waitForBegun(2));
    const std::weak_ptr<Time> usedByThread = m_time;
    m_files.reset(); // would hang
    m_options = {};
    EXPECT_GT(usedByThread.use_count(), 1);
    driver("stuck").release();
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (usedByThread.use_count() > 1 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    EXPECT_EQ(usedByThread.use_count(), 1); // the thread has ended and left nothing
}

TEST_F(PatientFilesTest, AHangingDriverDoesNotSilenceTheOthers)
{
    for (const std::string name : {"a", "b", "c"}) {
        m_options.budget = 1ms;
        driver(name).answer("late", 5ms);
        driver(name).hold();
        const auto stuck = files().add(name);
        EXPECT_EQ(read(stuck), "not yet");
        ASSERT_TRUE(driver(name).waitForBegun(1));
        pass(*m_time, 3s);
    }
    driver("good").answer("1", 5ms);
    const auto good = files().add("good");
    EXPECT_TRUE(readsSoon(good, "1"));
    for (const std::string name : {"a", "b", "c"})
        driver(name).release();
    for (const std::string name : {"a", "b", "c"})
        EXPECT_TRUE(driver(name).waitForFinished(1));
    driver("good").answer("2", 5ms);
    EXPECT_TRUE(readsSoon(good, "2"));
}

/// The threads of this program that read slow files.
std::ptrdiff_t threadCount()
{
    std::ptrdiff_t count = 0;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        count += name == "patient-files" ? 1 : 0;
    }
    return count;
}

bool waitForThreads(std::ptrdiff_t count)
{
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (threadCount() != count && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(1ms);
    return threadCount() == count;
}

TEST_F(PatientFilesTest, HangingThreadsAreFew)
{
    ASSERT_TRUE(waitForThreads(0));
    m_options.budget = 1ms;
    for (const std::string kind : {"first", "again"}) { // those that answered at last count no more
        std::vector<PatientFiles::Handle> handles;
        for (int number = 0; number < 10; ++number) {
            const std::string path = kind + std::to_string(number);
            driver(path).hold();
            handles.push_back(files().add(path));
            EXPECT_EQ(read(handles.back()), "not yet");
            if (number < 4) {
                ASSERT_TRUE(driver(path).waitForBegun(1));
            }
            pass(*m_time, 3s);
        }
        EXPECT_EQ(threadCount(), 4); // three that hang, and the one that may yet
        for (auto &[path, driver] : m_drivers)
            driver->release();
        for (const auto handle : handles)
            EXPECT_TRUE(readsSoon(handle, ""));
        EXPECT_TRUE(waitForThreads(1));
    }
}

TEST_F(PatientFilesTest, TheReaderTakesNoSignals)
{
    const auto handle = addSlow("slow", "1");
    EXPECT_FALSE(driver("slow").readerTakes(SIGTERM));
    EXPECT_FALSE(driver("slow").readerTakes(SIGCHLD));
    files().remove(handle);
    driver("quick").answer("1");
    const auto quick = files().add("quick");
    read(quick);
    read(quick);
    ASSERT_TRUE(driver("quick").wasReadHere());
    EXPECT_TRUE(driver("quick").readerTakes(SIGTERM)); // as it was before the thread was started
}

TEST_F(PatientFilesTest, TheThreadEndsWhenNothingSlowIsAskedFor)
{
    ASSERT_TRUE(waitForThreads(0)); // those of earlier tests may just be ending
    m_options.idle = 20ms;
    files();
    EXPECT_EQ(threadCount(), 0);
    const auto handle = addSlow("slow", "1");
    EXPECT_TRUE(waitForThreads(0));
    driver("slow").answer("2", 5ms);
    EXPECT_TRUE(readsSoon(handle, "2")); // by a new one
    EXPECT_TRUE(waitForThreads(0));
}

TEST_F(PatientFilesTest, TheThreadStaysBetweenTwoSamples)
{
    ASSERT_TRUE(waitForThreads(0)); // those of earlier tests may just be ending
    const auto handle = addSlow("slow", "1");
    std::this_thread::sleep_for(5ms);
    EXPECT_EQ(threadCount(), 1);
    read(handle);
    EXPECT_EQ(threadCount(), 1);
    m_files.reset();
    EXPECT_TRUE(waitForThreads(0));
}

TEST(PatientFilesDeathTest, TheProgramEndsWhileAReadingHangs)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto endWhileStuck = [] {
        PatientFiles::Options options;
        options.budget = 1ms;
        options.open = [](const std::string &) -> PatientFiles::ReadFile {
            return [](std::string &) -> int {
                for (;;)
                    ::pause();
            };
        };
        PatientFiles files(options);
        files.beginRound();
        files.read(files.add("stuck"));
        std::exit(3);
    };
    EXPECT_EXIT(endWhileStuck(), testing::ExitedWithCode(3), "");
}

/// With files of the file system, and the clock of the wall.
class PatientRealFilesTest : public testing::Test
{
protected:
    PatientRealFilesTest()
        : m_files(unhurried())
    {
        std::string pattern = testing::TempDir() + "pulsebar-patient-XXXXXX";
        EXPECT_NE(::mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
    }
    ~PatientRealFilesTest() override { std::filesystem::remove_all(m_folder); }

    static PatientFiles::Options unhurried()
    {
        PatientFiles::Options options;
        options.budget = 20s;
        options.quick = 10s; // a busy machine is not a slow file
        return options;
    }
    std::string path(const std::string &name) const { return m_folder / name; }
    void write(const std::string &name, const std::string &text) const
    {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    FileReading read(PatientFiles::Handle handle)
    {
        m_files.beginRound();
        return m_files.read(handle);
    }

    std::filesystem::path m_folder;
    PatientFiles m_files;
};

TEST_F(PatientRealFilesTest, FollowsAFileThatChangesVanishesAndComesBack)
{
    const auto handle = m_files.add(path("temp1_input"));
    EXPECT_TRUE(read(handle).isGone());
    write("temp1_input", "42000\n");
    EXPECT_EQ(read(handle).text, "42000\n");
    write("temp1_input", "7\n");
    EXPECT_EQ(read(handle).text, "7\n");
    std::filesystem::remove(path("temp1_input"));
    EXPECT_EQ(read(handle).error, ENOENT);
    write("temp1_input", "43000\n");
    EXPECT_EQ(read(handle).text, "43000\n");
    write("other", "replaced\n");
    std::filesystem::rename(path("other"), path("temp1_input"));
    EXPECT_EQ(read(handle).text, "replaced\n");
}

TEST_F(PatientRealFilesTest, ReadsEmptyAndLongFiles)
{
    write("empty", "");
    write("long", std::string(10'000, 'x'));
    const auto empty = m_files.add(path("empty"));
    const auto longer = m_files.add(path("long"));
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(read(empty).isValue());
        EXPECT_EQ(read(empty).text, "");
        EXPECT_EQ(read(longer).text, std::string(10'000, 'x'));
    }
}

TEST_F(PatientRealFilesTest, TellsWhyAFileCannotBeRead)
{
    const auto folder = m_files.add(m_folder);
    EXPECT_EQ(read(folder).error, EISDIR);
    EXPECT_EQ(read(folder).error, EISDIR);
    EXPECT_FALSE(read(folder).isGone());
}

} // namespace
} // namespace pulsebar
