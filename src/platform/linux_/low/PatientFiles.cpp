#include "platform/linux_/low/PatientFiles.h"

#include "platform/linux_/low/SmallFile.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <pthread.h>
#include <utility>

namespace pulsebar {

namespace {

/// Quick readings in a row after which a slow file counts as quick. One whose speed is not known
/// needs just one.
constexpr int quickInARow = 3;
constexpr int slowInARow = 2;
/// Threads that are waited for by nobody, because a driver does not answer them.
constexpr int mostStuckThreads = 3;
constexpr std::size_t stackSize = 256U << 10U;
/// Files below /sys hold one value.
constexpr std::size_t usualSize = 128;

PatientFiles::ReadFile openKernelFile(const std::string &path)
{
    auto file = std::make_shared<SmallFile>(path, usualSize);
    return [file](std::string &text) {
        const auto content = file->read();
        if (!content)
            return file->error();
        text.assign(*content);
        return 0;
    };
}

FileReading readingOf(int error, std::string_view text)
{
    if (error != 0)
        return {FileReading::State::Failed, {}, error};
    return {FileReading::State::Value, text, 0};
}

/// Starts a thread of its own that takes no signals, which are the program's main thread's.
bool startDetached(void *(*function)(void *), void *argument)
{
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) != 0)
        return false;
    ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    ::pthread_attr_setstacksize(&attributes, stackSize);
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread{};
    const int error = ::pthread_create(&thread, &attributes, function, argument);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::pthread_attr_destroy(&attributes);
    return error == 0;
}

} // namespace

bool FileReading::isGone() const
{
    return state == State::Failed && (error == ENOENT || error == ENODEV);
}

/// Belongs to the calling thread, but for what is said otherwise; while the file is asked for, the
/// background thread has the use of readFile.
struct PatientFiles::File
{
    ReadFile readFile;
    bool inBackground = true;
    int quickReadings = quickInARow - 1; ///< in a row, in the background
    int slowReadings = 0;                ///< in a row, in the calling thread
    std::uint64_t expectedIn = 0;        ///< the round in which its first reading was asked for

    // Under the lock of the shared state while the file is in the background:
    bool asked = false;   ///< queued or being read
    bool awaited = false; ///< this reading was waited for; it is not again
    bool arrived = false; ///< a reading came in that was not looked at yet
    bool measured = false;
    std::string text;
    int error = 0;
    Clock::duration took{0};
    Clock::time_point finished;

    void keep(int newError, std::string &newText, Clock::time_point begin, Clock::time_point end)
    {
        error = newError;
        text.swap(newText);
        took = end - begin;
        finished = end;
        measured = true;
    }
};

/// What the calling thread and the background thread have in common. Each of them holds it, so that
/// either may be the last.
struct PatientFiles::Shared
{
    std::function<Clock::time_point()> now;
    Clock::duration idle;
    Clock::duration hanging;

    std::mutex mutex; ///< of all below
    std::condition_variable wakeThread;
    std::condition_variable readingFinished;
    std::deque<std::shared_ptr<File>> queue;
    bool closing = false;
    bool running = false;     ///< the thread of the current number exists
    std::uint64_t number = 0; ///< which thread it is that takes from the queue
    int stuckThreads = 0;     ///< those of earlier numbers
    bool reading = false;     ///< the current thread is reading a file, since:
    Clock::time_point readingSince;

    static void *runThread(void *argument);
    void work(std::unique_lock<std::mutex> &lock);
    bool readNext(std::unique_lock<std::mutex> &lock, std::uint64_t self);
    bool ensureThread(const std::shared_ptr<Shared> &self);
};

/// @return false when nobody is there to take from the queue
bool PatientFiles::Shared::ensureThread(const std::shared_ptr<Shared> &self)
{
    const bool hangs = running && reading && now() - readingSince > hanging;
    if (running && (!hangs || stuckThreads == mostStuckThreads))
        return true;
    auto argument = std::make_unique<std::shared_ptr<Shared>>(self);
    if (!startDetached(&runThread, argument.get()))
        return running;
    argument.release(); // NOLINT(bugprone-unused-return-value): the thread owns it
    ++number;
    stuckThreads += hangs ? 1 : 0;
    running = true;
    reading = false;
    return true;
}

/// @return false when another thread has taken this one's place meanwhile
bool PatientFiles::Shared::readNext(std::unique_lock<std::mutex> &lock, std::uint64_t self)
{
    std::shared_ptr<File> file = std::move(queue.front());
    queue.pop_front();
    const auto begin = now();
    reading = true;
    readingSince = begin;
    lock.unlock();
    std::string text;
    const int error = file->readFile(text);
    const auto end = now();
    lock.lock();
    file->keep(error, text, begin, end);
    file->asked = false;
    file->arrived = true;
    readingFinished.notify_all();
    lock.unlock();
    file.reset(); // the last holder of a removed file closes it, which may take its time as well
    lock.lock();
    if (self != number)
        return false;
    reading = false;
    return true;
}

void PatientFiles::Shared::work(std::unique_lock<std::mutex> &lock)
{
    const auto self = number;
    const auto hasWork = [this] { return closing || !queue.empty(); };
    while (wakeThread.wait_for(lock, idle, hasWork) && !closing) {
        if (!readNext(lock, self)) {
            --stuckThreads;
            return;
        }
    }
    running = false;
}

void *PatientFiles::Shared::runThread(void *argument)
{
    const std::unique_ptr<std::shared_ptr<Shared>> shared(
        static_cast<std::shared_ptr<Shared> *>(argument));
    ::pthread_setname_np(::pthread_self(), "patient-files"); // as in `top -H`
    std::unique_lock lock((*shared)->mutex);
    (*shared)->work(lock);
    return nullptr;
}

PatientFiles::PatientFiles()
    : PatientFiles(Options())
{
}

PatientFiles::PatientFiles(Options options)
    : m_options(std::move(options))
    , m_shared(std::make_shared<Shared>())
{
    if (!m_options.open)
        m_options.open = openKernelFile;
    if (!m_options.now)
        m_options.now = [] { return Clock::now(); };
    m_shared->now = m_options.now;
    m_shared->idle = m_options.idle;
    m_shared->hanging = m_options.hanging;
}

PatientFiles::~PatientFiles()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->closing = true;
    m_shared->queue.clear();
    m_shared->wakeThread.notify_all();
}

PatientFiles::Handle PatientFiles::add(const std::string &path)
{
    auto file = std::make_shared<File>();
    file->readFile = m_options.open(path);
    m_files.emplace(m_nextHandle, std::move(file));
    m_hasNewFiles = true;
    return m_nextHandle++;
}

void PatientFiles::remove(Handle handle)
{
    const auto found = m_files.find(handle);
    if (found == m_files.end())
        return;
    const std::shared_ptr<File> file = std::move(found->second);
    m_files.erase(found);
    const std::lock_guard lock(m_shared->mutex);
    std::erase(m_shared->queue, file);
}

void PatientFiles::beginRound()
{
    ++m_round;
    const bool isFirst = std::exchange(m_hasNewFiles, false);
    m_budgetLeft = isFirst ? m_options.firstBudget.value_or(m_options.budget) : m_options.budget;
}

FileReading PatientFiles::read(Handle handle)
{
    const auto found = m_files.find(handle);
    if (found == m_files.end())
        return {FileReading::State::Failed, {}, ENOENT};
    if (found->second->inBackground)
        return readInBackground(found->second);
    return readHere(*found->second);
}

FileReading PatientFiles::readHere(File &file)
{
    m_text.clear();
    const auto begin = m_options.now();
    const int error = file.readFile(m_text);
    const auto end = m_options.now();
    file.slowReadings = end - begin > m_options.quick ? file.slowReadings + 1 : 0;
    if (file.slowReadings < slowInARow && end - begin <= m_options.surelySlow)
        return readingOf(error, m_text);
    file.inBackground = true;
    file.quickReadings = 0;
    file.slowReadings = 0;
    file.keep(error, m_text, begin, end);
    return readingOf(error, file.text);
}

/// Looks at a reading that came in: whether the file is quick again.
void PatientFiles::settle(File &file) const
{
    if (!std::exchange(file.arrived, false))
        return;
    file.quickReadings = file.took > m_options.quick ? 0 : file.quickReadings + 1;
    file.inBackground = file.quickReadings < quickInARow;
}

/// Whether there is a reading that can be handed out.
bool PatientFiles::hasNew(const File &file) const
{
    return file.measured && m_options.now() - file.finished <= m_options.oldest;
}

/// Asks for a reading, unless one is asked for already.
/// @return false when there is nobody who would read; then nobody has the use of the file, either
bool PatientFiles::ask(const std::shared_ptr<File> &file)
{
    const bool hasThread = m_shared->ensureThread(m_shared);
    // A thread that hangs may still be at it, also where no other one could be started.
    if (file->asked || !hasThread)
        return file->asked;
    file->asked = true;
    file->awaited = false;
    m_shared->queue.push_back(file);
    m_shared->wakeThread.notify_all();
    return true;
}

/// Waits for the reading that was asked for, where it is missed or can be expected soon.
void PatientFiles::await(std::unique_lock<std::mutex> &lock, File &file)
{
    const bool isWanted = !hasNew(file) || file.took <= m_options.quick;
    if (!isWanted || m_budgetLeft <= Clock::duration::zero() || std::exchange(file.awaited, true))
        return;
    const auto begin = Clock::now();
    m_shared->readingFinished.wait_for(lock, m_budgetLeft, [&] { return !file.asked; });
    m_budgetLeft -= Clock::now() - begin;
}

void PatientFiles::expect(Handle handle)
{
    const auto found = m_files.find(handle);
    if (found == m_files.end() || !found->second->inBackground)
        return;
    const std::lock_guard lock(m_shared->mutex);
    if (!found->second->measured && ask(found->second))
        found->second->expectedIn = m_round;
}

FileReading PatientFiles::readInBackground(const std::shared_ptr<File> &file)
{
    std::unique_lock lock(m_shared->mutex);
    const bool isIn = file->arrived && file->expectedIn == m_round;
    settle(*file);
    if (!isIn && (!file->inBackground || !ask(file))) {
        lock.unlock();
        return readHere(*file);
    }
    if (!isIn) {
        await(lock, *file);
        settle(*file);
    }
    if (!hasNew(*file))
        return {};
    m_text = file->text;
    return readingOf(file->error, m_text);
}

} // namespace pulsebar
