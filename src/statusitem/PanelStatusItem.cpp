#include "statusitem/PanelStatusItem.h"

#include "statusitem/ItemContent.h"

#include <utility>

namespace pulsebar {

class PanelStatusItem::Private
{
public:
    explicit Private(PanelSurroundings given)
        : surroundings(std::move(given))
    {
    }

    PanelSurroundings surroundings;
    ItemContent content;
    TitleOnPanel how = TitleOnPanel::Automatic;
    MenuDelegate *delegate = nullptr;
};

PanelStatusItem::PanelStatusItem(PanelSurroundings surroundings, QObject *parent)
    : StatusItem(parent)
    , d(std::make_unique<Private>(std::move(surroundings)))
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
    Q_EMIT titleChanged(title);
}

void PanelStatusItem::setTitleGuide(const QString &guide)
{
    d->content.guide = guide;
}

void PanelStatusItem::setImage(const QString &image)
{
    d->content.image = image;
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
    Q_EMIT lengthChanged(length);
}

void PanelStatusItem::setTitleOnPanel(TitleOnPanel how)
{
    d->how = how;
}

void PanelStatusItem::setMenuDelegate(MenuDelegate *delegate)
{
    d->delegate = delegate;
}

bool PanelStatusItem::hasMenu() const
{
    return d->delegate != nullptr;
}

void PanelStatusItem::openMenu() {}

} // namespace pulsebar
