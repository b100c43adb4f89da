#include "controller/LoginItem.h"

#include "platform/LoginItems.h"

#include <QUrl>
#include <QVariantMap>

namespace pulsebar {

namespace {

const QString kPath = QStringLiteral("Path");
const QString kHide = QStringLiteral("Hide");
const QString kObsoleteSibling = QStringLiteral("/Contents/MacOS/NoteSentinel.app");

/// As entries spell it: a folder's path has no slash at its end.
QString normalisedPath(const QString &path)
{
    return QUrl::fromLocalFile(path).adjusted(QUrl::StripTrailingSlash).toLocalFile();
}

/// Absent for an item that is not an entry.
std::optional<QString> pathOf(const QVariant &item)
{
    if (item.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    const QVariant path = item.toMap().value(kPath);
    if (path.typeId() != QMetaType::QString)
        return std::nullopt;
    return path.toString();
}

struct Found
{
    qsizetype ours = -1;              ///< index of our entry
    std::optional<QVariant> obsolete; ///< the last obsolete entry before it
};

Found findEntries(const QVariantList &items, const QString &path)
{
    Found found;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const std::optional<QString> itsPath = pathOf(items[i]);
        if (!itsPath)
            continue;
        if (*itsPath == path) {
            found.ours = i;
            break;
        }
        if (itsPath->contains(kObsoleteSibling))
            found.obsolete = items[i];
    }
    return found;
}

} // namespace

std::optional<QVariantList> loginItemsAfterChange(const std::optional<QVariantList> &items,
                                                  bool enable, const QString &path)
{
    if (!items || path.isEmpty())
        return std::nullopt;
    const QString ourPath = normalisedPath(path);
    const Found found = findEntries(*items, ourPath);
    const bool there = found.ours >= 0;
    if (there == enable && !found.obsolete)
        return std::nullopt;
    QVariantList changed = *items;
    if (there && !enable)
        changed.removeAt(found.ours);
    else if (!there && enable)
        changed += QVariantMap{{kHide, false}, {kPath, ourPath}};
    if (found.obsolete)
        changed.removeAll(*found.obsolete);
    return changed;
}

void ChangeOurApplicationsLoginSetting(LoginItems &list, bool enable, const QString &path)
{
    if (path.isEmpty())
        return;
    const std::optional<QVariantList> changed =
        loginItemsAfterChange(list.items(normalisedPath(path)), enable, path);
    if (changed)
        list.setItems(*changed);
}

} // namespace pulsebar
