#include "controller/AlertListText.h"
#include "menu/AlertRule.h"

#include <QByteArray>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace pulsebar;

/// A sound entry can be shown, and edited without becoming a broken one.
void checkEntry(const QVariantMap &entry)
{
    const auto rule = alertRuleFromEntry(entry);
    if (!rule || !std::isfinite(rule->threshold) || rule->duration < 0)
        std::abort();
    for (const bool fahrenheit : {false, true}) {
        const QString text = alertTitle(*rule, fahrenheit);
        if (text.isEmpty() || text.size() > 256 || text.contains(u'\n') || text.contains(u'\0'))
            std::abort();
    }
    if (alertRuleFromEntry(entryWithAlertRule(*rule, entry)) != rule)
        std::abort();
}

} // namespace

/// The settings file's list of alerts: bounded, usable, and the same after being written and read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto all = alertlist::entriesFromText(text);
    if (!all)
        return 0;
    const alertlist::SoundEntries sound = alertlist::soundEntries(*all);
    const qsizetype told = sound.entries.size() + sound.problems.size();
    const bool isCut = sound.entries.size() == alertlist::kMostAlerts ||
                       sound.problems.size() > alertlist::kMostAlerts;
    if (sound.entries.size() > alertlist::kMostAlerts ||
        sound.problems.size() > alertlist::kMostAlerts + 1 ||
        (isCut ? told > all->size() : told != all->size()))
        std::abort();
    for (const QVariant &entry : sound.entries)
        checkEntry(entry.toMap());
    const QString written = alertlist::textFromEntries(sound.entries);
    const auto again = alertlist::entriesFromText(written);
    if (!again || alertlist::textFromEntries(*again) != written ||
        alertlist::soundEntries(*again).entries.size() != sound.entries.size())
        std::abort();
    return 0;
}
