#include "statusitem/FaceChooser.h"

#include <gtest/gtest.h>

namespace pulsebar {
namespace {

Surroundings with(HostKind host, bool tray = false)
{
    Surroundings around;
    around.host = host;
    around.tray = tray;
    return around;
}

TEST(HostKind, IsReadFromProgramNames)
{
    EXPECT_EQ(hostKindOf(QStringLiteral("gnome-shell")), HostKind::Gnome);
    EXPECT_EQ(hostKindOf(QStringLiteral("notification-area-applet")), HostKind::Mate);
    EXPECT_EQ(hostKindOf(QStringLiteral("ayatana-indicator-application-service")),
              HostKind::AyatanaIndicators);
    EXPECT_EQ(hostKindOf(QStringLiteral("waybar")), HostKind::Waybar);
    EXPECT_EQ(hostKindOf(QStringLiteral("wrapper-2.0")), HostKind::Xfce);
    EXPECT_EQ(hostKindOf(QStringLiteral("kded5")), HostKind::Plasma);
    EXPECT_EQ(hostKindOf(QStringLiteral("kded6")), HostKind::Plasma);
    EXPECT_EQ(hostKindOf(QStringLiteral("lxqt-panel")), HostKind::Lxqt);
    EXPECT_EQ(hostKindOf(QStringLiteral("swaybar")), HostKind::Swaybar);
    EXPECT_EQ(hostKindOf(QStringLiteral("some-bar")), HostKind::Unknown);
    EXPECT_EQ(hostKindOf(QString()), HostKind::Unknown);
}

TEST(FaceChooser, SendsALabelAndNoTextPixmapsWhereLabelsAreDrawn)
{
    for (const HostKind host : {HostKind::Gnome, HostKind::Mate, HostKind::AyatanaIndicators}) {
        const Faces faces = chooseFaces(with(host, true));
        EXPECT_TRUE(faces.notifier);
        EXPECT_TRUE(faces.label);
        EXPECT_FALSE(faces.tray);
        EXPECT_FALSE(faces.strip);
        EXPECT_EQ(faces.pixmaps, PixmapStyle::Icon);
        EXPECT_EQ(faces.iconByName, host == HostKind::AyatanaIndicators);
    }
}

TEST(FaceChooser, DrawsWhatIsToBeNoticedForMate)
{
    Surroundings around = with(HostKind::Mate, false);
    EXPECT_TRUE(chooseFaces(around).label);
    around.attention = true;
    EXPECT_FALSE(chooseFaces(around).label) << "it would stand in the icon's place";
    EXPECT_EQ(chooseFaces(around).pixmaps, PixmapStyle::WideOnly);
    around.host = HostKind::Gnome;
    EXPECT_TRUE(chooseFaces(around).label) << "there the icon stands beside it";
}

TEST(FaceChooser, DrawsPictureAndTitleInOnePixmapForMate)
{
    Surroundings around = with(HostKind::Mate, true);
    around.hasPicture = true;
    const Faces faces = chooseFaces(around);
    EXPECT_FALSE(faces.label);
    EXPECT_EQ(faces.pixmaps, PixmapStyle::WideOnly);
    EXPECT_FALSE(faces.tray);
    around.host = HostKind::Gnome;
    EXPECT_TRUE(chooseFaces(around).label) << "draws icon and label";
}

TEST(FaceChooser, SendsWidePixmapsToWaybarOnly)
{
    EXPECT_EQ(chooseFaces(with(HostKind::Waybar)).pixmaps, PixmapStyle::WideText);
    for (const HostKind host :
         {HostKind::Plasma, HostKind::Lxqt, HostKind::Swaybar, HostKind::Xfce, HostKind::Unknown}) {
        EXPECT_EQ(chooseFaces(with(host)).pixmaps, PixmapStyle::ShortText);
    }
}

TEST(FaceChooser, DocksAWideWindowBesideTheXfceItem)
{
    const Faces faces = chooseFaces(with(HostKind::Xfce, true));
    EXPECT_TRUE(faces.notifier);
    EXPECT_TRUE(faces.tray);
    EXPECT_FALSE(faces.strip);
    EXPECT_FALSE(chooseFaces(with(HostKind::Xfce, false)).tray);
}

TEST(FaceChooser, UsesTheTrayOnlyWhereNoWatcherServes)
{
    EXPECT_EQ(chooseFaces(with(HostKind::None, true)).tray, true);
    EXPECT_EQ(chooseFaces(with(HostKind::None, true)).strip, false);
    EXPECT_EQ(chooseFaces(with(HostKind::Lxqt, true)).tray, false);
}

TEST(FaceChooser, FallsBackToTheStrip)
{
    const Faces faces = chooseFaces(with(HostKind::None));
    EXPECT_TRUE(faces.strip);
    EXPECT_FALSE(faces.notifier);
}

TEST(FaceChooser, ShowsTheStripAloneWhenAsked)
{
    Surroundings around = with(HostKind::Mate, true);
    around.how = TitleOnPanel::Strip;
    const Faces faces = chooseFaces(around);
    EXPECT_TRUE(faces.strip);
    EXPECT_FALSE(faces.notifier);
    EXPECT_FALSE(faces.tray);
}

TEST(FaceChooser, ShowsNoTextWhenAnIconIsAskedFor)
{
    for (const HostKind host :
         {HostKind::Mate, HostKind::Waybar, HostKind::Xfce, HostKind::Plasma}) {
        Surroundings around = with(host, true);
        around.how = TitleOnPanel::Icon;
        const Faces faces = chooseFaces(around);
        EXPECT_TRUE(faces.notifier);
        EXPECT_FALSE(faces.label);
        EXPECT_FALSE(faces.tray);
        EXPECT_EQ(faces.pixmaps, PixmapStyle::Icon);
    }
}

TEST(FaceChooser, ShowsTheIconWhileThereIsNoTitle)
{
    for (const HostKind host :
         {HostKind::Gnome, HostKind::Waybar, HostKind::Xfce, HostKind::Swaybar}) {
        Surroundings around = with(host, true);
        around.hasTitle = false;
        const Faces faces = chooseFaces(around);
        EXPECT_FALSE(faces.label);
        EXPECT_FALSE(faces.tray);
        EXPECT_EQ(faces.pixmaps, PixmapStyle::Icon);
    }
}

TEST(FaceChooser, TriesWidePixmapsOnUnknownHostsWhenTextIsAskedFor)
{
    Surroundings around = with(HostKind::Unknown);
    around.how = TitleOnPanel::Text;
    EXPECT_EQ(chooseFaces(around).pixmaps, PixmapStyle::WideText);
}

TEST(ClickAnswer, FollowsTheCaller)
{
    EXPECT_EQ(clickAnswerFor(QStringLiteral("plasmashell"), true), ClickAnswer::Refuse);
    EXPECT_EQ(clickAnswerFor(QStringLiteral("gnome-shell"), true), ClickAnswer::Ignore);
    EXPECT_EQ(clickAnswerFor(QStringLiteral("lxqt-panel"), true), ClickAnswer::OpenMenu);
    EXPECT_EQ(clickAnswerFor(QString(), true), ClickAnswer::OpenMenu);
    EXPECT_EQ(clickAnswerFor(QStringLiteral("lxqt-panel"), false), ClickAnswer::Ignore);
    EXPECT_EQ(clickAnswerFor(QStringLiteral("plasmashell"), false), ClickAnswer::Refuse);
}

} // namespace
} // namespace pulsebar
