#include "app/Display.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace pulsebar {

namespace {

QtMessageHandler previousHandler = nullptr;

void reportNoDisplay()
{
    std::fputs("pulsebar: there is no display to show anything on (is DISPLAY set?)\n", stderr);
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg) {
        reportNoDisplay();
        std::_Exit(EXIT_FAILURE);
    }
    if (previousHandler != nullptr)
        previousHandler(type, context, text);
}

} // namespace

std::optional<QByteArray> displayPlatform()
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return QByteArray();
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        return QByteArrayLiteral("xcb");
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return QByteArray();
    reportNoDisplay();
    return std::nullopt;
}

DisplayErrors::DisplayErrors()
{
    previousHandler = qInstallMessageHandler(handleMessage);
}

DisplayErrors::~DisplayErrors()
{
    qInstallMessageHandler(previousHandler);
}

} // namespace pulsebar
