#include "sensors/SensorLists.h"

#include "sensors/BinaryPropertyList.h"
#include "sensors/PropertyList.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <plist/plist.h>
#include <sys/stat.h>

namespace pulsebar {
namespace {

QByteArray plist(const QByteArray &content)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">" +
           content + "</plist>\n";
}

QByteArray element(const QByteArray &name, const QByteArray &key)
{
    return "<dict><key>Key</key><string>" + name + "</string><key>SMCKey</key><string>" + key +
           "</string></dict>";
}

QByteArray array(const QByteArray &elements)
{
    return plist("<array>" + elements + "</array>");
}

QByteArray toBinary(const QByteArray &xml)
{
    plist_t root = nullptr;
    plist_from_xml(xml.constData(), static_cast<std::uint32_t>(xml.size()), &root);
    char *bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(root, &bytes, &size);
    QByteArray binary(bytes, static_cast<qsizetype>(size));
    std::free(bytes); // NOLINT(cppcoreguidelines-no-malloc)
    plist_free(root);
    return binary;
}

QStringList namesIn(const QVariantList &elements)
{
    QStringList names;
    for (const QVariant &each : elements)
        names.append(each.toMap().value(QStringLiteral("Key")).toString());
    return names;
}

SensorListReading temperatures(const QByteArray &bytes)
{
    return parseSensorList(bytes, SensorListKind::Temperature);
}

SensorListReading fans(const QByteArray &bytes)
{
    return parseSensorList(bytes, SensorListKind::Fan);
}

TEST(SensorList, IsReadInItsOrder)
{
    const QByteArray xml = array(element("Zed", "Tzz0") + element("CPU Die", "Tcp0") +
                                 element("\xC3\x84u\xC3\x9F"
                                         "ere Luft &amp; mehr",
                                         "Tam0"));
    const QVariantList expected{
        QVariantMap{{QStringLiteral("Key"), QStringLiteral("Zed")},
                    {QStringLiteral("SMCKey"), QStringLiteral("Tzz0")}},
        QVariantMap{{QStringLiteral("Key"), QStringLiteral("CPU Die")},
                    {QStringLiteral("SMCKey"), QStringLiteral("Tcp0")}},
        QVariantMap{{QStringLiteral("Key"), QString::fromUtf8("Äußere Luft & mehr")},
                    {QStringLiteral("SMCKey"), QStringLiteral("Tam0")}}};
    for (const QByteArray &bytes : {xml, toBinary(xml)}) {
        const SensorListReading reading = temperatures(bytes);
        EXPECT_EQ(reading.problem, QString());
        EXPECT_EQ(reading.leftOut, 0);
        EXPECT_EQ(reading.elements, expected);
    }
}

TEST(SensorList, WhatIsNoPropertyListIsNotUsed)
{
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("rubbish"), QByteArray("<html></html>"), QByteArray("bplist00"),
          QByteArray("bplist00" + QByteArray(40, '\xFF')), QByteArray(100, '\0'),
          array(element("A", "Tcp0")).left(200)}) {
        EXPECT_EQ(temperatures(bytes).problem, QStringLiteral("not a property list"))
            << bytes.left(20).constData();
        EXPECT_TRUE(temperatures(bytes).elements.isEmpty());
    }
}

TEST(SensorList, AnythingButAnArrayIsNotUsed)
{
    for (const QByteArray &bytes : {plist("<dict><key>Key</key><string>a</string></dict>"),
                                    plist("<string>a</string>"), plist("<integer>1</integer>")})
        EXPECT_EQ(temperatures(bytes).problem, QStringLiteral("not an array"));
}

TEST(SensorList, ElementsThatCannotBeUsedAreLeftOut)
{
    const QByteArray bad =
        "<string>a</string><integer>1</integer><array/><dict/>"
        "<dict><key>Key</key><string>no key</string></dict>"
        "<dict><key>SMCKey</key><string>Tcp0</string></dict>"
        "<dict><key>Key</key><integer>1</integer><key>SMCKey</key><string>Tcp0</string></dict>"
        "<dict><key>Key</key><string>a</string><key>SMCKey</key><integer>1</integer></dict>" +
        element("", "Tcp0") + element("short", "Tcp") + element("long", "Tcp00") +
        element("Umlaut", "Tc\xC3\x84") + element("control", "Tc\x01p") +
        element(QByteArray(101, 'x'), "Tcp0");
    const SensorListReading reading = temperatures(array(bad + element("good", "Tcp0")));
    EXPECT_EQ(reading.problem, QString());
    EXPECT_EQ(namesIn(reading.elements), QStringList{QStringLiteral("good")});
    EXPECT_EQ(reading.leftOut, 14);
    EXPECT_EQ(temperatures(array(bad)).problem, QStringLiteral("no usable element"));
}

TEST(SensorList, OfOneNameTheFirstCounts)
{
    const SensorListReading reading =
        temperatures(array(element("a", "T001") + element("b", "T002") + element("a", "T003")));
    EXPECT_EQ(namesIn(reading.elements), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(reading.leftOut, 1);
    EXPECT_EQ(reading.elements.at(0).toMap().value(QStringLiteral("SMCKey")),
              QVariant(QStringLiteral("T001")));
}

TEST(SensorList, AnEmptyListOfTemperaturesIsAList)
{
    EXPECT_EQ(temperatures(array("")).problem, QString());
    EXPECT_EQ(fans(array("")).problem, QStringLiteral("without a usable \"ActualSpeed\""));
}

TEST(SensorList, OtherKeysOfAnElementAreNotCarriedAlong)
{
    const SensorListReading reading = temperatures(
        array("<dict><key>Key</key><string>a</string><key>SMCKey</key><string>Tcp0</string>"
              "<key>Note</key><string>mine</string></dict>"));
    EXPECT_EQ(reading.elements.value(0).toMap().size(), 2);
}

TEST(SensorList, FanFormatsHaveOnePlaceholderForANumber)
{
    const QByteArray actual = element("ActualSpeed", "F%dAc");
    for (const char *format : {"F%dMn", "F%iMn", "F%uMn", "%dAcb", "F%1$dAc"})
        EXPECT_EQ(fans(array(actual + element("x", format))).leftOut, 0) << format;
    for (const char *format : {"%s%n", "F%sAc", "F%d%d", "F0Ac", "F%fAc", "F%@Ac", "F%99dA",
                               "F%dActual", "%d", "F%", "F%*dA", "%n%nAc", "%%Ac0"}) {
        EXPECT_EQ(fans(array(actual + element("x", format))).leftOut, 1) << format;
        EXPECT_EQ(fans(array(element("ActualSpeed", format))).problem,
                  QStringLiteral("without a usable \"ActualSpeed\""));
    }
}

bool isRead(const QByteArray &bytes)
{
    return parsePropertyList(bytes, {"a"}).has_value();
}

TEST(PropertyList, DictionariesHaveWhatIsAskedFor)
{
    const auto list = parsePropertyList(
        plist("<dict><key>a</key><string>x</string><key>b</key><dict><key>a</key><true/></dict>"
              "</dict>"),
        {"b", "a", "c"});
    EXPECT_EQ(list, QVariant(QVariantMap{
                        {QStringLiteral("a"), QStringLiteral("x")},
                        {QStringLiteral("b"), QVariantMap{{QStringLiteral("a"), QVariant()}}}}));
}

TEST(PropertyList, AZeroInAKeyIsHarmless)
{
    QByteArray bytes = toBinary(plist("<dict><key>abc</key><string>x</string></dict>"));
    bytes[bytes.indexOf("abc") + 1] = '\0';
    EXPECT_TRUE(isRead(bytes));
}

TEST(PropertyList, DeepAndWideOnesAreRefused)
{
    EXPECT_FALSE(isRead(plist(QByteArray("<array>").repeated(100'000))));
    EXPECT_FALSE(isRead(plist(QByteArray("<array/>").repeated(20'000))));
    const auto nested = [](int levels) {
        return plist(QByteArray("<array>").repeated(levels) +
                     QByteArray("</array>").repeated(levels));
    };
    EXPECT_TRUE(isRead(nested(17)));
    EXPECT_TRUE(isRead(toBinary(nested(17))));
    EXPECT_FALSE(isRead(nested(18)));
    EXPECT_FALSE(isRead(toBinary(nested(18))));
    EXPECT_FALSE(isRead(nested(3000)));
}

TEST(PropertyList, TooManyEntitiesAreRefused)
{
    const auto text = [](int entities) {
        return plist("<string>" + QByteArray("&amp;").repeated(entities) + "</string>");
    };
    EXPECT_TRUE(isRead(text(12'000)));
    EXPECT_FALSE(isRead(text(12'001)));
}

TEST(PropertyList, OtherFormsAreNone)
{
    EXPECT_FALSE(isRead(R"([{"Key": "CPU Die", "SMCKey": "Tcp0"}])"));
    EXPECT_FALSE(isRead(R"(({Key = "CPU Die"; SMCKey = Tcp0;}))"));
    EXPECT_FALSE(isRead(QByteArray("[").repeated(100'000)));
}

TEST(PropertyList, AThousandSensorsAreRead)
{
    QByteArray many;
    for (int i = 0; i < 1000; ++i)
        many += element(QByteArray::number(i), "Tcp0");
    EXPECT_EQ(temperatures(array(many)).elements.size(), 1000);
    EXPECT_EQ(temperatures(toBinary(array(many))).elements.size(), 1000);
}

/// A binary list of arrays, each with the next one ten times.
QByteArray bomb(int levels)
{
    QByteArray bytes = "bplist00";
    QByteArray offsets;
    for (int level = 0; level < levels; ++level) {
        offsets += static_cast<char>(bytes.size());
        bytes += '\xAA';
        bytes += QByteArray(10, static_cast<char>(level + 1));
    }
    offsets += static_cast<char>(bytes.size());
    bytes += QByteArray("\x51x");
    const auto table = static_cast<char>(bytes.size());
    bytes += offsets + QByteArray(6, '\0') + QByteArray("\x01\x01", 2);
    bytes += QByteArray(7, '\0') + static_cast<char>(levels + 1) + QByteArray(8, '\0');
    bytes += QByteArray(7, '\0') + table;
    return bytes;
}

TEST(PropertyList, FewBytesCannotStandForMillions)
{
    EXPECT_TRUE(isRead(bomb(3)));
    EXPECT_FALSE(isRead(bomb(12)));
    EXPECT_TRUE(isTameBinaryPropertyList(bomb(3), 3, 1111));
    EXPECT_FALSE(isTameBinaryPropertyList(bomb(3), 2, 1111));
    EXPECT_FALSE(isTameBinaryPropertyList(bomb(3), 3, 1110));
}

TEST(PropertyList, AnArrayWithinItselfIsRefused)
{
    QByteArray own = bomb(1);
    own[9] = '\0'; // its first part is now the array itself
    EXPECT_FALSE(isRead(own));
}

class SensorListFiles : public testing::Test
{
protected:
    SensorListFiles()
    {
        for (const QString &folder : m_folders)
            QDir().mkpath(folder);
        write(1, "Temperature", array(element("built in", "Tcp0")));
        write(1, "Fan", array(element("ActualSpeed", "F%dAc")));
    }
    QString path(int folder, const char *list) const
    {
        return m_folders.at(folder) + QStringLiteral("/%1.plist").arg(QLatin1String(list));
    }
    void write(int folder, const char *list, const QByteArray &bytes) const
    {
        QFile file(path(folder, list));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    /// The user's copy is not used, and that is said in one line.
    void expectIgnored(const QString &problem)
    {
        const LogCapture log;
        EXPECT_EQ(namesIn(readSensorLists(m_folders).temperature),
                  QStringList{QStringLiteral("built in")});
        EXPECT_EQ(LogCapture::lines(),
                  QStringList{QStringLiteral("pulsebar.sensors: %1 is not used: %2")
                                  .arg(path(0, "Temperature"), problem)});
    }

    QTemporaryDir m_folder;
    QStringList m_folders{m_folder.filePath(QStringLiteral("user")),
                          m_folder.filePath(QStringLiteral("program"))};
};

TEST_F(SensorListFiles, TheUsersCopyIsReadInsteadOfTheProgramsOwn)
{
    const LogCapture log;
    write(0, "Temperature", array(element("mine", "Tcp0")));
    const auto lists = readSensorLists(m_folders);
    EXPECT_EQ(namesIn(lists.temperature), QStringList{QStringLiteral("mine")});
    EXPECT_EQ(namesIn(lists.fan), QStringList{QStringLiteral("ActualSpeed")});
    EXPECT_EQ(LogCapture::lines(), QStringList());
}

TEST_F(SensorListFiles, ABrokenCopyIsSaidAndIgnored)
{
    write(0, "Temperature", "rubbish");
    expectIgnored(QStringLiteral("not a property list"));
    write(0, "Temperature", array(element("mine", "nothing")));
    expectIgnored(QStringLiteral("no usable element"));
    write(0, "Temperature", "");
    expectIgnored(QStringLiteral("not a property list"));
}

TEST_F(SensorListFiles, ACopyOfMoreThanAMebibyteIsIgnored)
{
    const QByteArray good = array(element("mine", "Tcp0"));
    write(0, "Temperature", good + QByteArray((1 << 20) - good.size(), '\n'));
    EXPECT_EQ(namesIn(readSensorLists(m_folders).temperature), QStringList{QStringLiteral("mine")});
    write(0, "Temperature", good + QByteArray((1 << 20) - good.size() + 1, '\n'));
    expectIgnored(QStringLiteral("too large"));
}

TEST_F(SensorListFiles, WhatIsNoFileIsIgnoredWithoutWaiting)
{
    QDir().mkpath(path(0, "Temperature"));
    expectIgnored(QStringLiteral("not a file"));
    QDir().rmdir(path(0, "Temperature"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(0, "Temperature")).constData(), 0600), 0);
    expectIgnored(QStringLiteral("not a file"));
}

TEST_F(SensorListFiles, ALinkThatLeadsInACircleIsSaid)
{
    QFile::link(path(0, "Temperature"), path(0, "Temperature"));
    expectIgnored(qt_error_string(ELOOP));
}

TEST_F(SensorListFiles, UnusableElementsAreSaidOnce)
{
    const LogCapture log;
    write(0, "Fan",
          array(element("ActualSpeed", "F%dAc") + element("a", "%s%n") + element("b", "%n")));
    EXPECT_EQ(namesIn(readSensorLists(m_folders).fan), QStringList{QStringLiteral("ActualSpeed")});
    EXPECT_EQ(
        LogCapture::lines(),
        QStringList{
            QStringLiteral("pulsebar.sensors: %1 has 2 unusable elements").arg(path(0, "Fan"))});
}

TEST_F(SensorListFiles, WithoutAnyListThereIsNone)
{
    const LogCapture log;
    const auto lists = readSensorLists({m_folder.filePath(QStringLiteral("nowhere"))});
    EXPECT_TRUE(lists.temperature.isEmpty());
    EXPECT_TRUE(lists.fan.isEmpty());
    EXPECT_EQ(LogCapture::lines(),
              (QStringList{QStringLiteral("pulsebar.sensors: no Temperature.plist found"),
                           QStringLiteral("pulsebar.sensors: no Fan.plist found")}));
}

} // namespace
} // namespace pulsebar
