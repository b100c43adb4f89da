#include "Commands.h"

#include "BusClient.h"
#include "Culprits.h"
#include "ExitStatus.h"
#include "GraphKeys.h"
#include "JsonText.h"
#include "PropertyValue.h"
#include "Watch.h"
#include "WatchFormat.h"

#include <QCoreApplication>

#include <array>
#include <cstdio>

namespace pulsebar::cli {

namespace {

void printLine(const QString &text)
{
    std::fprintf(stdout, "%s\n", text.toUtf8().constData());
}

void printError(const QString &text)
{
    std::fprintf(stderr, "pulsebarctl: %s\n", text.toUtf8().constData());
}

int reportError(const QDBusError &error)
{
    const QString name = error.name();
    if (name == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
        name == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner") ||
        name == QLatin1String("org.freedesktop.DBus.Error.Disconnected")) {
        reportNotRunning();
        return kNotRunning;
    }
    printError(error.message().isEmpty() ? name : name + QStringLiteral(": ") + error.message());
    return name == QLatin1String("org.pulsebar.Error.NoValue") ? kNoValue : kRefused;
}

int reportUnknownProperty(const QString &name)
{
    printError(QStringLiteral("there is no property %1").arg(name));
    return kRefused;
}

/// Prints the JSON of an answer.
int printAnswer(const Answer &answer)
{
    if (answer.failed())
        return reportError(answer.error);
    printLine(jsonText(answer.value));
    return kDone;
}

int reportOutcome(const Answer &answer)
{
    return answer.failed() ? reportError(answer.error) : static_cast<int>(kDone);
}

int getCommand(const BusClient &client, const QStringList &arguments)
{
    const auto property = client.findProperty(arguments.front());
    if (!property)
        return reportUnknownProperty(arguments.front());
    return printAnswer(client.get(property->interface, property->name));
}

int setCommand(const BusClient &client, const QStringList &arguments)
{
    const auto property = client.findProperty(arguments.front());
    if (!property)
        return reportUnknownProperty(arguments.front());
    const QVariant value = propertyValue(arguments.at(1), property->signature);
    return reportOutcome(client.set(property->interface, property->name, value));
}

int titleCommand(const BusClient &client, const QStringList &)
{
    const Answer title = client.get(BusClient::kControl, QStringLiteral("title"));
    if (title.failed())
        return reportError(title.error);
    printLine(title.value.toString());
    return kDone;
}

int historyCommand(const BusClient &client, const QStringList &arguments)
{
    return printAnswer(client.callControl(QStringLiteral("cacheDataForKey"), {arguments.front()}));
}

int graphShowCommand(const BusClient &client, const QStringList &arguments)
{
    return reportOutcome(
        client.callControl(QStringLiteral("showGraphViewForKey"), {arguments.front()}));
}

int graphCloseCommand(const BusClient &client, const QStringList &arguments)
{
    return reportOutcome(
        client.callControl(QStringLiteral("closeGraphViewForKey"), {arguments.front()}));
}

int graphListCommand(const BusClient &client, const QStringList &)
{
    const Answer keys = client.get(BusClient::kControl, QStringLiteral("graphWindowKeys"));
    if (keys.failed())
        return reportError(keys.error);
    std::fputs(linesOfKeys(keys.value.toStringList()).toUtf8().constData(), stdout);
    return kDone;
}

int menuCommand(const BusClient &client, const QStringList &)
{
    return reportOutcome(client.callControl(QStringLiteral("openMenu")));
}

int quitCommand(const BusClient &client, const QStringList &)
{
    return reportOutcome(client.callControl(QStringLiteral("quit")));
}

int reportUsage(const QString &what)
{
    printError(what);
    std::fprintf(stderr, "Try \"pulsebarctl --help\".\n");
    return kUsage;
}

int watchCommand(const BusClient &client, WatchFormat &format)
{
    Watch watch(client, format);
    if (!watch.start()) {
        printError(QStringLiteral("cannot follow the samples"));
        return kRefused;
    }
    return QCoreApplication::exec();
}

struct Command
{
    QLatin1String name;
    int argumentCount;
    int (*carryOut)(const BusClient &client, const QStringList &arguments);
};

constexpr std::array kCommands{
    Command{QLatin1String("get"), 1, getCommand},
    Command{QLatin1String("set"), 2, setCommand},
    Command{QLatin1String("title"), 0, titleCommand},
    Command{QLatin1String("history"), 1, historyCommand},
    Command{QLatin1String("graph show"), 1, graphShowCommand},
    Command{QLatin1String("graph close"), 1, graphCloseCommand},
    Command{QLatin1String("graph list"), 0, graphListCommand},
    Command{QLatin1String("menu"), 0, menuCommand},
    Command{QLatin1String("quit"), 0, quitCommand},
};

int runCulprits(const QStringList &arguments)
{
    const std::optional<quint32> seconds = secondsFromArguments(arguments);
    if (!seconds)
        return reportUsage(QStringLiteral("culprits takes --since SECONDS"));
    const BusClient client;
    if (!client.isRunning()) {
        reportNotRunning();
        return kNotRunning;
    }
    const Answer answer = client.callControl(QStringLiteral("culprits"), {*seconds});
    if (answer.failed())
        return reportError(answer.error);
    std::fputs(linesOfCulprits(answer.value.toList()).toUtf8().constData(), stdout);
    return kDone;
}

/// `--format X`, `--format=X` or nothing; nothing else may stand behind `watch`.
std::unique_ptr<WatchFormat> formatFromArguments(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return WatchFormat::named(QStringLiteral("plain"));
    static constexpr QLatin1String kOption("--format");
    if (arguments.size() == 2 && arguments.front() == kOption)
        return WatchFormat::named(arguments.back());
    if (arguments.size() == 1 && arguments.front().startsWith(kOption + u'='))
        return WatchFormat::named(arguments.front().mid(kOption.size() + 1));
    return nullptr;
}

int runWatch(const QStringList &arguments)
{
    const std::unique_ptr<WatchFormat> format = formatFromArguments(arguments);
    if (!format)
        return reportUsage(QStringLiteral("watch takes --format plain, json, waybar or i3bar"));
    const BusClient client;
    if (!client.isRunning()) {
        reportNotRunning();
        return kNotRunning;
    }
    return watchCommand(client, *format);
}

/// Takes the command's name off the front of a command line; that of the graphs has two words.
QString takeName(QStringList &arguments)
{
    QString name = arguments.takeFirst();
    if (name == QLatin1String("graph") && !arguments.isEmpty())
        name += u' ' + arguments.takeFirst();
    return name;
}

int runCommand(const Command &command, const QStringList &arguments)
{
    if (arguments.size() != command.argumentCount)
        return reportUsage(QStringLiteral("wrong number of arguments for %1").arg(command.name));
    const BusClient client;
    if (!client.isRunning()) {
        reportNotRunning();
        return kNotRunning;
    }
    return command.carryOut(client, arguments);
}

} // namespace

void reportNotRunning()
{
    std::fprintf(stderr, "pulsebar is not running\n");
}

QString helpText()
{
    return QStringLiteral(
        "Usage: pulsebarctl COMMAND\n"
        "\n"
        "Asks and steers the running pulsebar over the session bus.\n"
        "\n"
        "  get NAME                a property as JSON\n"
        "  set NAME VALUE          changes a property\n"
        "  title                   the title\n"
        "  watch [--format FORMAT] a line per sample: plain, json, waybar or i3bar\n"
        "  history KEY             the last minute of a series as a JSON array\n"
        "  culprits [--since SECONDS]\n"
        "                          a line per sample: time, load, busiest processes\n"
        "  graph show KEY          opens the graph of a series, or raises it\n"
        "  graph close KEY         closes it\n"
        "  graph list              the keys of the open graphs, one a line\n"
        "  menu                    opens the menu\n"
        "  quit                    ends pulsebar\n"
        "\n"
        "  --help, --version\n"
        "\n"
        "Exit status: 0 done, 1 refused, 2 usage, 3 no value, 4 pulsebar is not running.\n");
}

int run(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return reportUsage(QStringLiteral("no command"));
    QStringList rest = arguments;
    const QString name = takeName(rest);
    if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
        std::fputs(helpText().toUtf8().constData(), stdout);
        return kDone;
    }
    if (name == QLatin1String("--version")) {
        printLine(QStringLiteral("pulsebarctl ") + QCoreApplication::applicationVersion());
        return kDone;
    }
    if (name == QLatin1String("watch"))
        return runWatch(rest);
    if (name == QLatin1String("culprits"))
        return runCulprits(rest);
    for (const Command &command : kCommands) {
        if (name == command.name)
            return runCommand(command, rest);
    }
    return reportUsage(QStringLiteral("unknown command %1").arg(name));
}

} // namespace pulsebar::cli
