#include "common/ProcessName.h"
#include "common/UserNames.h"
#include "common/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

/// A name in a row: not empty, bounded, valid UTF-8 without control characters, no blank at its
/// ends, no two in a row.
void checkName(std::string_view name)
{
    constexpr std::size_t longest = 64 * 4;
    bool harmful = name.empty() || name.size() > longest || name.front() == ' ' ||
                   name.back() == ' ' || name.find("  ") != std::string_view::npos;
    std::string again;
    for (pulsebar::Utf8Reader reader(name); !reader.atEnd();) {
        const auto c = reader.next();
        harmful = harmful || c < ' ' || c == 0x7F;
        pulsebar::appendUtf8(again, c);
    }
    if (harmful || again != name)
        std::abort();
}

} // namespace

/// The first line is the kernel's name of a process, the rest its command line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const auto line = text.substr(0, text.find('\n'));
    const auto rest = text.substr(line.size());
    checkName(pulsebar::nameForRow(text));
    checkName(pulsebar::nameForRow(pulsebar::completeName(line, rest)));
    if (pulsebar::wordForRow(text).find(' ') != std::string::npos)
        std::abort();
    pulsebar::findInPasswd(text, 1000);
    return 0;
}
