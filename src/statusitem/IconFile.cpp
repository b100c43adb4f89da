#include "statusitem/IconFile.h"

#include "statusitem/ItemDrawing.h"
#include "statusitem/PanelStatusItem.h"

#include <QFile>
#include <QIcon>

namespace pulsebar {

namespace {

/// As large as an icon in a high panel; smaller ones are made from it.
constexpr int extent = 48;

QString folderTemplate()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return runtime.isEmpty() ? QString() : runtime + QStringLiteral("/pulsebar-XXXXXX");
}

} // namespace

QString IconFile::nameFor(const QString &image, bool dark)
{
    if (image.startsWith(u'/')) {
        return image;
    }
    const QString wanted = image.isEmpty() ? PanelStatusItem::programImage() : image;
    return QIcon::hasThemeIcon(wanted) ? wanted : draw({wanted, dark});
}

QString IconFile::attentionName(bool dark)
{
    return draw({{}, dark, true});
}

QString IconFile::draw(const Drawn &wanted)
{
    if (m_drawn == wanted) {
        return m_path;
    }
    if (!m_folder) {
        const QString where = folderTemplate();
        m_folder = where.isEmpty() ? std::make_unique<QTemporaryDir>()
                                   : std::make_unique<QTemporaryDir>(where);
    }
    if (!m_path.isEmpty()) {
        QFile::remove(m_path);
    }
    m_drawn = wanted;
    m_path = m_folder->filePath(QStringLiteral("%1.png").arg(++m_number));
    const Ink ink = wanted.attention ? attentionInkOnPanel(wanted.dark) : inkOnPanel(wanted.dark);
    drawIcon(ItemContent{{}, {}, wanted.image}, extent, ink).save(m_path);
    return m_path;
}

} // namespace pulsebar
