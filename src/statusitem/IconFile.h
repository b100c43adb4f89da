#pragma once

#include "statusitem/ItemContent.h"

#include <QTemporaryDir>

#include <memory>
#include <optional>

namespace pulsebar {

/// The item's image for a host that reads no pixmaps, only names of themed icons and paths.
class IconFile
{
public:
    /// A name that every theme of the desktop can find, else the path of a file that shows the
    /// image. A changed picture has a changed path, for hosts keep what they have read.
    QString nameFor(const QString &image, bool dark);
    /// The path of a file that shows the program's sign so that it is noticed.
    QString attentionName(bool dark);

private:
    struct Drawn
    {
        QString image;
        bool dark = false;
        bool attention = false;
        bool operator==(const Drawn &other) const = default;
    };

    QString draw(const Drawn &wanted);

    /// Made when needed, and removed with the program.
    std::unique_ptr<QTemporaryDir> m_folder;
    std::optional<Drawn> m_drawn;
    QString m_path;
    int m_number = 0;
};

} // namespace pulsebar
