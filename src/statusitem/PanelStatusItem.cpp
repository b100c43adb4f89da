#include "statusitem/PanelStatusItem.h"

#include "statusitem/DesktopShade.h"
#include "statusitem/FaceChooser.h"
#include "statusitem/IconFile.h"
#include "statusitem/ItemContent.h"
#include "statusitem/MenuPopup.h"
#include "statusitem/MenuSource.h"
#include "statusitem/StatusNotifierFace.h"
#include "statusitem/StripFace.h"
#include "statusitem/TrayFace.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QTimer>

#include <utility>

namespace pulsebar {

namespace {

Q_LOGGING_CATEGORY(log, "pulsebar.panel", QtInfoMsg)

/// Panels of these hosts are dark, as they come, whatever the desktop's windows are.
bool hasDarkPanel(HostKind host)
{
    return host == HostKind::Gnome || host == HostKind::Waybar || host == HostKind::Swaybar ||
           host == HostKind::Lxqt;
}

} // namespace

class PanelStatusItem::Private : public QObject
{
public:
    Private(PanelStatusItem &item, PanelSurroundings given);

    void changeLater();
    void setMenuDelegate(MenuDelegate *delegate);
    void openMenu();

    ItemContent content;
    TitleOnPanel how = TitleOnPanel::Automatic;
    MenuSource source;

private:
    void showNow();
    void notePicture();
    Faces facesNow() const;
    ItemContent shownContent() const;
    void showNotifier(const Faces &faces);
    bool stripIsDue(const Faces &faces);
    void showStrip(bool shown);

    PanelSurroundings m_around;
    DesktopShade m_shade;
    StatusNotifierFace m_notifier;
    TrayFace m_tray;
    std::unique_ptr<StripFace> m_strip;
    MenuPopup m_popup;
    IconFile m_iconFile;
    bool m_changing = false;
    /// The guide of the titles among which a picture was last looked for, and whether there is one.
    QString m_picturedGuide;
    bool m_pictured = false;
    QTimer m_stripDelay;
    bool m_servedByNobody = false;
};

PanelStatusItem::Private::Private(PanelStatusItem &item, PanelSurroundings given)
    : m_around(std::move(given))
    , m_notifier(source, m_around.processNames)
    , m_tray(m_around.trayDock)
    , m_popup(source, m_around.menuView)
{
    m_stripDelay.setSingleShot(true);
    m_stripDelay.setInterval(m_around.stripDelay);
    connect(&m_stripDelay, &QTimer::timeout, this, [this] {
        m_servedByNobody = true;
        showNow();
    });
    connect(&m_shade, &DesktopShade::changed, this, &Private::changeLater);
    connect(&m_notifier, &StatusNotifierFace::hostChanged, this, &Private::changeLater);
    connect(&m_notifier, &StatusNotifierFace::menuRequested, this,
            [this] { m_popup.openAt(QCursor::pos()); });
    connect(&m_notifier, &StatusNotifierFace::menuOpened, &item, &StatusItem::menuOpened);
    connect(&m_popup, &MenuPopup::opened, &item, &StatusItem::menuOpened);
    connect(&m_tray, &TrayFace::trayChanged, this, &Private::changeLater);
    connect(&m_tray, &TrayFace::dockedChanged, this, &Private::changeLater);
    connect(&m_tray, &TrayFace::clicked, this, [this] { m_popup.openBeside(m_tray.geometry()); });
}

void PanelStatusItem::Private::changeLater()
{
    if (!std::exchange(m_changing, true)) {
        QMetaObject::invokeMethod(
            this, [this] { showNow(); }, Qt::QueuedConnection);
    }
}

void PanelStatusItem::Private::setMenuDelegate(MenuDelegate *delegate)
{
    source.setDelegate(delegate);
    m_notifier.menuReplaced();
}

/// A rotation shows a picture now and then. How it is shown stays the same as long as the same
/// titles are chosen, which is as long as their guide is the same.
void PanelStatusItem::Private::notePicture()
{
    if (std::exchange(m_picturedGuide, content.guide) != content.guide) {
        m_pictured = false;
    }
    m_pictured = m_pictured || (!content.title.isEmpty() && !content.image.isEmpty());
}

Faces PanelStatusItem::Private::facesNow() const
{
    Surroundings around;
    around.host = m_notifier.host();
    around.tray = m_tray.trayAvailable();
    around.how = how;
    around.hasTitle = !content.title.isEmpty();
    around.hasPicture = m_pictured;
    around.attention = content.attention;
    return chooseFaces(around);
}

ItemContent PanelStatusItem::Private::shownContent() const
{
    ItemContent shown = content;
    shown.roomForImage = m_pictured;
    if (how == TitleOnPanel::Icon) {
        shown.title.clear();
        shown.guide.clear();
        shown.length = 0;
        shown.roomForImage = false;
    }
    return shown;
}

void PanelStatusItem::Private::showNow()
{
    m_changing = false;
    if (!m_notifier.settled()) {
        return;
    }
    notePicture();
    const Faces faces = facesNow();
    if (faces.tray) {
        m_tray.show(shownContent(), m_shade.dark());
    } else {
        m_tray.hide();
    }
    showNotifier(faces);
    showStrip(stripIsDue(faces));
}

/// Wished for, or nothing else serves and has not served for a while.
bool PanelStatusItem::Private::stripIsDue(const Faces &faces)
{
    if (!faces.strip || how == TitleOnPanel::Strip) {
        m_stripDelay.stop();
        m_servedByNobody = false;
        return faces.strip;
    }
    const bool due = m_strip || m_servedByNobody;
    if (!due && !m_stripDelay.isActive()) {
        m_stripDelay.start();
    }
    return due;
}

void PanelStatusItem::Private::showNotifier(const Faces &faces)
{
    const bool dark = hasDarkPanel(m_notifier.host()) || m_shade.dark();
    NotifierState state;
    state.title = content.title.isEmpty() ? QStringLiteral("Pulsebar") : content.title;
    if (faces.label) {
        state.label = content.title;
        state.labelGuide = content.guide.isEmpty() ? content.title : content.guide;
    }
    if (faces.iconByName) {
        state.iconName = content.attention ? m_iconFile.attentionName(dark)
                                           : m_iconFile.nameFor(content.image, dark);
    }
    ItemContent pictured = content;
    pictured.roomForImage = m_pictured;
    state.pixmaps = pixmapContentOf(pictured, faces.pixmaps, dark);
    state.attention = content.attention;
    state.passive = faces.tray && m_tray.showsWholeTitle();
    m_notifier.setState(state);
    // Without a watcher the item stays on the bus for scripts and for a watcher to come.
    m_notifier.setOffered(how != TitleOnPanel::Strip);
}

void PanelStatusItem::Private::showStrip(bool shown)
{
    if (!shown) {
        m_strip.reset();
        return;
    }
    if (!m_strip) {
        qCDebug(log) << "the title is shown in a strip";
        m_strip = std::make_unique<StripFace>(m_around.stripPlace, m_around.windowHints);
        connect(m_strip.get(), &StripFace::clicked, this,
                [this] { m_popup.openBeside(m_strip->geometry()); });
    }
    m_strip->setContent(shownContent());
    m_strip->show();
}

void PanelStatusItem::Private::openMenu()
{
    if (m_strip) {
        m_popup.openBeside(m_strip->geometry());
    } else if (m_tray.docked()) {
        m_popup.openBeside(m_tray.geometry());
    } else {
        m_popup.openAt(QCursor::pos());
    }
}

PanelStatusItem::PanelStatusItem(PanelSurroundings surroundings, QObject *parent)
    : StatusItem(parent)
    , d(std::make_unique<Private>(*this, std::move(surroundings)))
{
}

PanelStatusItem::~PanelStatusItem() = default;

QString PanelStatusItem::programImage()
{
    return QStringLiteral("org.pulsebar.Pulsebar-symbolic");
}

QString PanelStatusItem::title() const
{
    return d->content.title;
}

void PanelStatusItem::setTitle(const QString &title)
{
    if (d->content.title == title) {
        return;
    }
    d->content.title = title;
    d->changeLater();
    Q_EMIT titleChanged(title);
}

void PanelStatusItem::setTitleGuide(const QString &guide)
{
    if (d->content.guide != guide) {
        d->content.guide = guide;
        d->changeLater();
    }
}

void PanelStatusItem::setImage(const QString &image)
{
    if (d->content.image != image) {
        d->content.image = image;
        d->changeLater();
    }
}

QString PanelStatusItem::image() const
{
    return d->content.image;
}

double PanelStatusItem::length() const
{
    return d->content.length;
}

void PanelStatusItem::setLength(double length)
{
    if (d->content.length == length) {
        return;
    }
    d->content.length = length;
    d->changeLater();
    Q_EMIT lengthChanged(length);
}

void PanelStatusItem::setTitleOnPanel(TitleOnPanel how)
{
    if (d->how != how) {
        d->how = how;
        d->changeLater();
    }
}

void PanelStatusItem::setNeedsAttention(bool needed)
{
    if (d->content.attention != needed) {
        d->content.attention = needed;
        d->changeLater();
    }
}

void PanelStatusItem::setMenuDelegate(MenuDelegate *delegate)
{
    d->setMenuDelegate(delegate);
}

bool PanelStatusItem::hasMenu() const
{
    return d->source.hasDelegate();
}

void PanelStatusItem::openMenu()
{
    d->openMenu();
}

} // namespace pulsebar
