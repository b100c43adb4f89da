#include <QCoreApplication>
#include <QDBusMetaType>
#include <QVariantMap>

#include <gtest/gtest.h>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    qDBusRegisterMetaType<QList<QVariantMap>>();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
