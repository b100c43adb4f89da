#include "platform/linux_/hwmon/HwmonSmc.h"

#include "platform/linux_/hwmon/HwmonMachine.h"

#include <cerrno>
#include <utility>

namespace pulsebar {

namespace {

constexpr unsigned openingsPerListing = 4;

SmcOpenResult openResultOf(int error, bool hasSensors)
{
    if (hasSensors)
        return {SmcOpening::Opened, kSmcSuccess};
    if (error == EACCES || error == EPERM)
        return {SmcOpening::MatchingFailed, kSmcNotPrivileged};
    if (error == 0 || error == ENOENT || error == ENOTDIR)
        return {SmcOpening::NoService, kSmcSuccess};
    return {SmcOpening::MatchingFailed, kSmcGeneralError};
}

PatientFiles::Options inputOptions(const HwmonSmc::Options &options)
{
    PatientFiles::Options input = InputFiles::defaultOptions();
    if (options.patience)
        input.budget = *options.patience;
    if (options.patience)
        input.firstBudget.reset();
    return input;
}

} // namespace

class HwmonSmc::Machine
{
public:
    Machine(const Sysroot &root, Options options)
        : m_sensors(root, std::move(options.now), inputOptions(options))
        , m_complain(std::move(options.complain))
    {
    }

    SmcOpenResult open()
    {
        if (m_openings++ % openingsPerListing == 0 || m_sensors.hasLost())
            list();
        m_sensors.beginRound();
        const auto result = openResultOf(m_error, !m_sensors.isEmpty());
        m_isOpen = result.opening == SmcOpening::Opened;
        return result;
    }

    void close() { m_isOpen = false; }
    bool isOpen() const { return m_isOpen; }
    HwmonMachine &sensors() { return m_sensors; }

private:
    void list()
    {
        m_error = m_sensors.list();
        if (m_sensors.isCut() && m_complain)
            std::exchange(m_complain, nullptr)("more sensors than are taken; some are left out");
    }

    HwmonMachine m_sensors;
    std::function<void(const std::string &)> m_complain;
    unsigned m_openings = 0;
    int m_error = 0;
    bool m_isOpen = false;
};

namespace {

SmcStatus readInfo(HwmonMachine &machine, std::uint32_t key, SmcRecord &output)
{
    EncodedValue value;
    const auto status = machine.describe(key, value);
    output.valueSize = value.size;
    output.valueType = value.type;
    return status;
}

SmcStatus readBytes(HwmonMachine &machine, std::uint32_t key, SmcRecord &output)
{
    EncodedValue value;
    const auto status = machine.read(key, value);
    output.valueSize = value.size;
    output.valueType = value.type;
    output.value = value.bytes;
    return status;
}

SmcStatus readIndex(const HwmonMachine &machine, std::uint32_t index, SmcRecord &output)
{
    const auto key = machine.keyAt(index);
    output.keyCode = key.value_or(0);
    return key ? kSmcSuccess : kSmcNotFound;
}

SmcStatus writeBytes(HwmonMachine &machine, const SmcRecord &input)
{
    if (input.valueSize > input.value.size())
        return kSmcBadArgument;
    return machine.write(input.keyCode, {input.value.data(), input.valueSize});
}

} // namespace

HwmonSmc::HwmonSmc(const Sysroot &root)
    : HwmonSmc(root, Options())
{
}

HwmonSmc::HwmonSmc(const Sysroot &root, Options options)
    : m_machine(std::make_unique<Machine>(root, std::move(options)))
{
}

HwmonSmc::~HwmonSmc() = default;

SmcOpenResult HwmonSmc::open()
{
    return m_machine->open();
}

SmcStatus HwmonSmc::call(std::uint32_t selector, const SmcRecord &input, SmcRecord &output)
{
    if (!m_machine->isOpen())
        return kSmcNotOpen;
    if (selector != kSmcSelector)
        return kSmcUnsupported;
    auto &machine = m_machine->sensors();
    SmcRecord answer{};
    answer.keyCode = input.keyCode;
    SmcStatus status = kSmcUnsupported;
    switch (static_cast<SmcCommand>(input.command)) {
    case SmcCommand::ReadInfo:
        status = readInfo(machine, input.keyCode, answer);
        break;
    case SmcCommand::ReadBytes:
        status = readBytes(machine, input.keyCode, answer);
        break;
    case SmcCommand::ReadIndex:
        status = readIndex(machine, input.argument, answer);
        break;
    case SmcCommand::WriteBytes:
        status = writeBytes(machine, input);
        break;
    }
    output = answer;
    return status;
}

void HwmonSmc::close()
{
    m_machine->close();
}

std::uint64_t HwmonSmc::revision() const
{
    return m_machine->sensors().registry().revision();
}

std::vector<SensorName> HwmonSmc::names() const
{
    return m_machine->sensors().registry().names();
}

bool HwmonSmc::isResting(std::string_view key) const
{
    return key.size() == 4 && m_machine->sensors().isResting(smcCode(key));
}

} // namespace pulsebar
