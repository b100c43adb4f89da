#include "menu/AlertRule.h"

#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace pulsebar {
namespace {

QVariantMap entry(int type, const QVariantMap &more = {})
{
    QVariantMap made{{s("type"), type}, {s("threshold"), 50}};
    made.insert(more);
    return made;
}

AlertRule rule(AlertSubject subject, bool rising, double threshold, int duration = 0)
{
    AlertRule made;
    made.subject = subject;
    made.rising = rising;
    made.threshold = threshold;
    made.duration = duration;
    return made;
}

AlertRule partRule(AlertSubject subject, const char *part, double threshold)
{
    AlertRule made = rule(subject, true, threshold);
    made.part = s(part);
    return made;
}

bool isRate(AlertSubject subject)
{
    return subject == AlertSubject::NetworkIn || subject == AlertSubject::NetworkOut;
}

class AlertRuleTest : public testing::Test
{
protected:
    AlertRuleTest() { QLocale::setDefault(QLocale::c()); }
    ~AlertRuleTest() override { QLocale::setDefault(m_before); }
    QLocale m_before;
};

TEST_F(AlertRuleTest, ReadsEveryTypeOfEntry)
{
    const auto subject = [](const QVariantMap &read) { return alertRuleFromEntry(read)->subject; };
    EXPECT_EQ(subject(entry(10)), AlertSubject::CpuLoad);
    EXPECT_EQ(subject(entry(11)), AlertSubject::NetworkOut);
    EXPECT_EQ(subject(entry(11, {{s("networkTriggerDataType"), 1}})), AlertSubject::NetworkIn);
    EXPECT_EQ(subject(entry(11, {{s("networkTriggerDataType"), -3}})), AlertSubject::NetworkIn);
    EXPECT_EQ(subject(entry(12)), AlertSubject::BatteryPercent);
    EXPECT_EQ(subject(entry(12, {{s("batteryTriggerEventType"), 1}})),
              AlertSubject::CablePluggedIn);
    EXPECT_EQ(subject(entry(12, {{s("batteryTriggerEventType"), 2}})),
              AlertSubject::CableUnplugged);
    EXPECT_EQ(subject(entry(18)), AlertSubject::Fans);
    const auto process = alertRuleFromEntry(entry(15, {{s("processName"), s("1//a")}}));
    EXPECT_EQ(process->subject, AlertSubject::ProcessShare);
    EXPECT_EQ(process->part, s("1//a"));
    const auto sensor = alertRuleFromEntry(entry(17, {{s("temperaturePart"), s("CPU Die")}}));
    EXPECT_EQ(sensor->subject, AlertSubject::Temperature);
    EXPECT_EQ(sensor->part, s("CPU Die"));
}

TEST_F(AlertRuleTest, WhatIsMissingHasAMeaning)
{
    const auto plain = alertRuleFromEntry({{s("type"), 10}});
    ASSERT_TRUE(plain);
    EXPECT_EQ(*plain, rule(AlertSubject::CpuLoad, true, 0));
    EXPECT_TRUE(plain->enabled);
    EXPECT_EQ(plain->name, QString());
}

TEST_F(AlertRuleTest, NumbersMayBeTextsAndAnyDirectionButZeroFalls)
{
    const auto read = alertRuleFromEntry({{s("type"), s("10")},
                                          {s("observeType"), s("7")},
                                          {s("threshold"), s("62.5")},
                                          {s("duration"), s("20")},
                                          {s("enabled"), s("false")}});
    ASSERT_TRUE(read);
    EXPECT_FALSE(read->rising);
    EXPECT_EQ(read->threshold, 62.5);
    EXPECT_EQ(read->duration, 20);
    EXPECT_FALSE(read->enabled);
}

TEST_F(AlertRuleTest, BrokenEntriesAreNoRules)
{
    const QString tooLong(AlertRule::kLongestText + 1, u'x');
    const QVector<QVariantMap> broken{
        {},
        entry(0),
        entry(13),
        entry(15),
        entry(15, {{s("processName"), QString()}}),
        entry(15, {{s("processName"), tooLong}}),
        entry(17),
        entry(12, {{s("batteryTriggerEventType"), 3}}),
        entry(10, {{s("threshold"), s("much")}}),
        entry(10, {{s("threshold"), s("inf")}}),
        entry(10, {{s("threshold"), std::nan("")}}),
        entry(10, {{s("threshold"), std::numeric_limits<double>::infinity()}}),
        entry(10, {{s("threshold"), 1e16}}),
        entry(10, {{s("threshold"), QVariantList{1}}}),
        entry(10, {{s("duration"), -1}}),
        entry(10, {{s("duration"), 1e300}}),
        entry(10, {{s("duration"), s("long")}}),
        entry(10, {{s("duration"), QVariantMap()}}),
        entry(10, {{s("name"), tooLong}}),
    };
    for (qsizetype i = 0; i < broken.size(); ++i)
        EXPECT_FALSE(alertRuleFromEntry(broken[i])) << i;
}

TEST_F(AlertRuleTest, RatesAreReadAsTheyAreCompared)
{
    const auto rate = [](const QVariant &threshold) {
        return alertRuleFromEntry(entry(11, {{s("threshold"), threshold}}))->threshold;
    };
    EXPECT_EQ(rate(1000.7), 1000);
    EXPECT_EQ(rate(s("1000.7")), 1000);
    EXPECT_EQ(rate(s("1e5")), 1);
    EXPECT_FALSE(alertRuleFromEntry(entry(11, {{s("threshold"), 1e300}})));
}

TEST_F(AlertRuleTest, TheOtherScaleOfTemperatures)
{
    const AlertRule hot = partRule(AlertSubject::Temperature, "CPU Die", 50);
    EXPECT_EQ(alertRuleInScale(hot, true).threshold, 147.6); // as readings are shown
    EXPECT_EQ(alertRuleInScale(alertRuleInScale(hot, true), false), hot);
    for (int tenths = -1000; tenths <= 2000; ++tenths) {
        const AlertRule one = partRule(AlertSubject::Temperature, "x", tenths / 10.0);
        EXPECT_EQ(alertRuleInScale(alertRuleInScale(one, true), false), one);
    }
    const AlertRule busy = rule(AlertSubject::CpuLoad, true, 50);
    EXPECT_EQ(alertRuleInScale(busy, true), busy);
}

TEST_F(AlertRuleTest, AWrittenRuleReadsBack)
{
    QVector<AlertRule> rules;
    for (const AlertSubject subject :
         {AlertSubject::CpuLoad, AlertSubject::NetworkIn, AlertSubject::NetworkOut,
          AlertSubject::BatteryPercent, AlertSubject::Fans})
        rules << rule(subject, true, isRate(subject) ? 62 : 62.5, 20) << rule(subject, false, 7);
    rules << rule(AlertSubject::CablePluggedIn, true, 0)
          << rule(AlertSubject::CableUnplugged, true, 0, 5)
          << partRule(AlertSubject::ProcessShare, "a b", 1)
          << partRule(AlertSubject::Temperature, "CPU Die", 80);
    rules.last().name = s("Hot");
    rules.last().enabled = false;
    // Written over each other, so that nothing of the one before may stay.
    QVariantMap written{{s("note"), s("mine")}};
    for (const AlertRule &one : rules) {
        written = entryWithAlertRule(one, written);
        EXPECT_EQ(alertRuleFromEntry(written), one) << alertRuleText(one, false).toStdString();
        EXPECT_EQ(written.value(s("note")), QVariant(s("mine")));
    }
    EXPECT_EQ(
        entryWithAlertRule(rules.first()),
        (QVariantMap{
            {s("type"), 10}, {s("observeType"), 0}, {s("threshold"), 62.5}, {s("duration"), 20}}));
}

TEST_F(AlertRuleTest, TellsConditionsApart)
{
    const AlertRule cpu = rule(AlertSubject::CpuLoad, true, 90, 20);
    AlertRule named = rule(AlertSubject::CpuLoad, true, 90);
    named.name = s("x");
    EXPECT_TRUE(cpu.watchesLike(named));
    EXPECT_FALSE(cpu.watchesLike(rule(AlertSubject::CpuLoad, false, 90)));
    EXPECT_FALSE(cpu.watchesLike(rule(AlertSubject::CpuLoad, true, 91)));
    EXPECT_FALSE(cpu.watchesLike(rule(AlertSubject::Fans, true, 90)));
    EXPECT_FALSE(partRule(AlertSubject::Temperature, "a", 1)
                     .watchesLike(partRule(AlertSubject::Temperature, "b", 1)));
    // The cable has neither threshold nor direction.
    EXPECT_TRUE(rule(AlertSubject::CablePluggedIn, true, 0)
                    .watchesLike(rule(AlertSubject::CablePluggedIn, false, 5)));
}

TEST_F(AlertRuleTest, RulesAsTexts)
{
    const auto text = [](const AlertRule &one) { return alertRuleText(one, false); };
    EXPECT_EQ(text(rule(AlertSubject::CpuLoad, true, 90, 20)), s("CPU above 90% for 20 seconds"));
    EXPECT_EQ(text(rule(AlertSubject::CpuLoad, false, 62.5)), s("CPU below 62.5%"));
    EXPECT_EQ(text(rule(AlertSubject::NetworkIn, true, 1.5 * 1024 * 1024, 60)),
              s("Network In above 1.5MB/s for 1 minute"));
    EXPECT_EQ(text(rule(AlertSubject::NetworkOut, false, 100)), s("Network Out below 100B/s"));
    EXPECT_EQ(text(rule(AlertSubject::BatteryPercent, false, 20)), s("Battery below 20%"));
    EXPECT_EQ(text(rule(AlertSubject::CablePluggedIn, true, 0)), s("Power cable plugged in"));
    EXPECT_EQ(text(rule(AlertSubject::CableUnplugged, true, 0, 5)),
              s("Power cable unplugged for 5 seconds"));
    EXPECT_EQ(text(partRule(AlertSubject::ProcessShare, "412//Web Content", 150)),
              s("CPU of Web Content above 150%"));
    EXPECT_EQ(text(partRule(AlertSubject::ProcessShare, "%@ \n", 1)),
              s("CPU of %@ \uFFFD above 1%"));
    EXPECT_EQ(text(partRule(AlertSubject::Temperature, "CPU Die", 80)),
              s("CPU Die above 80\u2103"));
    EXPECT_EQ(alertRuleText(partRule(AlertSubject::Temperature, "CPU Die", 176), true),
              s("CPU Die above 176\u2109"));
    EXPECT_EQ(text(rule(AlertSubject::Fans, true, 3000)), s("Fan speed above 3000RPM"));
}

TEST_F(AlertRuleTest, TheUsersDecimalSeparator)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(alertRuleText(rule(AlertSubject::CpuLoad, true, 62.5), false), s("CPU above 62,5%"));
    EXPECT_EQ(alertValueText(AlertSubject::CpuLoad, 92.08, false), s("92,1%"));
}

TEST_F(AlertRuleTest, DurationsInTheirLargestUnit)
{
    EXPECT_EQ(alertDurationText(0), s("0 seconds"));
    EXPECT_EQ(alertDurationText(1), s("1 second"));
    EXPECT_EQ(alertDurationText(90), s("90 seconds"));
    EXPECT_EQ(alertDurationText(60), s("1 minute"));
    EXPECT_EQ(alertDurationText(600), s("10 minutes"));
    EXPECT_EQ(alertDurationText(3600), s("1 hour"));
    EXPECT_EQ(alertDurationText(7200), s("2 hours"));
}

TEST_F(AlertRuleTest, ValuesWithTheirUnits)
{
    EXPECT_EQ(alertValueText(AlertSubject::CpuLoad, 92.08, false), s("92.1%"));
    EXPECT_EQ(alertValueText(AlertSubject::NetworkIn, 2048, false), s("2.0KB/s"));
    EXPECT_EQ(alertValueText(AlertSubject::Temperature, 81.25, true), s("81.2\u2109"));
    EXPECT_EQ(alertValueText(AlertSubject::Fans, 2400.4, false), s("2400RPM"));
    EXPECT_EQ(alertValueText(AlertSubject::CableUnplugged, 0, false), QString());
}

TEST_F(AlertRuleTest, ANameStandsForTheRule)
{
    AlertRule one = rule(AlertSubject::CpuLoad, true, 90);
    one.name = s("  ");
    EXPECT_EQ(alertTitle(one, false), s("CPU above 90%"));
    one.name = s("Bu\nsy");
    EXPECT_EQ(alertTitle(one, false), s("Bu\uFFFDsy"));
    one.name = QString(AlertRule::kLongestText, u'x');
    EXPECT_EQ(alertTitle(one, false).size(), 64);
}

TEST_F(AlertRuleTest, AnEditorIsToldWhatIsWrong)
{
    EXPECT_EQ(alertProblem(rule(AlertSubject::CpuLoad, true, 90)), QString());
    EXPECT_EQ(alertProblem(rule(AlertSubject::CpuLoad, true, 101)),
              s("The threshold must lie between 0 and 100."));
    EXPECT_EQ(alertProblem(rule(AlertSubject::CpuLoad, true, std::nan(""))),
              s("The threshold must lie between 0 and 100."));
    EXPECT_EQ(alertProblem(rule(AlertSubject::CpuLoad, true, 0)),
              s("The threshold must be above 0 for a value to rise to it."));
    EXPECT_EQ(alertProblem(rule(AlertSubject::CpuLoad, false, 0)), QString());
    EXPECT_EQ(alertProblem(rule(AlertSubject::BatteryPercent, false, 100)),
              s("The threshold must be below 100 for a value to fall to it."));
    EXPECT_EQ(alertProblem(rule(AlertSubject::BatteryPercent, true, 100)), QString());
    EXPECT_EQ(alertProblem(rule(AlertSubject::CablePluggedIn, true, 1e9)), QString());
    EXPECT_EQ(alertProblem(partRule(AlertSubject::ProcessShare, " ", 1)), s("Name the process."));
    EXPECT_EQ(alertProblem(partRule(AlertSubject::Temperature, "", 1)), s("Choose a sensor."));
    EXPECT_EQ(alertProblem(rule(AlertSubject::CpuLoad, true, 90, -1)),
              s("The duration must lie between 0 and 86400 seconds."));
    AlertRule named = rule(AlertSubject::CpuLoad, true, 90);
    named.name = QString(AlertRule::kLongestText + 1, u'x');
    EXPECT_EQ(alertProblem(named), s("A name has at most 256 characters."));
}

TEST_F(AlertRuleTest, WhatAnEditorOffersIsSound)
{
    for (int i = 0; i <= static_cast<int>(AlertSubject::Fans); ++i) {
        const auto subject = static_cast<AlertSubject>(i);
        for (const bool fahrenheit : {false, true}) {
            AlertRule one = partRule(subject, "x", 0);
            one.threshold = alertThresholdRange(subject, fahrenheit).usual;
            EXPECT_EQ(alertProblem(one), QString()) << i;
            EXPECT_TRUE(alertRuleFromEntry(entryWithAlertRule(one))) << i;
        }
    }
}

} // namespace
} // namespace pulsebar
