#include "smc/Tool.h"

#include "sensors/smc/Smc.h"
#include "sensors/smc/SmcTool.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace pulsebar::smc {

namespace {

std::string inWords(SmcStatus status)
{
    switch (status) {
    case kSmcNotPrivileged:
        return "permission denied";
    case kSmcNoDevice:
        return "its device is gone";
    case kSmcNotFound:
        return "there is none";
    case kSmcNotWritable:
        return "it cannot be written";
    case kSmcBadArgument:
        return "the value is refused";
    case kSmcIoError:
        return "the device does not answer";
    default:
        break;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "status %08x", status);
    return text.data();
}

class Tool
{
public:
    Tool(const Options &options, const Surroundings &surroundings)
        : m_options(options)
        , m_controller(surroundings.controller)
        , m_names(surroundings.names)
        , m_surroundings(surroundings)
    {
    }

    int run()
    {
        if (!open())
            return kFailed;
        const int status = act();
        SMCClose(m_controller);
        return status;
    }

private:
    bool open()
    {
        const auto report = [&](std::string_view line) {
            std::fprintf(m_surroundings.errors, "%.*s\n", static_cast<int>(line.size()),
                         line.data());
        };
        return SMCOpen(m_controller, report) == 0;
    }

    int act()
    {
        switch (m_options.action) {
        case Action::ListKeys:
            return list();
        case Action::ShowFans:
            return showFans();
        case Action::ReadKey:
            return read();
        case Action::WriteKey:
            return write();
        case Action::Help:
        case Action::Version:
            break;
        }
        return kDone;
    }

    int list()
    {
        SMCPrintAll(m_controller, m_surroundings.out);
        printKeysFrom(SMCReadIndexCount(m_controller), m_controller, m_surroundings.out);
        listNames();
        return kDone;
    }

    /// Which sensor is behind which key; the table has no place for that.
    void listNames()
    {
        const std::vector<SensorName> names = m_names.names();
        if (!names.empty())
            std::fputs("\nTemperature sensors:\n", m_surroundings.out);
        for (const SensorName &sensor : names) {
            std::fprintf(m_surroundings.out, "  %-4s  %s: %s\n", sensor.key.c_str(),
                         sensor.name.c_str(), degreesOf(sensor.key).c_str());
        }
    }

    std::string degreesOf(const std::string &key)
    {
        SmcValue value;
        if (const SmcStatus status = SMCReadKey(key, value, m_controller))
            return m_names.isResting(key) ? "at rest" : "no reading, " + inWords(status);
        std::array<char, 32> text{};
        std::snprintf(text.data(), text.size(), "%.2f C", SMCGetTemperature(key, m_controller));
        return text.data();
    }

    int showFans()
    {
        const SmcStatus status = SMCPrintFans(m_controller, m_surroundings.out);
        return status == kSmcSuccess ? kDone : fail("no fans");
    }

    int read()
    {
        SmcValue value;
        const SmcStatus status = SMCReadKey(m_options.key, value, m_controller);
        if (status != kSmcSuccess)
            return fail(m_options.key + " has no reading: " +
                        (m_names.isResting(m_options.key) ? "at rest" : inWords(status)));
        if (value.size == 0)
            return fail("no key " + m_options.key);
        printVal(value, m_surroundings.out);
        return kDone;
    }

    int write()
    {
        SmcValue present;
        if (const SmcStatus status = SMCReadKey(m_options.key, present, m_controller))
            return fail(m_options.key + " cannot be read: " + inWords(status));
        if (present.size == 0)
            return fail("no key " + m_options.key);
        if (m_options.value.size() / 2 != present.size)
            return fail(m_options.key + " has " + std::to_string(present.size) + " bytes");
        const SmcStatus status =
            SMCWriteSimple(m_options.key, m_options.value, m_controller, m_surroundings.errors);
        return status == kSmcSuccess ? kDone : fail(m_options.key + ": " + inWords(status));
    }

    int fail(const std::string &problem)
    {
        std::fprintf(m_surroundings.errors, "pulsebar-smc: %s\n", problem.c_str());
        return kFailed;
    }

    const Options &m_options;
    SmcTransport &m_controller;
    const SensorNames &m_names;
    const Surroundings &m_surroundings;
};

} // namespace

int run(const Options &options, const Surroundings &surroundings)
{
    return Tool(options, surroundings).run();
}

} // namespace pulsebar::smc
