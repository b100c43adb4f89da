#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace pulsebar {

/// What came of reading a file.
struct FileReading
{
    enum class State {
        Value,
        Failed,
        NotYet, ///< it is being read in the background, and there is no reading that is new enough
    };

    State state = State::NotYet;
    /// The whole content of a Value; valid until the next call to the set it came from.
    std::string_view text;
    int error = 0; ///< errno of a Failed one; ENOENT or ENODEV when the file is gone

    bool isValue() const { return state == State::Value; }
    bool isNotYet() const { return state == State::NotYet; }
    bool isGone() const;
};

/// Kernel files that are read again and again, some of which may be slow: behind a file below /sys
/// there may be a bus or firmware that takes its time, or that never answers.
///
/// Files are kept open and read from their start; one that was replaced or is gone is opened anew.
/// A file that has been quick so far is read in the calling thread. One whose speed is not known
/// yet, or that took long, is read by a background thread, which exists only while such a
/// file is asked for: then the newest finished reading is handed out, and the next one is asked
/// for. It is waited for only where it can be expected soon: when it is the file's first one, or
/// when the last one was quick; and not longer than a round's budget in all. A file that is quick
/// several times in a row is read in the calling thread again.
///
/// All calls come from one thread. Nothing here waits for a reading that hangs, neither the
/// destructor nor the end of the program.
class PatientFiles
{
public:
    /// Reads one file: fills the text, or answers errno. Called by one thread at a time.
    using ReadFile = std::function<int(std::string &text)>;
    using Clock = std::chrono::steady_clock;

    struct Options
    {
        /// How long read() waits in one round, all files together.
        Clock::duration budget = std::chrono::milliseconds(10);
        /// The same for the first round after files were added, where a larger one spares a first
        /// sample with gaps; as in any round when absent.
        std::optional<Clock::duration> firstBudget;
        /// A reading that takes longer is a slow one.
        Clock::duration quick = std::chrono::milliseconds(1);
        /// A file that was quick so far is slow after two slow readings in a row (one may be the
        /// scheduler's fault), or after one that took longer than this.
        Clock::duration surelySlow = std::chrono::milliseconds(20);
        /// A reading older than this is dropped. It is longer than the longest time between two
        /// samples, a minute, since what is handed out was asked for one sample ago.
        Clock::duration oldest = std::chrono::seconds(75);
        /// A background reading that takes longer does not hold up the others any more: they get
        /// another thread, and this one ends when its driver answers.
        Clock::duration hanging = std::chrono::seconds(2);
        /// The background thread ends when nothing was asked of it for so long.
        Clock::duration idle = std::chrono::seconds(15);
        /// How a path is read; the kernel's files when empty.
        std::function<ReadFile(const std::string &path)> open;
        /// What measures readings and their age; the steady clock when empty.
        std::function<Clock::time_point()> now;
    };

    /// Names a file of this set; never given twice.
    using Handle = std::uint64_t;

    PatientFiles();
    explicit PatientFiles(Options options);
    ~PatientFiles();
    PatientFiles(const PatientFiles &) = delete;
    PatientFiles &operator=(const PatientFiles &) = delete;

    /// Adds a file, which need not exist. Nothing is opened yet.
    Handle add(const std::string &path);
    /// Forgets a file; it may just be read.
    void remove(Handle handle);

    /// Begins a round of readings, with a new budget. Before the first round nothing is waited for.
    void beginRound();
    /// Reads a file. ENOENT for a handle that is not of this set.
    FileReading read(Handle handle);
    /// Says that a file will be read in this round. Those whose speed is not known are then read
    /// one after another in the background, instead of being waited for one by one.
    void expect(Handle handle);

private:
    struct File;
    struct Shared;

    FileReading readHere(File &file);
    void settle(File &file) const;
    bool hasNew(const File &file) const;
    bool ask(const std::shared_ptr<File> &file);
    void await(std::unique_lock<std::mutex> &lock, File &file);
    FileReading readInBackground(const std::shared_ptr<File> &file);

    Options m_options;
    std::shared_ptr<Shared> m_shared;
    std::unordered_map<Handle, std::shared_ptr<File>> m_files;
    Handle m_nextHandle = 1;
    Clock::duration m_budgetLeft{0};
    bool m_hasNewFiles = false;
    std::uint64_t m_round = 0;
    std::string m_text;
};

} // namespace pulsebar
