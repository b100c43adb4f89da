#include "cli/BusClient.h"
#include "cli/Commands.h"
#include "cli/Culprits.h"
#include "cli/ExitStatus.h"
#include "cli/GraphKeys.h"
#include "cli/JsonText.h"
#include "cli/PropertyValue.h"
#include "cli/WatchFormat.h"
#include "support/Text.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVariantMap>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace pulsebar::cli {
namespace {

TEST(JsonText, IntegersInFull)
{
    EXPECT_EQ(jsonText(std::numeric_limits<quint64>::max()), s("18446744073709551615"));
    EXPECT_EQ(jsonText(std::numeric_limits<qint64>::min()), s("-9223372036854775808"));
    EXPECT_EQ(jsonText(7U), s("7"));
}

TEST(JsonText, RealNumbers)
{
    EXPECT_EQ(jsonText(0.1), s("0.1"));
    EXPECT_EQ(jsonText(60.0), s("60"));
    EXPECT_EQ(jsonText(std::nan("")), s("null"));
    EXPECT_EQ(jsonText(std::numeric_limits<double>::infinity()), s("null"));
    EXPECT_EQ(jsonText(-std::numeric_limits<double>::infinity()), s("null"));
}

TEST(JsonText, CollectionsOnOneLine)
{
    const QVariantMap map{{s("a"), QVariantList{1, true, s("x")}}, {s("b"), QVariant()}};
    EXPECT_EQ(jsonText(map), s("{\"a\":[1,true,\"x\"],\"b\":null}"));
    EXPECT_EQ(jsonText(QVariantList()), s("[]"));
}

TEST(JsonText, TextsReadBack)
{
    const QString text = s("\"quoted\"\\ \n\r\t\x01\x7F \xC3\xA4") + QChar(u'\0');
    const QByteArray json = (u'[' + jsonString(text) + u']').toUtf8();
    EXPECT_EQ(QJsonDocument::fromJson(json).array().at(0).toString(), text);
    EXPECT_FALSE(json.contains('\n'));
}

TEST(PropertyValue, ByTheDeclaredType)
{
    EXPECT_EQ(propertyValue(s("5"), s("i")), QVariant(5));
    EXPECT_EQ(propertyValue(s("-5"), s("i")), QVariant(-5));
    EXPECT_EQ(propertyValue(s("2.5"), s("d")), QVariant(2.5));
    EXPECT_EQ(propertyValue(s("true"), s("b")), QVariant(true));
    EXPECT_EQ(propertyValue(s("5"), s("s")), QVariant(s("5")));
    for (const char *list : {"1,2,3", "[1, 2, 3]", " 1 , 2,3 "})
        EXPECT_EQ(propertyValue(s(list), s("ai")).value<QList<int>>(), (QList<int>{1, 2, 3}))
            << list;
    EXPECT_EQ(propertyValue(s("[]"), s("ai")).value<QList<int>>(), QList<int>());
}

TEST(PropertyValue, WhatDoesNotFitIsSentAsText)
{
    for (const char *signature : {"i", "d", "b", "ai", "aa{sv}"})
        EXPECT_EQ(propertyValue(s("many"), s(signature)), QVariant(s("many"))) << signature;
    EXPECT_EQ(propertyValue(s("99999999999"), s("i")), QVariant(s("99999999999")));
    EXPECT_EQ(propertyValue(s("1,,2"), s("ai")), QVariant(s("1,,2")));
    EXPECT_EQ(propertyValue(s("[1]"), s("aa{sv}")), QVariant(s("[1]")));
}

TEST(PropertyValue, DictionariesKeepWholeNumbersWhole)
{
    const auto entries =
        propertyValue(s("[{\"type\":10,\"threshold\":50.5,\"name\":\"x\"}]"), s("aa{sv}"))
            .value<QList<QVariantMap>>();
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0].value(s("type")).typeId(), QMetaType::Int);
    EXPECT_EQ(entries[0].value(s("threshold")), QVariant(50.5));
    EXPECT_EQ(entries[0].value(s("name")), QVariant(s("x")));
}

TEST(PropertyInXml, FindsOursByName)
{
    const QString xml = s(
        "<node><interface name=\"org.freedesktop.DBus.Other\"><property name=\"title\" type=\"i\" "
        "access=\"read\"/></interface><interface name=\"org.pulsebar.Pulsebar.Control1\">"
        "<property name=\"title\" type=\"s\" access=\"read\"/></interface></node>");
    const auto property = propertyInXml(xml, s("title"));
    ASSERT_TRUE(property);
    EXPECT_EQ(property->interface, s("org.pulsebar.Pulsebar.Control1"));
    EXPECT_EQ(property->signature, s("s"));
    EXPECT_FALSE(propertyInXml(xml, s("other")));
    EXPECT_FALSE(propertyInXml(s("<node><broken"), s("title")));
}

TEST(WatchFormat, Plain)
{
    const auto format = WatchFormat::named(s("plain"));
    EXPECT_EQ(format->header(), QString());
    EXPECT_EQ(format->line({s("12.3%"), 5, {}}), s("12.3%"));
}

TEST(WatchFormat, Json)
{
    EXPECT_EQ(WatchFormat::named(s("json"))->line({s("12.3%"), 1700000000123, {}}),
              s("{\"title\":\"12.3%\",\"time\":1700000000123}"));
}

TEST(WatchFormat, WaybarEscapesMarkupAndTellsTheLoad)
{
    const auto format = WatchFormat::named(s("waybar"));
    const auto object = [&format](const QString &title, std::optional<double> load) {
        const QString line = format->line({title, 0, load});
        EXPECT_FALSE(line.contains(u'\n'));
        return QJsonDocument::fromJson(line.toUtf8()).object();
    };
    EXPECT_EQ(object(s("1 < 2 & 3 | x"), {}),
              (QJsonObject{{s("text"), s("1 &lt; 2 &amp; 3 | x")},
                           {s("tooltip"), s("Pulsebar\n1 &lt; 2 &amp; 3\nx")},
                           {s("class"), s("normal")}}));
    EXPECT_EQ(object(QString(), 0.7).value(s("class")), s("warning"));
    EXPECT_EQ(object(QString(), 0.95).value(s("class")), s("critical"));
    EXPECT_EQ(object(QString(), 0.1).value(s("tooltip")), s("Pulsebar"));
}

TEST(WatchFormat, I3BarIsAnArrayWithoutAnEnd)
{
    const auto format = WatchFormat::named(s("i3bar"));
    const QString header = format->header();
    EXPECT_EQ(QJsonDocument::fromJson(header.section(u'\n', 0, 0).toUtf8())
                  .object()
                  .value(s("version"))
                  .toInt(),
              1);
    QString array = header.section(u'\n', 1);
    array += format->line({s("a\"b"), 0, {}}) + u'\n';
    array += format->line({s("c"), 0, {}}) + u'\n';
    const QJsonArray lines = QJsonDocument::fromJson((array + u']').toUtf8()).array();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines.at(0).toArray().at(0).toObject().value(s("full_text")), s("a\"b"));
    EXPECT_EQ(lines.at(1).toArray().at(0).toObject().value(s("full_text")), s("c"));
}

TEST(WatchFormat, OtherNamesAreNone)
{
    EXPECT_EQ(WatchFormat::named(s("xml")), nullptr);
}

TEST(GraphKeys, OneALine)
{
    EXPECT_EQ(linesOfKeys({}), QString());
    EXPECT_EQ(linesOfKeys({s("CPUTotalUsage"), s("CPUUsage__412//a \"b\", \xC3\xA4")}),
              s("CPUTotalUsage\nCPUUsage__412//a \"b\", \xC3\xA4\n"));
}

TEST(GraphKeys, NoNameBreaksALineOrSteersTheTerminal)
{
    const QString bad = QString(QChar(QChar::ReplacementCharacter));
    EXPECT_EQ(linesOfKeys({s("a\nb\r"), s("\x1B[2J\x7F"), s("\xC2\x85\xE2\x80\xA8")}),
              s("a") + bad + s("b") + bad + s("\n") + bad + s("[2J") + bad + s("\n") + bad + bad +
                  s("\n"));
}

TEST(CommandLine, WrongOnesAreUsageErrors)
{
    testing::internal::CaptureStderr();
    for (const QStringList &line : {QStringList{},
                                    {s("dance")},
                                    {s("get")},
                                    {s("get"), s("a"), s("b")},
                                    {s("set"), s("a")},
                                    {s("title"), s("x")},
                                    {s("watch"), s("--format"), s("xml")},
                                    {s("watch"), s("--format")},
                                    {s("watch"), s("x")},
                                    {s("graph")},
                                    {s("graph"), s("dance")},
                                    {s("graph"), s("show")},
                                    {s("graph"), s("show"), s("a"), s("b")},
                                    {s("graph"), s("close")},
                                    {s("graph"), s("list"), s("x")},
                                    {s("--nonsense")}})
        EXPECT_EQ(run(line), kUsage) << line.join(u' ').toStdString();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("--help"), std::string::npos);
}

TEST(CommandLine, HelpNamesEveryCommand)
{
    for (const char *command : {"get", "set", "title", "watch", "history", "graph show KEY",
                                "graph close KEY", "graph list", "menu", "quit"})
        EXPECT_TRUE(helpText().contains(s("\n  ") + s(command))) << command;
}

TEST(Culprits, HowFarBack)
{
    EXPECT_EQ(secondsFromArguments({}), std::numeric_limits<quint32>::max());
    EXPECT_EQ(secondsFromArguments({s("--since"), s("60")}), 60U);
    EXPECT_EQ(secondsFromArguments({s("--since=0")}), 0U);
    for (const QStringList &wrong :
         {QStringList{s("60")}, QStringList{s("--since")}, QStringList{s("--since="), s("60")},
          QStringList{s("--since"), s("-1")}, QStringList{s("--since"), s("1.5")},
          QStringList{s("--since"), s("5000000000")}, QStringList{s("--since=1"), s("x")}})
        EXPECT_EQ(secondsFromArguments(wrong), std::nullopt) << wrong.join(u' ').toStdString();
}

TEST(Culprits, ALinePerSample)
{
    const qint64 time = QDateTime(QDate(2024, 2, 3), QTime(14, 3, 12, 900)).toMSecsSinceEpoch();
    const QVariantList busy{time, 0.921,
                            QVariantList{QVariantList{s("cc1plus"), qint64(12), 1.5},
                                         QVariantList{s("Web\nContent"), qint64(13), 0.5},
                                         QVariantList{s("cc1plus"), qint64(14), 0.4}}};
    const QVariantList idle{time + 3000, 0.003, QVariantList()};
    EXPECT_EQ(linesOfCulprits({QVariant(busy), QVariant(7), QVariant(idle)}),
              s("14:03:12 92.1%: cc1plus, Web\uFFFDContent\n14:03:15 0.3%\n"));
    EXPECT_EQ(linesOfCulprits({}), QString());
}

} // namespace
} // namespace pulsebar::cli
