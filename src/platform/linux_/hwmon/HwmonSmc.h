#pragma once

#include "platform/SensorNames.h"
#include "platform/SmcTransport.h"
#include "platform/linux_/low/Sysroot.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// A System Management Controller made of what the kernel offers below /sys/class/hwmon
/// (Documentation/hwmon/sysfs-interface).
///
/// - Each tempN_input is a key of type "sp78"; which one, SensorRegistry.h says.
/// - Each fanN_input is a fan, numbered from 0 over all chips in the order of their numbers. "FNum"
///   (type "ui8 ") counts them; without a fan it is answered with kSmcNotFound. F<n>Ac, F<n>Mn,
///   F<n>Mx and F<n>Tg (type "fpe2") are fanN_input, _min, _max and _target, as far as the files
///   exist. A key has four characters: from fan 10 on there are only "F10A" and "F10T", since
///   "F10M" could be either of two.
/// - "#KEY" (type "ui32") counts all keys, and SmcCommand::ReadIndex names them: "#KEY", "FNum",
///   the fans' keys, the temperatures.
/// - SmcCommand::WriteBytes writes _min, _max and _target of a fan; any other key is
///   kSmcNotWritable.
///
/// What is there is listed anew at every fourth opening, and at the next one after a file went. A
/// sensor whose device sleeps is not read. While fans have not been read once, "FNum" is answered
/// with kSmcIoError, for some openings at most. A reading that is not there is a status:
/// kSmcNoDevice when the device went, else kSmcIoError; isResting() tells whether to wait for it.
///
/// At most 64 chips with 64 temperatures and 64 fans each, 100 fans and 1024 temperatures are
/// taken; what is beyond is left out, and said once to whoever listens.
class HwmonSmc : public SmcTransport, public SensorNames
{
public:
    using Clock = std::chrono::steady_clock;

    struct Options
    {
        /// Tells for how long a disk had nothing to do; the steady clock when empty.
        std::function<Clock::time_point()> now = {};
        /// Hears, once, that sensors were left out; in English, for a log.
        std::function<void(const std::string &)> complain = {};
        /// How long an opening's calls wait for first readings, all together. When absent, a tenth
        /// of a second at the first opening and where sensors came, and hardly at all otherwise:
        /// whoever samples is not to be held up.
        std::optional<Clock::duration> patience = std::nullopt;
    };

    explicit HwmonSmc(const Sysroot &root);
    HwmonSmc(const Sysroot &root, Options options);
    ~HwmonSmc() override;
    HwmonSmc(const HwmonSmc &) = delete;
    HwmonSmc &operator=(const HwmonSmc &) = delete;

    SmcOpenResult open() override;
    SmcStatus call(std::uint32_t selector, const SmcRecord &input, SmcRecord &output) override;
    void close() override;

    std::uint64_t revision() const override;
    std::vector<SensorName> names() const override;
    /// Also true of a key that this machine does not have: its module may be loaded later.
    bool isResting(std::string_view key) const override;

private:
    class Machine;

    std::unique_ptr<Machine> m_machine;
};

} // namespace pulsebar
