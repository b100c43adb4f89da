#include "menu/Menu.h"

#include "platform/Processes.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace pulsebar {

namespace {

auto plainParts(const MenuItem &item)
{
    return std::tie(item.title, item.action, item.target, item.tag, item.state, item.exclusive,
                    item.enabled, item.separator, item.indentation, item.image, item.view,
                    item.representedObject);
}

bool sameProcess(const std::shared_ptr<HeldProcess> &one, const std::shared_ptr<HeldProcess> &other)
{
    if (one == other) {
        return true;
    }
    return one && other && one->pid() == other->pid() && one->startTime() == other->startTime();
}

bool sameSubstitute(const std::shared_ptr<const MenuItem> &one,
                    const std::shared_ptr<const MenuItem> &other)
{
    if (one == other) {
        return true;
    }
    return one && other && sameItem(*one, *other);
}

bool sameSubmenu(const std::shared_ptr<const Menu> &one, const std::shared_ptr<const Menu> &other)
{
    if (one == other) {
        return true;
    }
    return one && other && sameMenu(*one, *other);
}

constexpr int kDeepestIndentation = 40;
/// Longer than any title of the program's own, short enough for a panel to lay out and for most
/// screens to hold.
constexpr qsizetype kLongestShownTitle = 160;

void cutToShown(QString &text)
{
    if (text.size() <= kLongestShownTitle) {
        return;
    }
    const bool halfCharacter = text[kLongestShownTitle - 2].isHighSurrogate();
    text.truncate(kLongestShownTitle - (halfCharacter ? 2 : 1));
    text += u'\u2026';
}

QChar shownCharacter(QChar c)
{
    switch (c.unicode()) {
    case u'\0':
        return QChar::ReplacementCharacter;
    case u'\n':
    case u'\v':
    case u'\f':
    case u'\r':
    case u'\u0085':
    case u'\u2028':
    case u'\u2029':
        return u' ';
    default:
        return c;
    }
}

} // namespace

MenuItem MenuItem::separatorItem()
{
    MenuItem item;
    item.separator = true;
    return item;
}

QString MenuItem::shownTitle() const
{
    QString text = QString(std::clamp(indentation, 0, kDeepestIndentation), u' ') + title;
    cutToShown(text);
    std::transform(text.cbegin(), text.cend(), text.begin(), shownCharacter);
    return text;
}

bool sameItem(const MenuItem &one, const MenuItem &other)
{
    return plainParts(one) == plainParts(other) && sameProcess(one.process, other.process) &&
           sameSubstitute(one.substitute, other.substitute) &&
           sameSubmenu(one.submenu, other.submenu);
}

bool sameMenu(const Menu &one, const Menu &other)
{
    return one.title() == other.title() &&
           std::equal(one.items().begin(), one.items().end(), other.items().begin(),
                      other.items().end(), sameItem);
}

Menu::Menu(QString title)
    : m_title(std::move(title))
{
}

void Menu::addItem(MenuItem item)
{
    m_items.append(std::move(item));
}

void Menu::removeAllItems()
{
    m_items.clear();
}

MenuItem &Menu::addItemWithTitle(const QString &title, ItemTarget target, const QString &action)
{
    MenuItem item;
    item.title = title;
    item.target = target;
    item.action = action;
    m_items.append(std::move(item));
    return m_items.last();
}

MenuItem &Menu::addDummyItemWithTitle(const QString &title, ItemTarget target)
{
    return addItemWithTitle(title, target, QStringLiteral("dummy"));
}

void Menu::setStateToAllItem(ItemState state)
{
    for (MenuItem &item : m_items) {
        item.state = state;
    }
}

void Menu::addItemsFromMenu(Menu &other)
{
    m_items += std::exchange(other.m_items, {});
}

std::shared_ptr<Menu> Menu::menuForSharingItems(const QVariantList & /*items*/,
                                                ItemTarget /*target*/, const QString & /*action*/)
{
    return nullptr;
}

} // namespace pulsebar
