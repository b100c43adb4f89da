#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPoint>
#include <QString>

namespace pulsebar {

/// One line of text with a halo that sets it off from whatever it lies on. Kept drawn.
class HaloText
{
public:
    /// What decides how it looks.
    struct Content
    {
        QString text;
        QFont font;
        QColor color;
        double scale = 1.0; ///< pixels in a point

        bool operator==(const Content &) const = default;
    };

    /// @param room in points; a text that is wider is cut, with an ellipsis
    void draw(const Content &content, double room);

    /// Without the halo, in points; 0 when there is nothing to see.
    double width() const { return m_width; }
    /// Lays the text over an image of premultiplied pixels.
    /// @param topLeft of the line of text, in pixels; the halo reaches beyond it
    void showOn(QImage &image, QPoint topLeft) const;

private:
    void scaleFont();
    void layOut();

    Content m_content;
    QFont m_scaledFont; ///< the content's, in pixels
    double m_fontAscent = 0.0;
    double m_room = -1.0;
    double m_width = 0.0;
    QImage m_image;
    QPoint m_offset; ///< from the image's corner to the text's, in pixels
};

/// The height of a line of text in points.
double lineHeight(const QFont &font);

} // namespace pulsebar
