#include "platform/linux_/desktop/CoveredArea.h"

#include <utility>
#include <vector>

namespace pulsebar {

namespace {

/// Of what is left. Windows of ordinary shapes leave a few dozen.
constexpr std::size_t mostPieces = 512;

/// Appends what is left of a rectangle beside another one: at most four rectangles.
void appendRest(const QRect &rect, const QRect &cover, std::vector<QRect> &rest)
{
    const QRect common = rect & cover;
    if (common.isEmpty()) {
        rest.push_back(rect);
        return;
    }
    const auto append = [&rest](QPoint topLeft, QPoint bottomRight) {
        if (const QRect part(topLeft, bottomRight); !part.isEmpty()) {
            rest.push_back(part);
        }
    };
    append(rect.topLeft(), {rect.right(), common.top() - 1});
    append({rect.left(), common.bottom() + 1}, rect.bottomRight());
    append({rect.left(), common.top()}, {common.left() - 1, common.bottom()});
    append({common.right() + 1, common.top()}, {rect.right(), common.bottom()});
}

} // namespace

bool isHiddenBy(const QRect &rect, std::span<const QRect> above)
{
    std::vector<QRect> visible{rect};
    for (const QRect &cover : above) {
        std::vector<QRect> rest;
        for (const QRect &part : visible) {
            appendRest(part, cover, rest);
        }
        if (rest.size() > mostPieces) {
            return false;
        }
        visible = std::move(rest);
    }
    return !rect.isEmpty() && visible.empty();
}

} // namespace pulsebar
