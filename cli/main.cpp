#include "Commands.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("pulsebarctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PULSEBAR_VERSION));
    return pulsebar::cli::run(QCoreApplication::arguments().mid(1));
}
