#pragma once

#include <QColor>
#include <QHash>
#include <QObject>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <memory>

namespace pulsebar {

/// The appearance, the place and the threshold of one graph window. Window, view, controller and
/// setting panel share one object; whoever depends on a field listens to its signal.
///
/// Rectangles are in screen coordinates that count upward from the bottom of the main screen.
class GraphViewSetting : public QObject
{
    Q_OBJECT
    /// Of the graph's line. Invalid after reading an entry without it, as are the other colours.
    Q_PROPERTY(QColor lineColor MEMBER m_lineColor NOTIFY colorsChanged)
    /// Of the caption and the newest value.
    Q_PROPERTY(QColor characterColor MEMBER m_characterColor NOTIFY colorsChanged)
    Q_PROPERTY(QColor backgroundColor MEMBER m_backgroundColor NOTIFY colorsChanged)
    Q_PROPERTY(float positionX MEMBER m_positionX)
    Q_PROPERTY(float positionY MEMBER m_positionY)
    Q_PROPERTY(float sizeHeight MEMBER m_sizeHeight)
    Q_PROPERTY(float sizeWidth MEMBER m_sizeWidth)
    /// The window's opacity, 0 to 1, while the pointer is over it.
    Q_PROPERTY(float alphaAtPoint MEMBER m_alphaAtPoint NOTIFY alphaAtPointChanged)
    /// The window's opacity otherwise.
    Q_PROPERTY(float alphaWithoutPoint MEMBER m_alphaWithoutPoint NOTIFY alphaWithoutPointChanged)
    /// The window fades out while the value is on the quiet side of the threshold.
    Q_PROPERTY(bool useThreshold MEMBER m_useThreshold NOTIFY useThresholdChanged)
    /// In the unit that the window shows: percent, degrees, RPM; KB per second for network.
    Q_PROPERTY(float threshold MEMBER m_threshold NOTIFY thresholdChanged)
    /// Not 0: below the threshold is the quiet side; 0: above it.
    Q_PROPERTY(int thresholdType MEMBER m_thresholdType NOTIFY thresholdTypeChanged)
    /// Index in the list of screens of the one that the window was last on; -1 = on none of them.
    Q_PROPERTY(int screenNumber MEMBER m_screenNumber)

public:
    /// Sets the defaults.
    explicit GraphViewSetting(QObject *parent = nullptr);

    /// What is stored, in the order in which it is written.
    static QStringList archiveKeys();
    /// The text of a JSON object with the fields of archiveKeys().
    QString encode() const;
    /// Reads such a text. A field that is not there, or null, is zero or empty, not its default;
    /// the colour of the texts and both opacities are set anew, whatever was stored.
    /// @return null when the text is no such object or a field has an impossible value: of another
    ///         type, not finite, out of its type's range, a size that no window can have
    static std::unique_ptr<GraphViewSetting> decode(const QString &text);

    QColor lineColor() const { return m_lineColor; }
    QColor characterColor() const { return m_characterColor; }
    QColor backgroundColor() const { return m_backgroundColor; }
    float alphaAtPoint() const { return m_alphaAtPoint; }
    float alphaWithoutPoint() const { return m_alphaWithoutPoint; }
    bool useThreshold() const { return m_useThreshold; }
    float threshold() const { return m_threshold; }
    int thresholdType() const { return m_thresholdType; }
    int screenNumber() const { return m_screenNumber; }
    void setScreenNumber(int number) { m_screenNumber = number; }

    QRectF windowRect() const;
    void setWindowRect(const QRectF &rect);
    /// The rectangle that was last kept for a screen with this frame; the zero rectangle when none
    /// was. Kept while the program runs, not stored.
    /// @param screenFrame the zero rectangle stands for "on no screen"
    QRectF windowRectForScreen(const QRectF &screenFrame) const;
    void setWindowRectForScreen(const QRectF &rect, const QRectF &screenFrame);

Q_SIGNALS:
    void colorsChanged();
    void alphaAtPointChanged();
    void alphaWithoutPointChanged();
    void useThresholdChanged();
    void thresholdChanged();
    void thresholdTypeChanged();

private:
    QColor m_lineColor{Qt::red};
    QColor m_characterColor{Qt::white};
    QColor m_backgroundColor{Qt::black};
    float m_positionX = 200.0F;
    float m_positionY = 200.0F;
    float m_sizeHeight = 70.0F;
    float m_sizeWidth = 200.0F;
    float m_alphaAtPoint = 1.0F;
    float m_alphaWithoutPoint = 0.55F;
    bool m_useThreshold = false;
    float m_threshold = 0.0F;
    int m_thresholdType = 1;
    int m_screenNumber = 0;
    QHash<QString, QString> m_windowRectDict; ///< rectangle by screen frame, both as text
};

} // namespace pulsebar
