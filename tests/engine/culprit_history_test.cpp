#include "engine/CulpritHistory.h"
#include "support/QtPrinting.h"
#include "support/Text.h"

#include <QDateTime>

namespace pulsebar {
namespace {

struct Listed
{
    const char *name;
    int pid;
    const char *usage;
};

QVariantMap sampleOf(double total, std::initializer_list<Listed> processes)
{
    QVariantList list;
    for (const Listed &process : processes)
        list += QVariantMap{{s("ProcessName"), s(process.name)},
                            {s("PID"), QString::number(process.pid)},
                            {s("CPUUsage"), s(process.usage)}};
    return {{s("CPUUsageCoreAverage"), total}, {s("ProcessList"), list}};
}

/// A history whose samples all bring a load of their own.
class CountedHistory : public CulpritHistory
{
public:
    using CulpritHistory::add;
    void add(const QVariantMap &sample, qint64 time) { add(sample, time, ++m_loads); }

private:
    quint64 m_loads = 0;
};

QString names(const CulpritSample &sample)
{
    QStringList all;
    for (const Culprit &process : sample.processes())
        all += process.name;
    return all.join(u',');
}

TEST(CulpritHistory, KeepsTheThreeBusiestInWhateverOrderTheyAreListed)
{
    CountedHistory history;
    history.add(sampleOf(0.5, {{"a", 11, "0.100000"},
                               {"b", 12, "0.000000"},
                               {"c", 13, "1.500000"},
                               {"d", 14, "0.100000"},
                               {"e", 15, "0.300000"}}),
                1000);
    const auto newest = history.newest();
    ASSERT_TRUE(newest);
    EXPECT_EQ(newest->time, 1000);
    EXPECT_EQ(newest->total, 0.5);
    ASSERT_EQ(names(*newest), s("c,e,a"));
    EXPECT_EQ(newest->processes()[0].number, 13);
    EXPECT_EQ(newest->processes()[0].fraction, 1.5);
}

TEST(CulpritHistory, ASampleMayHaveNoLoadOrNoProcesses)
{
    CountedHistory history;
    history.add({{s("ProcessList"), QVariantList()}}, 1);
    EXPECT_EQ(history.size(), 0U);
    EXPECT_FALSE(history.newest());
    EXPECT_FALSE(history.busiest(5));
    history.add(sampleOf(0.25, {{"idle", 5, "0.000000"}}), 2);
    history.add({{s("CPUUsageCoreAverage"), 0.5}, {s("ProcessList"), QVariantList{7}}}, 3);
    EXPECT_EQ(history.size(), 2U);
    EXPECT_TRUE(history.newest()->processes().isEmpty());
    EXPECT_FALSE(history.busiest(5));
}

TEST(CulpritHistory, ForgetsWhatIsOlderThanTenMinutes)
{
    CountedHistory history;
    for (int i = 0; i <= 300; ++i)
        history.add(sampleOf(0.1, {}), i * 3000);
    EXPECT_EQ(history.size(), 201U);
    EXPECT_EQ(history.newest(200)->time, 300 * 3000 - CulpritHistory::kSpan);
    EXPECT_FALSE(history.newest(201));
}

TEST(CulpritHistory, IsBoundedHoweverOftenItIsFed)
{
    CountedHistory history;
    for (int i = 0; i < 2000; ++i)
        history.add(sampleOf(0.1, {}), 5);
    EXPECT_EQ(history.size(), CulpritHistory::kMostSamples);
}

TEST(CulpritHistory, AClockSetBackLosesNothing)
{
    CountedHistory history;
    history.add(sampleOf(0.1, {}), 10'000'000);
    history.add(sampleOf(0.2, {}), 1'000);
    EXPECT_EQ(history.size(), 2U);
    EXPECT_EQ(history.newest()->total, 0.2);
    ASSERT_EQ(history.since(600, 2'000).size(), 1);
    EXPECT_EQ(history.since(600, 2'000).constFirst().total, 0.2);
}

TEST(CulpritHistory, AnswersTheLastSeconds)
{
    CountedHistory history;
    for (int i = 1; i <= 10; ++i)
        history.add(sampleOf(i / 10.0, {}), i * 1000);
    const auto totals = [&](quint32 seconds) {
        QList<double> all;
        for (const CulpritSample &sample : history.since(seconds, 10'500))
            all += sample.total;
        return all;
    };
    EXPECT_EQ(totals(0), QList<double>());
    EXPECT_EQ(totals(2), (QList<double>{0.9, 1.0}));
    EXPECT_EQ(totals(600).size(), 10);
    EXPECT_EQ(totals(std::numeric_limits<quint32>::max()).size(), 10);
}

TEST(CulpritHistory, NamesAreBoundedAndPrintable)
{
    CountedHistory history;
    const std::string longName(500, 'x');
    history.add(sampleOf(0.1, {{longName.c_str(), 5, "0.5"}, {"a\nb", 6, "0.4"}}), 1);
    const QList<Culprit> processes = history.newest()->processes();
    EXPECT_EQ(processes[0].name.size(), CulpritHistory::kLongestName);
    EXPECT_EQ(processes[1].name, s("a\uFFFDb"));
}

TEST(CulpritHistory, AProcessThatStaysSharesItsName)
{
    CountedHistory history;
    history.add(sampleOf(0.1, {{"hog", 5, "0.5"}}), 1);
    history.add(sampleOf(0.1, {{"other", 6, "0.6"}, {"hog", 5, "0.5"}}), 2);
    EXPECT_EQ(history.newest(0)->processes()[1].name.constData(),
              history.newest(1)->processes()[0].name.constData());
}

TEST(CulpritHistory, TheBusiestOverSeveralSamplesGoByName)
{
    CountedHistory history;
    history.add(sampleOf(0.9, {{"early", 2, "4.0"}}), 1);
    history.add(sampleOf(0.9, {{"cc1plus", 10, "0.6"}, {"steady", 5, "0.5"}}), 2);
    history.add(
        sampleOf(0.9, {{"cc1plus", 11, "0.4"}, {"cc1plus", 12, "0.3"}, {"steady", 5, "0.3"}}), 3);
    const auto two = history.busiest(2);
    ASSERT_TRUE(two);
    EXPECT_EQ(two->name, s("cc1plus"));
    EXPECT_EQ(two->number, 11);
    EXPECT_NEAR(two->fraction, 0.65, 1e-9);
    EXPECT_EQ(history.busiest(100)->name, s("early"));
    EXPECT_EQ(history.busiest(100)->number, 0); // it is not there any more
    EXPECT_FALSE(history.busiest(0));
}

TEST(CulpritHistory, FindsTheSampleThatBroughtALoad)
{
    CulpritHistory history;
    EXPECT_FALSE(history.ofLoad(0));
    history.add(sampleOf(0.1, {}), 1000, 5);
    history.add(sampleOf(0.2, {}), 2000, 6);
    // The cores could not be read twice, and one load belongs to no sample.
    history.add(sampleOf(0.2, {}), 3000, 6);
    history.add(sampleOf(0.2, {}), 4000, 6);
    history.add(sampleOf(0.4, {}), 5000, 8);
    const auto timeOf = [&](std::size_t back) {
        const auto sample = history.ofLoad(back);
        return sample ? sample->time : -1;
    };
    EXPECT_EQ(timeOf(0), 5000);
    EXPECT_EQ(timeOf(1), -1);
    EXPECT_EQ(timeOf(2), 2000);
    EXPECT_EQ(timeOf(3), 1000);
    EXPECT_EQ(timeOf(4), -1) << "older than all that is kept";
    EXPECT_EQ(timeOf(100), -1) << "before the first load that there was";
    history.add(sampleOf(0.4, {}), 6000, 8);
    EXPECT_EQ(timeOf(0), 5000) << "who used most when it was measured";
}

TEST(CulpritHistory, LoadsAreFoundAfterTheClockWasSet)
{
    CulpritHistory history;
    history.add(sampleOf(0.1, {}), 9'000'000, 1);
    history.add(sampleOf(0.2, {}), 1'000, 2);
    EXPECT_EQ(history.ofLoad(1)->time, 9'000'000);
    // An hour on: all before it count as old.
    history.add(sampleOf(0.3, {}), 90'000'000, 3);
    EXPECT_EQ(history.ofLoad(0)->time, 90'000'000);
    EXPECT_FALSE(history.ofLoad(1));
}

TEST(CulpritText, TimeLoadAndNames)
{
    CountedHistory history;
    const QDateTime time(QDate(2024, 2, 3), QTime(14, 3, 12, 900));
    history.add(sampleOf(0.921, {{"cc1plus", 10, "0.6"}, {"Web Content", 5, "0.5"}}),
                time.toMSecsSinceEpoch());
    EXPECT_EQ(culpritText(*history.newest()), s("14:03:12 92.1%: cc1plus, Web Content"));
    history.add(sampleOf(1.0, {{"cc1plus", 10, "0.6"}, {"as", 12, "0.55"}, {"cc1plus", 11, "0.5"}}),
                time.toMSecsSinceEpoch());
    EXPECT_EQ(culpritText(*history.newest()), s("14:03:12 100.0%: cc1plus, as"));
    history.add(sampleOf(0.003, {}), time.addSecs(3).toMSecsSinceEpoch());
    EXPECT_EQ(culpritText(*history.newest()), s("14:03:15 0.3%"));
}

} // namespace
} // namespace pulsebar
