#pragma once

#include "platform/SmcTransport.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pulsebar {

/// A System Management Controller in memory, which keeps a copy of every call.
class FakeSmc : public SmcTransport
{
public:
    using Bytes = std::vector<std::uint8_t>;

    struct Key
    {
        std::string name;
        std::string type;
        Bytes bytes;
        std::optional<std::uint32_t> size; ///< instead of the number of bytes
        SmcStatus infoStatus = kSmcSuccess;
        SmcStatus bytesStatus = kSmcSuccess;
        SmcStatus writeStatus = kSmcSuccess;
    };

    /// Adds a key, or replaces it in its place.
    Key &set(const std::string &name, const std::string &type, const Bytes &bytes)
    {
        Key *key = find(name);
        if (!key)
            key = &m_keys.emplace_back();
        *key = {name, type, bytes, {}};
        return *key;
    }
    /// A temperature such that the client, which takes the second byte as signed, reads this.
    Key &setDegrees(const std::string &name, int whole, int sixtyFourths = 0)
    {
        const int raw = whole * 256 + sixtyFourths * 4;
        const int low = ((raw + 128) & 0xFF) - 128;
        return set(name, "sp78",
                   {static_cast<std::uint8_t>((raw - low) / 256), static_cast<std::uint8_t>(low)});
    }
    Key &setFans(int count) { return set("FNum", "ui8 ", {static_cast<std::uint8_t>(count)}); }
    Key &setRpm(const std::string &name, int rpm)
    {
        return set(name, "fpe2",
                   {static_cast<std::uint8_t>(rpm / 64), static_cast<std::uint8_t>(rpm % 64 * 4)});
    }
    void remove(const std::string &name)
    {
        std::erase_if(m_keys, [&](const Key &key) { return key.name == name; });
    }
    Key *find(std::string_view name)
    {
        const auto found = std::find_if(m_keys.begin(), m_keys.end(),
                                        [&](const Key &key) { return key.name == name; });
        return found == m_keys.end() ? nullptr : &*found;
    }

    /// How often the information of a key was asked for.
    int asked(std::string_view name) const
    {
        return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const auto &call) {
            return call.command == static_cast<std::uint8_t>(SmcCommand::ReadInfo) &&
                   nameOf(call.keyCode) == name;
        }));
    }
    /// A call as the controller gets it.
    std::array<std::uint8_t, 80> sent(std::size_t index) const
    {
        return std::bit_cast<std::array<std::uint8_t, 80>>(calls.at(index));
    }

    SmcOpenResult open() override
    {
        ++opened;
        isOpen = opening.opening == SmcOpening::Opened;
        return opening;
    }
    SmcStatus call(std::uint32_t selector, const SmcRecord &input, SmcRecord &output) override
    {
        calls.push_back(input);
        selectors.push_back(selector);
        output = {};
        if (!isOpen)
            return kSmcNotOpen;
        switch (static_cast<SmcCommand>(input.command)) {
        case SmcCommand::ReadIndex:
            return keyAt(input.argument, output);
        case SmcCommand::ReadInfo:
            return info(input, output);
        case SmcCommand::ReadBytes:
            return read(input, output);
        case SmcCommand::WriteBytes:
            return write(input);
        }
        return kSmcUnsupported;
    }
    void close() override
    {
        ++closed;
        isOpen = false;
    }

    SmcOpenResult opening{SmcOpening::Opened, kSmcSuccess};
    int opened = 0;
    int closed = 0;
    bool isOpen = false;
    std::vector<SmcRecord> calls;
    std::vector<std::uint32_t> selectors;

private:
    static std::uint32_t codeOf(std::string_view text)
    {
        std::uint32_t code = 0;
        for (std::size_t i = 0; i < 4; ++i)
            code = code << 8U | (i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0U);
        return code;
    }
    static std::string nameOf(std::uint32_t code)
    {
        return {static_cast<char>(code >> 24U), static_cast<char>(code >> 16U),
                static_cast<char>(code >> 8U), static_cast<char>(code)};
    }
    SmcStatus keyAt(std::uint32_t index, SmcRecord &output) const
    {
        if (index >= m_keys.size())
            return kSmcBadArgument;
        output.keyCode = codeOf(m_keys[index].name);
        return kSmcSuccess;
    }
    SmcStatus info(const SmcRecord &input, SmcRecord &output)
    {
        const Key *key = find(nameOf(input.keyCode));
        if (!key)
            return kSmcSuccess;
        output.valueSize = key->size.value_or(static_cast<std::uint32_t>(key->bytes.size()));
        output.valueType = codeOf(key->type);
        return key->infoStatus;
    }
    SmcStatus read(const SmcRecord &input, SmcRecord &output)
    {
        const Key *key = find(nameOf(input.keyCode));
        if (!key)
            return kSmcSuccess;
        std::copy_n(key->bytes.begin(), std::min<std::size_t>(key->bytes.size(), 32),
                    output.value.begin());
        return key->bytesStatus;
    }
    SmcStatus write(const SmcRecord &input)
    {
        Key *key = find(nameOf(input.keyCode));
        if (!key)
            return kSmcNotWritable;
        if (key->writeStatus == kSmcSuccess)
            key->bytes.assign(input.value.begin(), input.value.begin() + input.valueSize);
        return key->writeStatus;
    }

    std::vector<Key> m_keys;
};

} // namespace pulsebar
