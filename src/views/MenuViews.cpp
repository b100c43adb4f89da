#include "views/MenuViews.h"

#include "views/DetailText.h"
#include "views/WidthSliderView.h"

namespace pulsebar {

namespace {

QWidget *makeWidthSlider(const MenuItem &item, const std::function<void(const MenuItem &)> &choose,
                         QWidget *parent)
{
    const auto moved = [item, choose](int width) {
        MenuItem chosen = item;
        chosen.action = QStringLiteral("setItemWidth");
        chosen.tag = width;
        choose(chosen);
    };
    return new WidthSliderView(item.tag, moved, parent);
}

QWidget *makeDetailText(const MenuItem &item, QWidget *parent)
{
    auto *text = new DetailText(parent);
    text->setReport(item.representedObject.toString());
    text->setFixedSize(DetailText::kWidth, DetailText::kHeight);
    // A second menu over the first would be in the way of leaving it.
    text->setContextMenuPolicy(Qt::NoContextMenu);
    return text;
}

} // namespace

QWidget *makeMenuView(const MenuItem &item, const std::function<void(const MenuItem &)> &choose,
                      QWidget *parent)
{
    if (item.view == u"widthSlider")
        return makeWidthSlider(item, choose, parent);
    if (item.view == u"detailText")
        return makeDetailText(item, parent);
    return nullptr;
}

} // namespace pulsebar
