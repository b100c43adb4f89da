#include "controller/AlertListText.h"
#include "controller/Alerts.h"
#include "controller/Settings.h"
#include "support/LogCapture.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace pulsebar {
namespace {

QVariantMap cpuEntry(const QVariant &threshold, const QVariantMap &more = {})
{
    QVariantMap entry{{s("type"), 10}, {s("observeType"), 0}, {s("threshold"), threshold}};
    entry.insert(more);
    return entry;
}

AlertRule cpuRule(double threshold)
{
    AlertRule rule;
    rule.threshold = threshold;
    return rule;
}

TEST(AlertListText, WhatIsNoArrayIsNoList)
{
    for (const char *text : {"", "{}", "7", "[", "[{\"type\":10},]", "\"[]\"", "nonsense"})
        EXPECT_FALSE(alertlist::entriesFromText(s(text))) << text;
    EXPECT_EQ(alertlist::entriesFromText(s("[]")), QVariantList());
}

TEST(AlertListText, EntriesReadBackAsTheyWereWritten)
{
    const QVariantList entries{cpuEntry(62.5, {{s("note"), s("\"mine\"\n\u00E4")},
                                               {s("list"), QVariantList{1, true, s("x")}},
                                               {s("inner"), QVariantMap{{s("a"), 1.5}}},
                                               {s("large"), std::numeric_limits<qint64>::max()}}),
                               cpuEntry(90)};
    EXPECT_EQ(alertlist::entriesFromText(alertlist::textFromEntries(entries)), entries);
}

TEST(AlertListText, WhatJsonCannotHoldIsLeftOut)
{
    const QVariantList entries{cpuEntry(1, {{s("bytes"), QByteArray("\x01")},
                                            {s("none"), std::nan("")},
                                            {s("list"), QVariantList{QByteArray("x"), 2}}})};
    EXPECT_EQ(alertlist::textFromEntries(entries),
              s("[{\"list\":[2],\"observeType\":0,\"threshold\":1,\"type\":10}]"));
}

TEST(AlertListText, SortsOutBrokenEntries)
{
    const QVariantList entries{cpuEntry(1), 7, QVariantMap{{s("type"), 99}}, cpuEntry(2),
                               cpuEntry(3, {{s("note"), QString(5000, u'x')}})};
    const alertlist::SoundEntries sound = alertlist::soundEntries(entries);
    EXPECT_EQ(sound.entries, (QVariantList{cpuEntry(1), cpuEntry(2)}));
    ASSERT_EQ(sound.problems.size(), 3);
    EXPECT_TRUE(sound.problems[0].startsWith(s("Alert 2 is left out: ")));
    EXPECT_TRUE(sound.problems[1].startsWith(s("Alert 3 is left out: ")));
    EXPECT_TRUE(sound.problems[2].startsWith(s("Alert 5 is left out: ")));
}

TEST(AlertListText, SixtyFourEntriesAreEnough)
{
    QVariantList entries;
    for (int i = 0; i < 70; ++i)
        entries += cpuEntry(i);
    const alertlist::SoundEntries sound = alertlist::soundEntries(entries);
    EXPECT_EQ(sound.entries, entries.first(64));
    EXPECT_EQ(sound.problems,
              QStringList{s("Alerts from 65 on are left out: there are too many.")});
}

TEST(AlertListText, AFileOfBrokenEntriesFillsNoLog)
{
    QVariantList entries(10'000, QVariant(7));
    entries += cpuEntry(1);
    const alertlist::SoundEntries sound = alertlist::soundEntries(entries);
    EXPECT_TRUE(sound.entries.isEmpty());
    EXPECT_EQ(sound.problems.size(), 65);
}

TEST(AlertListText, WhatTheBusCouldNotCarryIsLeftOut)
{
    const auto nested = [](int levels) {
        return cpuEntry(
            1,
            {{s("note"),
              alertlist::entriesFromText(QString(levels, u'[') + QString(levels, u']')).value()}});
    };
    EXPECT_EQ(alertlist::soundEntries({nested(15)}).entries.size(), 1);
    EXPECT_TRUE(alertlist::soundEntries({nested(16)}).entries.isEmpty());
    EXPECT_TRUE(alertlist::soundEntries({nested(1000)}).entries.isEmpty());
}

TEST(AlertListText, BytesThatJsonDoesNotHoldCountToo)
{
    const QByteArray half(alertlist::kLongestEntry / 2, 'x');
    const QVariantMap small = cpuEntry(1, {{s("a"), half}});
    const QVariantMap large = cpuEntry(2, {{s("a"), half}, {s("b"), half}});
    EXPECT_EQ(alertlist::soundEntries({small, large}).entries, QVariantList{small});
}

class AlertsTest : public testing::Test
{
protected:
    AlertsTest() { reload(); }

    void reload()
    {
        alerts.reset();
        settings = std::make_unique<Settings>(fileName());
        alerts = std::make_unique<Alerts>(*settings);
        QObject::connect(alerts.get(), &Alerts::changed, alerts.get(), [this] { ++changes; });
        alerts->load();
    }
    void reloadFrom(const QByteArray &text)
    {
        QFile file(fileName());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\n" + text);
        file.close();
        reload();
    }
    QString fileName() const { return m_folder.filePath(s("Pulsebar.conf")); }
    QByteArray fileText() const
    {
        QFile file(fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList ids() const
    {
        QStringList all;
        for (const Alert &alert : alerts->list())
            all += alert.id;
        return all;
    }

    QTemporaryDir m_folder;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<Alerts> alerts;
    int changes = 0;
};

TEST_F(AlertsTest, WhatIsAddedIsThereAfterAStart)
{
    AlertRule rule = cpuRule(90);
    rule.duration = 20;
    rule.name = s("Busy, \"very\"");
    const QString id = alerts->add(rule);
    EXPECT_FALSE(id.isEmpty());
    EXPECT_EQ(changes, 1);
    ASSERT_NE(alerts->find(id), nullptr);
    EXPECT_EQ(alerts->find(id)->rule, rule);
    reload();
    ASSERT_EQ(alerts->list().size(), 1);
    EXPECT_EQ(alerts->list()[0].rule, rule);
    EXPECT_FALSE(alerts->list()[0].id.isEmpty());
}

TEST_F(AlertsTest, APersonMayWriteTheListPlainly)
{
    reloadFrom(R"(observeArray=[{"type": 10, "threshold": 90, "duration": 20}, {"type": 18}])"
               "\n");
    ASSERT_EQ(alerts->list().size(), 2);
    EXPECT_EQ(alerts->list()[0].rule.duration, 20);
    EXPECT_EQ(alerts->list()[1].rule.subject, AlertSubject::Fans);
}

TEST_F(AlertsTest, BrokenEntriesAreReportedOnceAndTheOthersLive)
{
    const LogCapture log;
    reloadFrom(R"(observeArray=[{"type": 99}, {"type": 10, "threshold": 90}, "x"])"
               "\n");
    ASSERT_EQ(alerts->list().size(), 1);
    EXPECT_EQ(alerts->list()[0].rule.threshold, 90);
    alerts->setEnabled(alerts->list()[0].id, false);
    EXPECT_EQ(LogCapture::lines().size(), 2) << LogCapture::lines().join(u'\n').toStdString();
    for (const QString &line : LogCapture::lines())
        EXPECT_TRUE(line.startsWith(s("pulsebar.alerts: Alert "))) << line.toStdString();
}

TEST_F(AlertsTest, AListThatIsNoneIsReportedAndLeftAlone)
{
    const LogCapture log;
    reloadFrom("observeArray=nonsense\n");
    EXPECT_TRUE(alerts->list().isEmpty());
    EXPECT_EQ(LogCapture::lines().size(), 1);
    EXPECT_EQ(fileText(), QByteArray("[General]\nobserveArray=nonsense\n"));
}

TEST_F(AlertsTest, ChangesKeepTheIdAndWhatIsForeign)
{
    alerts->setObserveArray({cpuEntry(50, {{s("note"), s("mine")}}), cpuEntry(60)});
    const QString id = ids().first();
    EXPECT_TRUE(alerts->change(id, cpuRule(70)));
    EXPECT_TRUE(alerts->setEnabled(id, false));
    EXPECT_EQ(alerts->list()[0].id, id);
    EXPECT_EQ(alerts->list()[0].entry,
              cpuEntry(70, {{s("note"), s("mine")}, {s("enabled"), false}}));
    EXPECT_EQ(alerts->observedEntries(), QVariantList{cpuEntry(60)});
    EXPECT_TRUE(alerts->setEnabled(id, true));
    EXPECT_EQ(alerts->observedEntries().size(), 2);
    reload();
    EXPECT_EQ(alerts->observeArray(),
              (QVariantList{cpuEntry(70, {{s("note"), s("mine")}}), cpuEntry(60)}));
}

TEST_F(AlertsTest, WhatIsNotThereCannotBeChanged)
{
    const QString id = alerts->add(cpuRule(50));
    changes = 0;
    EXPECT_FALSE(alerts->change(s("other"), cpuRule(60)));
    EXPECT_FALSE(alerts->setEnabled(s("other"), false));
    EXPECT_FALSE(alerts->remove(s("other")));
    EXPECT_FALSE(alerts->change(id, cpuRule(std::nan(""))));
    EXPECT_TRUE(alerts->add(cpuRule(1e300)).isEmpty());
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(alerts->list()[0].rule, cpuRule(50));
}

TEST_F(AlertsTest, TheLastOneThatGoesTakesTheSettingAlong)
{
    const QString first = alerts->add(cpuRule(50));
    const QString second = alerts->add(cpuRule(50));
    EXPECT_NE(first, second);
    EXPECT_TRUE(alerts->remove(first));
    EXPECT_EQ(ids(), QStringList{second});
    EXPECT_TRUE(fileText().contains("observeArray"));
    EXPECT_TRUE(alerts->remove(second));
    EXPECT_FALSE(fileText().contains("observeArray"));
    // A menu that is still open may speak of it.
    EXPECT_FALSE(QStringList({first, second}).contains(alerts->add(cpuRule(50))));
}

TEST_F(AlertsTest, EntriesOfScriptsAreNotTouched)
{
    const QVariantMap odd{{s("type"), s("10")}, {s("threshold"), 20.0}, {s("note"), s("mine")},
                          {s("enabled"), 1},    {s("duration"), 0},     {s("name"), QString()}};
    EXPECT_TRUE(alerts->setObserveArray({odd}));
    EXPECT_EQ(alerts->observeArray(), QVariantList{odd});
    EXPECT_EQ(alerts->observedEntries(), QVariantList{odd});
}

TEST_F(AlertsTest, IdsAreTheEntriesOwnWhereTheyAreUnique)
{
    alerts->setObserveArray({cpuEntry(1, {{s("id"), s("alert1")}}),
                             cpuEntry(2, {{s("id"), s("alert1")}}), cpuEntry(3),
                             cpuEntry(4, {{s("id"), QString()}})});
    QStringList all = ids();
    EXPECT_EQ(all.first(), s("alert1"));
    EXPECT_FALSE(all.contains(QString()));
    EXPECT_EQ(all.removeDuplicates(), 0);
    EXPECT_EQ(alerts->observeArray()[1].toMap().value(s("id")), QVariant(s("alert1")));
}

TEST_F(AlertsTest, AnAlertThatIsInTheNewListTooKeepsItsId)
{
    alerts->setObserveArray({cpuEntry(1), cpuEntry(1), cpuEntry(2)});
    const QStringList before = ids();
    alerts->setObserveArray({cpuEntry(2), cpuEntry(5), cpuEntry(1), cpuEntry(1), cpuEntry(1)});
    QStringList after = ids();
    EXPECT_EQ(after[0], before[2]);
    EXPECT_EQ(after[2], before[0]);
    EXPECT_EQ(after[3], before[1]);
    EXPECT_FALSE(before.contains(after[1]));
    EXPECT_FALSE(before.contains(after[4]));
    EXPECT_EQ(after.removeDuplicates(), 0);
}

TEST_F(AlertsTest, ThresholdsFollowTheScaleOfTemperatures)
{
    const QVariantMap hot{{s("type"), 17},
                          {s("temperaturePart"), s("CPU Die")},
                          {s("threshold"), 50},
                          {s("note"), s("mine")}};
    alerts->setObserveArray({hot, cpuEntry(50)});
    const QStringList before = ids();
    changes = 0;
    alerts->changeScale(true);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(alerts->list()[0].rule.threshold, 147.6);
    EXPECT_EQ(alerts->observeArray()[0].toMap().value(s("note")), QVariant(s("mine")));
    EXPECT_EQ(alerts->observeArray()[1], QVariant(cpuEntry(50)));
    EXPECT_EQ(ids(), before);
    reload();
    EXPECT_EQ(alerts->list()[0].rule.threshold, 147.6);
    alerts->changeScale(false);
    EXPECT_EQ(alerts->list()[0].rule.threshold, 50);
    alerts->setObserveArray({cpuEntry(50)});
    changes = 0;
    alerts->changeScale(true);
    EXPECT_EQ(changes, 0) << "there is nothing to convert";
}

TEST_F(AlertsTest, WhatIsWrittenOverAndOverIsStoredOnce)
{
    const QVariantList entries{cpuEntry(50), cpuEntry(60)};
    EXPECT_TRUE(alerts->setObserveArray(entries));
    ASSERT_TRUE(QFile::remove(fileName()));
    changes = 0;
    EXPECT_TRUE(alerts->setObserveArray(entries));
    EXPECT_EQ(changes, 0);
    EXPECT_FALSE(QFile::exists(fileName()));
    EXPECT_TRUE(alerts->setObserveArray({cpuEntry(60), cpuEntry(50)}));
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(QFile::exists(fileName()));
}

TEST_F(AlertsTest, TheListIsBounded)
{
    QVariantList entries;
    for (int i = 0; i < 65; ++i)
        entries += cpuEntry(i);
    EXPECT_FALSE(alerts->setObserveArray(entries));
    EXPECT_TRUE(alerts->list().isEmpty());
    EXPECT_TRUE(alerts->setObserveArray(entries.first(64)));
    EXPECT_TRUE(alerts->isFull());
    EXPECT_TRUE(alerts->add(cpuRule(1)).isEmpty());
    EXPECT_EQ(alerts->list().size(), 64);
}

} // namespace
} // namespace pulsebar
