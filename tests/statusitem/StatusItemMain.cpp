#include "BusTesting.h"

#include <QApplication>

#include <gtest/gtest.h>

// These tests paint and talk over a bus: a screen that is not there, and a bus of their own.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    const pulsebar::testing::PrivateBus bus;
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
