#pragma once

#include "platform/linux_/low/SmallFile.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace pulsebar {

/// What a file power/runtime_status says (Documentation/power/runtime_pm). "unsupported", and
/// anything unknown, is no word.
enum class RuntimeStatus { NoWord, Awake, Asleep };

RuntimeStatus parseRuntimeStatus(std::string_view text);

/// Tells which devices are suspended while the system runs. Asking does not wake them.
///
/// The nearest device with a word decides: the kernel suspends nothing as long as something that
/// hangs on it is awake, unless it does without that (as a bus may between two transfers).
class DeviceSleep
{
public:
    /// Forgets the words of the last round.
    void beginRound();
    /// Forgets what has no word, too: drivers come and go.
    void beginListing();

    /// @param files as runtimeStatusFiles() lists them; each is read once in a round, and one
    /// without a word once between two listings
    bool isAsleep(const std::vector<std::string> &files);

private:
    struct StatusFile
    {
        explicit StatusFile(const std::string &path)
            : file(path)
        {
        }

        SmallFile file;
        RuntimeStatus status = RuntimeStatus::NoWord;
        unsigned round = 0;    ///< of the last look
        unsigned listing = 0;  ///< of the last look that gave no word
        unsigned askedFor = 0; ///< the listing after which somebody last wanted to know
    };

    RuntimeStatus statusOf(const std::string &path);

    std::unordered_map<std::string, StatusFile> m_files;
    unsigned m_round = 1;
    unsigned m_listing = 1;
};

} // namespace pulsebar
