#pragma once

#include <QObject>
#include <QWidget>

#include <optional>

class QDBusVariant;

namespace pulsebar {

/// Whether the desktop is dark, so that signs and texts on a panel can be read: what the desktop
/// says over the portal, else what the palette's colours tell.
class DesktopShade : public QObject
{
    Q_OBJECT

public:
    explicit DesktopShade(QObject *parent = nullptr);

    bool dark() const;

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    /// A widget that is never shown is told when the palette changes.
    class PaletteListener : public QWidget
    {
    public:
        explicit PaletteListener(DesktopShade &shade)
            : m_shade(shade)
        {
        }

    protected:
        void changeEvent(QEvent *event) override;

    private:
        DesktopShade &m_shade;
    };

    void askPortal();
    void setScheme(const QVariant &value);

    PaletteListener m_palette;
    /// Nothing while the desktop states no preference.
    std::optional<bool> m_said;
};

} // namespace pulsebar
