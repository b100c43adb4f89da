#include "statusitem/MenuPopup.h"

#include "statusitem/ItemDrawing.h"

#include <QActionGroup>
#include <QApplication>
#include <QGuiApplication>
#include <QProxyStyle>
#include <QScreen>
#include <QWidgetAction>

#include <utility>

namespace pulsebar {

namespace {

/// A title that the menu shows letter by letter: `&` would mark a shortcut, a tab begin a key's
/// name.
QString literalTitle(const MenuItem &item)
{
    return item.shownTitle().replace(u'&', QStringLiteral("&&")).replace(u'\t', u' ');
}

void setState(QAction &action, const MenuItem &item, QMenu &menu)
{
    if (item.state == ItemState::Off && !item.exclusive) {
        return;
    }
    action.setCheckable(true);
    if (item.exclusive) {
        auto *alone = new QActionGroup(&menu);
        alone->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
        action.setActionGroup(alone);
    }
    action.setChecked(item.state != ItemState::Off);
}

/// The desktop's style, but for two habits of menus that do not fit this one.
class PopupStyle : public QProxyStyle
{
public:
    PopupStyle()
        : QProxyStyle(QApplication::style()->name())
    {
    }

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *result) const override
    {
        switch (hint) {
        case SH_Menu_Scrollable:
            // Rows that lie side by side in several columns are not read in their order.
            return 1;
        case SH_MenuBar_AltKeyNavigation:
            // Alt is held to choose a row differently, not to leave the menu.
            return 0;
        default:
            return QProxyStyle::styleHint(hint, option, widget, result);
        }
    }
};

QStyle *popupStyle()
{
    // A widget does not own its style, and menus of several openings may live at a time.
    static QPointer<PopupStyle> style;
    if (!style) {
        style = new PopupStyle;
        style->setParent(qApp);
    }
    return style;
}

bool addView(QMenu &menu, const Menu &rows, const MenuItem &item, const MenuChoice &choose,
             const MenuViewFactory &viewFactory)
{
    if (!viewFactory || item.view.isEmpty()) {
        return false;
    }
    const auto chosen = [choose, rows](const MenuItem &changed) { choose(rows, changed); };
    QWidget *view = viewFactory(item, chosen, &menu);
    if (!view) {
        return false;
    }
    auto *action = new QWidgetAction(&menu);
    action->setText(literalTitle(item.withoutView()));
    action->setDefaultWidget(view);
    menu.addAction(action);
    return true;
}

void addRows(QMenu &menu, const Menu &rows, const MenuChoice &choose,
             const MenuViewFactory &viewFactory);

void addRow(QMenu &menu, const Menu &rows, const MenuItem &given, const MenuChoice &choose,
            const MenuViewFactory &viewFactory)
{
    if (given.separator) {
        menu.addSeparator();
        return;
    }
    if (addView(menu, rows, given, choose, viewFactory)) {
        return;
    }
    const MenuItem &item = given.withoutView();
    QAction *action = menu.addAction(literalTitle(item));
    action->setEnabled(item.enabled);
    if (!item.image.isEmpty()) {
        action->setIcon(iconNamed(item.image));
        action->setIconVisibleInMenu(true);
    }
    setState(*action, item, menu);
    if (item.submenu) {
        auto *submenu = new QMenu(&menu);
        addRows(*submenu, *item.submenu, choose, viewFactory);
        action->setMenu(submenu);
    } else {
        QObject::connect(action, &QAction::triggered, action,
                         [choose, rows, item] { choose(rows, item); });
    }
}

void addRows(QMenu &menu, const Menu &rows, const MenuChoice &choose,
             const MenuViewFactory &viewFactory)
{
    menu.setStyle(popupStyle());
    menu.setSeparatorsCollapsible(false);
    for (const MenuItem &item : rows.items()) {
        addRow(menu, rows, item, choose, viewFactory);
    }
}

} // namespace

std::unique_ptr<QMenu> renderMenu(const Menu &menu, const MenuChoice &choose,
                                  const MenuViewFactory &viewFactory)
{
    auto rendered = std::make_unique<QMenu>();
    addRows(*rendered, menu, choose, viewFactory);
    return rendered;
}

MenuPopup::MenuPopup(const MenuSource &source, MenuViewFactory viewFactory, QObject *parent)
    : QObject(parent)
    , m_source(source)
    , m_viewFactory(std::move(viewFactory))
{
}

MenuPopup::~MenuPopup() = default;

bool MenuPopup::build()
{
    if (m_menu && m_menu->isVisible()) {
        m_menu->hide();
    }
    const auto choose = [this](const Menu &menu, const MenuItem &item) {
        m_source.perform(menu, item, QGuiApplication::keyboardModifiers());
    };
    // Later: the old menu may be in the middle of telling about a choice.
    if (QMenu *old = m_menu.release()) {
        old->deleteLater();
    }
    m_menu = renderMenu(m_source.build(), choose, m_viewFactory);
    // An idle program keeps no menu.
    connect(
        m_menu.get(), &QMenu::aboutToHide, this,
        [this, shown = m_menu.get()] {
            if (m_menu.get() == shown) {
                m_menu.release()->deleteLater();
            }
        },
        Qt::QueuedConnection);
    return !m_menu->isEmpty();
}

void MenuPopup::openAt(QPoint place)
{
    if (build()) {
        m_menu->popup(place);
        Q_EMIT opened();
    }
}

void MenuPopup::openBeside(const QRect &item)
{
    if (!build()) {
        return;
    }
    const QScreen *screen = QGuiApplication::screenAt(item.center());
    const bool above = screen && item.center().y() > screen->geometry().center().y();
    const int top = above ? item.top() - m_menu->sizeHint().height() : item.bottom() + 1;
    m_menu->popup({item.left(), top});
    Q_EMIT opened();
}

} // namespace pulsebar
