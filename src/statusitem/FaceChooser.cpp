#include "statusitem/FaceChooser.h"

#include <array>
#include <utility>

namespace pulsebar {

namespace {

using KnownHost = std::pair<QLatin1String, HostKind>;

// Beginnings of program names: versions and suffixes follow ("kded5", "kded6").
constexpr std::array knownHosts{
    KnownHost{QLatin1String("gnome-shell"), HostKind::Gnome},
    KnownHost{QLatin1String("notification-area-applet"), HostKind::Mate},
    KnownHost{QLatin1String("mate-panel"), HostKind::Mate},
    KnownHost{QLatin1String("ayatana-indicator-application"), HostKind::AyatanaIndicators},
    KnownHost{QLatin1String("indicator-application"), HostKind::AyatanaIndicators},
    KnownHost{QLatin1String("waybar"), HostKind::Waybar},
    KnownHost{QLatin1String("wrapper-"), HostKind::Xfce},
    KnownHost{QLatin1String("xfce4-panel"), HostKind::Xfce},
    KnownHost{QLatin1String("kded"), HostKind::Plasma},
    KnownHost{QLatin1String("plasmashell"), HostKind::Plasma},
    KnownHost{QLatin1String("lxqt-panel"), HostKind::Lxqt},
    KnownHost{QLatin1String("swaybar"), HostKind::Swaybar},
};

bool drawsLabels(HostKind host)
{
    return host == HostKind::Gnome || host == HostKind::Mate || host == HostKind::AyatanaIndicators;
}

/// MATE draws the label in the icon's place, and in its own colour, but a pixmap as wide as it is.
bool drawsPictureInPixmapOnly(const Surroundings &around)
{
    return around.host == HostKind::Mate && (around.hasPicture || around.attention);
}

PixmapStyle pixmapStyleFor(const Surroundings &around)
{
    if (!around.hasTitle || around.how == TitleOnPanel::Icon) {
        return PixmapStyle::Icon;
    }
    if (drawsPictureInPixmapOnly(around)) {
        return PixmapStyle::WideOnly;
    }
    if (drawsLabels(around.host)) {
        return PixmapStyle::Icon;
    }
    const bool wide = around.host == HostKind::Waybar ||
                      (around.host == HostKind::Unknown && around.how == TitleOnPanel::Text);
    return wide ? PixmapStyle::WideText : PixmapStyle::ShortText;
}

} // namespace

HostKind hostKindOf(const QString &programName)
{
    for (const auto &[beginning, kind] : knownHosts) {
        if (programName.startsWith(beginning)) {
            return kind;
        }
    }
    return HostKind::Unknown;
}

bool keepsLabels(HostKind host)
{
    return host == HostKind::Mate;
}

Faces chooseFaces(const Surroundings &around)
{
    Faces faces;
    if (around.how == TitleOnPanel::Strip) {
        faces.strip = true;
        return faces;
    }
    faces.pixmaps = pixmapStyleFor(around);
    const bool textShown = around.hasTitle && around.how != TitleOnPanel::Icon;
    faces.label = textShown && !drawsPictureInPixmapOnly(around);
    faces.iconByName = around.host == HostKind::AyatanaIndicators;
    faces.notifier = around.host != HostKind::None;
    // Here no label is drawn and a pixmap is squeezed, but a docked window keeps its width.
    const bool textOnlyInTray = around.host == HostKind::Xfce && textShown;
    faces.tray = around.tray && (!faces.notifier || textOnlyInTray);
    faces.strip = !faces.notifier && !faces.tray;
    return faces;
}

ClickAnswer clickAnswerFor(const QString &callerProgramName, bool ownWindows)
{
    if (callerProgramName == u"plasmashell") {
        return ClickAnswer::Refuse;
    }
    if (callerProgramName == u"gnome-shell" || !ownWindows) {
        return ClickAnswer::Ignore;
    }
    return ClickAnswer::OpenMenu;
}

} // namespace pulsebar
