#include "platform/linux_/hwmon/InputFiles.h"

#include "platform/linux_/hwmon/hwmon_text.h"
#include "platform/linux_/low/SmallFile.h"

#include <atomic>
#include <cerrno>
#include <memory>
#include <utility>

namespace pulsebar {

namespace {

/// A process may have 1024 files open, and has others to do with them.
constexpr int mostKeptOpen = 256;
constexpr std::size_t usualSize = 128;

/// A file that stays open while fewer than mostKeptOpen others do; else it is opened, read and
/// closed. May be read and given up by another thread.
class LimitedFile
{
public:
    LimitedFile(std::string path, std::shared_ptr<std::atomic<int>> keptOpen)
        : m_path(std::move(path))
        , m_keptOpen(std::move(keptOpen))
        , m_isKept(m_keptOpen->fetch_add(1) < mostKeptOpen)
        , m_file(m_path, usualSize)
    {
    }
    ~LimitedFile() { m_keptOpen->fetch_sub(1); }
    LimitedFile(const LimitedFile &) = delete;
    LimitedFile &operator=(const LimitedFile &) = delete;

    int read(std::string &text)
    {
        if (m_isKept)
            return readFrom(m_file, text);
        SmallFile once(m_path, usualSize);
        return readFrom(once, text);
    }

private:
    static int readFrom(SmallFile &file, std::string &text)
    {
        const auto content = file.read();
        if (!content)
            return file.error();
        text.assign(*content);
        return 0;
    }

    std::string m_path;
    std::shared_ptr<std::atomic<int>> m_keptOpen;
    bool m_isKept;
    SmallFile m_file;
};

PatientFiles::Options withLimit(PatientFiles::Options options)
{
    if (options.open)
        return options;
    options.open = [keptOpen = std::make_shared<std::atomic<int>>(0)](const std::string &path) {
        auto file = std::make_shared<LimitedFile>(path, keptOpen);
        return [file](std::string &text) { return file->read(text); };
    };
    return options;
}

} // namespace

InputReading::Outcome outcomeOfError(int error)
{
    switch (error) {
    case ENODEV:
    case ENOENT:
    case ENXIO:
        return InputReading::Outcome::Gone;
    case ENODATA:
    case EAGAIN:
    case ENETDOWN:
    case EBUSY:
    case EPERM: // of reading, not of opening: a graphics card that is just being reset
        return InputReading::Outcome::Resting;
    default:
        return InputReading::Outcome::Failed;
    }
}

/// The first title waits for sensors a moment; later ones hardly do.
PatientFiles::Options InputFiles::defaultOptions()
{
    PatientFiles::Options options;
    options.firstBudget = std::chrono::milliseconds(100);
    return options;
}

InputFiles::InputFiles(PatientFiles::Options options)
    : m_files(withLimit(std::move(options)))
{
}

void InputFiles::adopt(const std::vector<std::string> &paths)
{
    std::vector<Input> inputs;
    std::unordered_map<std::string, std::size_t> byPath;
    for (const auto &path : paths) {
        byPath[path] = inputs.size();
        const auto known = m_byPath.find(path);
        if (known == m_byPath.end()) {
            inputs.push_back({m_files.add(path), 0, false, {}});
        } else {
            inputs.push_back(m_inputs[known->second]);
            m_byPath.erase(known);
        }
    }
    for (const auto &[path, number] : m_byPath)
        m_files.remove(m_inputs[number].handle);
    m_inputs = std::move(inputs);
    m_byPath = std::move(byPath);
}

void InputFiles::beginRound()
{
    ++m_round;
    m_hasLost = false;
    m_files.beginRound();
}

InputReading InputFiles::read(std::size_t number)
{
    Input &input = m_inputs[number];
    if (input.round == m_round)
        return input.reading;
    input.round = m_round;
    input.reading = readAnew(input.handle);
    const bool isGone = input.reading.outcome == InputReading::Outcome::Gone;
    m_hasLost = m_hasLost || (isGone && !input.wasGone);
    input.wasGone = isGone;
    return input.reading;
}

void InputFiles::expect(std::size_t number)
{
    m_files.expect(m_inputs[number].handle);
}

InputReading InputFiles::lastReading(std::size_t number) const
{
    const Input &input = m_inputs[number];
    return input.round == m_round ? input.reading : InputReading{InputReading::Outcome::Value, 0};
}

void InputFiles::forget(std::size_t number)
{
    m_inputs[number].round = m_round - 1;
}

InputReading InputFiles::readAnew(PatientFiles::Handle handle)
{
    const auto reading = m_files.read(handle);
    if (reading.isNotYet())
        return {InputReading::Outcome::Pending, 0};
    if (!reading.isValue())
        return {outcomeOfError(reading.error), 0};
    const auto number = parseHwmonNumber(reading.text);
    if (!number)
        return {InputReading::Outcome::Failed, 0};
    return {InputReading::Outcome::Value, *number};
}

} // namespace pulsebar
