#pragma once

#include "platform/linux_/low/PatientFiles.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace pulsebar {

/// What an input said in this round.
struct InputReading
{
    enum class Outcome {
        Value,
        Resting, ///< it has none now, through no fault of its own
        Pending, ///< it is being read, and was not read before
        Gone,    ///< its device went
        Failed,
    };

    Outcome outcome = Outcome::Failed;
    std::int64_t value = 0;

    bool isValue() const { return outcome == Outcome::Value; }
};

/// What an errno of reading an input means: some drivers answer so while a device is switched off,
/// asleep or busy.
InputReading::Outcome outcomeOfError(int error);

/// The numbers in files of chips, each read at most once in a round.
class InputFiles
{
public:
    static PatientFiles::Options defaultOptions();

    explicit InputFiles(PatientFiles::Options options = defaultOptions());

    /// The files from now on, numbered from 0. Those that are kept stay open.
    void adopt(const std::vector<std::string> &paths);
    void beginRound();
    InputReading read(std::size_t number);
    /// Says that a file will be read in this round; see PatientFiles.h.
    void expect(std::size_t number);
    /// What read() gave in this round; Value 0 where nobody has asked.
    InputReading lastReading(std::size_t number) const;
    /// Has a file read anew in this round: it was written.
    void forget(std::size_t number);
    /// Whether a file went in this round that was there in the one before.
    bool hasLost() const { return m_hasLost; }

private:
    struct Input
    {
        PatientFiles::Handle handle = 0;
        unsigned round = 0;
        bool wasGone = false;
        InputReading reading;
    };

    InputReading readAnew(PatientFiles::Handle handle);

    PatientFiles m_files;
    std::vector<Input> m_inputs;
    std::unordered_map<std::string, std::size_t> m_byPath;
    unsigned m_round = 1;
    bool m_hasLost = false;
};

} // namespace pulsebar
