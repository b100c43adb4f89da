#include "controller/LoginItem.h"
#include "platform/LoginItems.h"
#include "support/QtPrinting.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

const QString kOurs = QStringLiteral("/opt/pulsebar/bin/pulsebar");

QVariant entry(const QString &path)
{
    return QVariantMap{{QStringLiteral("Path"), path}, {QStringLiteral("Hide"), false}};
}

QVariant sibling(const QString &folder = QStringLiteral("/Applications/Old.app"))
{
    return entry(folder + QStringLiteral("/Contents/MacOS/NoteSentinel.app"));
}

const QVariant kOther = entry(QStringLiteral("/usr/bin/other"));

TEST(LoginItem, WithoutAListNothingIsAdded)
{
    EXPECT_EQ(loginItemsAfterChange(std::nullopt, true, kOurs), std::nullopt);
}

TEST(LoginItem, AnEmptyListGetsTheFirstEntry)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList(), true, kOurs), QVariantList{entry(kOurs)});
}

TEST(LoginItem, WithoutAPathNothingChanges)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList{sibling()}, true, QString()), std::nullopt);
}

TEST(LoginItem, ItIsPutInOnceAtTheEnd)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList{kOther}, true, kOurs),
              (QVariantList{kOther, entry(kOurs)}));
    EXPECT_EQ(loginItemsAfterChange(QVariantList{entry(kOurs), kOther}, true, kOurs), std::nullopt);
}

TEST(LoginItem, ItIsTakenOutAlone)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList{kOther, entry(kOurs), kOther}, false, kOurs),
              (QVariantList{kOther, kOther}));
    EXPECT_EQ(loginItemsAfterChange(QVariantList{kOther}, false, kOurs), std::nullopt);
}

TEST(LoginItem, OnlyTheFirstOfTwoIsTakenOut)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList{entry(kOurs), entry(kOurs)}, false, kOurs),
              QVariantList{entry(kOurs)});
}

TEST(LoginItem, ThePathIsComparedWhole)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList{entry(kOurs + u'2')}, false, kOurs), std::nullopt);
    EXPECT_EQ(loginItemsAfterChange(QVariantList{entry(kOurs.toUpper())}, false, kOurs),
              std::nullopt);
}

TEST(LoginItem, APathIsBroughtIntoTheEntriesForm)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList(), true, QStringLiteral("/opt/Pulse bar%20#é/")),
              QVariantList{entry(QStringLiteral("/opt/Pulse bar%20#é"))});
    EXPECT_EQ(loginItemsAfterChange(QVariantList{entry(kOurs)}, false, kOurs + u'/'),
              QVariantList());
}

TEST(LoginItem, AnObsoleteSiblingBeforeOursGoes)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList{sibling(), kOther, entry(kOurs)}, true, kOurs),
              (QVariantList{kOther, entry(kOurs)}));
    EXPECT_EQ(loginItemsAfterChange(QVariantList{sibling(), entry(kOurs)}, false, kOurs),
              QVariantList());
}

TEST(LoginItem, AnObsoleteSiblingBehindOursIsNotSeen)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList{entry(kOurs), sibling()}, true, kOurs),
              std::nullopt);
}

TEST(LoginItem, AnObsoleteSiblingGoesEvenWhenNothingElseChanges)
{
    EXPECT_EQ(loginItemsAfterChange(QVariantList{kOther, sibling()}, false, kOurs),
              QVariantList{kOther});
    EXPECT_EQ(loginItemsAfterChange(QVariantList{sibling()}, true, kOurs),
              QVariantList{entry(kOurs)});
}

TEST(LoginItem, OfSeveralSiblingsTheLastGoesWhereverItStands)
{
    const QVariant first = sibling(QStringLiteral("/a"));
    const QVariant last = sibling(QStringLiteral("/b"));
    EXPECT_EQ(loginItemsAfterChange(QVariantList{last, first, last}, false, kOurs),
              QVariantList{first});
}

TEST(LoginItem, WhatIsNoEntryIsLeftAlone)
{
    const QVariantList strange{QStringLiteral("/opt/pulsebar/bin/pulsebar"),
                               7,
                               QVariant(),
                               QVariantMap(),
                               QVariantMap{{QStringLiteral("Path"), QVariantList{kOurs}}},
                               QVariantList{QStringLiteral("/Contents/MacOS/NoteSentinel.app")}};
    EXPECT_EQ(loginItemsAfterChange(strange, false, kOurs), std::nullopt);
    EXPECT_EQ(loginItemsAfterChange(strange, true, kOurs), strange + QVariantList{entry(kOurs)});
}

class FakeLoginItems : public LoginItems
{
public:
    std::optional<QVariantList> items(const QString &ownPath) override
    {
        askedFor += ownPath;
        return list;
    }
    bool setItems(const QVariantList &items) override
    {
        list = items;
        ++writes;
        return true;
    }

    std::optional<QVariantList> list = QVariantList();
    QStringList askedFor;
    int writes = 0;
};

TEST(LoginItem, TheListIsWrittenOnlyWhenItChanges)
{
    FakeLoginItems list;
    ChangeOurApplicationsLoginSetting(list, false, kOurs);
    EXPECT_EQ(list.writes, 0);
    ChangeOurApplicationsLoginSetting(list, true, kOurs + u'/');
    EXPECT_EQ(list.list, QVariantList{entry(kOurs)});
    ChangeOurApplicationsLoginSetting(list, true, kOurs);
    EXPECT_EQ(list.writes, 1);
    EXPECT_EQ(list.askedFor, (QStringList{kOurs, kOurs, kOurs}));
    ChangeOurApplicationsLoginSetting(list, false, QString());
    EXPECT_EQ(list.writes, 1);
    ChangeOurApplicationsLoginSetting(list, false, kOurs);
    EXPECT_EQ(list.list, QVariantList());
}

} // namespace
} // namespace pulsebar
