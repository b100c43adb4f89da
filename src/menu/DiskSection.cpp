#include "menu/DiskSection.h"

#include "menu/MenuRows.h"
#include "util/Localisation.h"
#include "util/Sizes.h"

#include <array>
#include <utility>

namespace pulsebar {

namespace {

struct FigurePair
{
    const char *read;
    const char *written;
    const char *label;
    bool isSize = false;
};

// The labels count single figures, not pairs.
constexpr std::array kFigures{
    FigurePair{"IODiskReadBytesPerSec", "IODiskWrittenBytesPerSec", "Disk Menu Label0", true},
    FigurePair{"IODiskReadBytes", "IODiskWrittenBytes", "Disk Menu Label2", true},
    FigurePair{"IODiskReadNumber", "IODiskWrittenNumber", "Disk Menu Label4"},
    FigurePair{"IODiskReadError", "IODiskWrittenError", "Disk Menu Label6"},
    FigurePair{"IODiskReadRetries", "IODiskWrittenRetries", "Disk Menu Label8"},
    FigurePair{"IODiskReadTime", "IODiskWrittenTime", "Disk Menu Label10"},
    FigurePair{"IODiskReadLatent", "IODiskWrittenLatent", "Disk Menu Label12"},
};

constexpr std::array kDriveFigures{"readTimes", "readBytes", "writtenTimes", "writtenBytes"};

/// Empty when the system does not tell.
QString figureText(const QVariantMap &disk, const char *key, bool isSize)
{
    const QVariant value = disk.value(QString::fromLatin1(key));
    const QString text = value.toString();
    return isSize && !text.isEmpty() ? fileSizeString(value) : text;
}

QString orDash(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("\u2013") : text;
}

void addFigures(Menu &menu, const QVariantMap &disk)
{
    for (const FigurePair &pair : kFigures) {
        const QString read = figureText(disk, pair.read, pair.isSize);
        const QString written = figureText(disk, pair.written, pair.isSize);
        if (read.isEmpty() && written.isEmpty())
            continue;
        menu.addDummyItemWithTitle(
            localizedFormat(QString::fromLatin1(pair.label), orDash(read), orDash(written)),
            ItemTarget::Controller);
    }
}

MenuItem diskItem(const QString &title, std::shared_ptr<Menu> submenu)
{
    MenuItem item = actionItem(title, QStringLiteral("dummy"));
    item.submenu = std::move(submenu);
    return item;
}

} // namespace

std::optional<MenuItem> makeOneDiskStatsMenu(const QVariantMap &disk, int index)
{
    const QString title = localizedFormat(QStringLiteral("Disk #%d"), index);
    auto submenu = std::make_shared<Menu>(title);
    submenu->addItemWithTitle(localizedString(QStringLiteral("Disk Read / Write")),
                              ItemTarget::None, {});
    addFigures(*submenu, disk);
    if (submenu->items().size() == 1)
        return std::nullopt;
    return diskItem(title, std::move(submenu));
}

QVector<MenuItem> makeDisksStatsMenu(const QVariantMap &topDict)
{
    QVector<MenuItem> items;
    const QVariantList disks = topDict.value(QStringLiteral("DiskStatistics")).toList();
    for (const QVariant &disk : disks) {
        const int number = int(items.size()) + 1;
        if (std::optional<MenuItem> item = makeOneDiskStatsMenu(disk.toMap(), number))
            items.append(*std::move(item));
    }
    return items;
}

std::optional<MenuItem> makeDiskStatsMenu(const QVariantMap &topDict)
{
    const QVariantMap drives = topDict.value(QStringLiteral("DriveStats")).toMap();
    if (drives.size() != qsizetype(kDriveFigures.size()))
        return std::nullopt;
    const QString title = localizedString(QStringLiteral("Disk Access"));
    auto submenu = std::make_shared<Menu>(title);
    for (const char *key : kDriveFigures) {
        const QString figure = figureText(drives, key, false);
        submenu->addDummyItemWithTitle(localizedFormat(QString::fromLatin1(key), orDash(figure)),
                                       ItemTarget::Controller);
    }
    return diskItem(title, std::move(submenu));
}

} // namespace pulsebar
