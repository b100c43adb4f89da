#include <QApplication>

#include <gtest/gtest.h>

// Widgets on a screen that is not there.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(true);
    return RUN_ALL_TESTS();
}
