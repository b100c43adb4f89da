#include "engine/ProcessPathReport.h"

#include "util/Text.h"

namespace pulsebar {

namespace {

/// Takes the next word, up to a blank; empty at the end of the text.
QString takeWord(QStringView &text)
{
    text = text.trimmed();
    const qsizetype blank = text.indexOf(u' ');
    const QStringView word = blank < 0 ? text : text.first(blank);
    text = text.sliced(word.size());
    return word.toString();
}

Text bundlePath(const QString &command)
{
    const QString extension = QStringLiteral(".app");
    if (!command.contains(extension))
        return command;
    const Text bundle = substringTo(command, extension);
    return bundle ? Text(*bundle + extension) : Text();
}

} // namespace

std::optional<ProcessPath> parseProcessPath(const QByteArray &report)
{
    const QString text = replaceReturnCode(QString::fromUtf8(report));
    const Text lines = substringFrom(text, QStringLiteral("\n"));
    if (!lines)
        return std::nullopt;
    QStringView rest(*lines);
    const QString pid = takeWord(rest);
    const QString command = removeString(takeWord(rest), QStringLiteral("\n"));
    const Text path = bundlePath(command);
    if (pid.isEmpty() || !path || path->isEmpty())
        return std::nullopt;
    return ProcessPath{pid, *path};
}

} // namespace pulsebar
