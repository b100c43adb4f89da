#include "app/CommandLine.h"

#include <cstdio>

namespace pulsebar {

namespace {

constexpr const char *kHelp =
    "Usage: pulsebar\n"
    "\n"
    "Shows live figures of this machine in the desktop's panel.\n"
    "Started again, it opens the menu of the one that runs.\n"
    "\n"
    "  --help     this text\n"
    "  --version  the version\n"
    "\n"
    "Everything else is chosen in its menu; see pulsebar(1) and pulsebarctl(1).\n";

} // namespace

std::optional<int> handleCommandLine(const QStringList &arguments)
{
    static constexpr int kUsage = 2;
    if (arguments.isEmpty())
        return std::nullopt;
    const QString &option = arguments.front();
    if (option == QLatin1String("--help") || option == QLatin1String("-h")) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (option == QLatin1String("--version")) {
        std::fputs("pulsebar " PULSEBAR_VERSION "\n", stdout);
        return 0;
    }
    std::fprintf(stderr, "pulsebar: unknown option %s\nTry \"pulsebar --help\".\n",
                 option.toUtf8().constData());
    return kUsage;
}

} // namespace pulsebar
