#pragma once

#include "engine/UsageCache.h"
#include "graph/GraphViewSetting.h"

#include <QRectF>

#include <functional>
#include <optional>

class QImage;

namespace pulsebar {

/// The history of one series as a single line over a plain background: no text, no grid, no axes.
/// Not a widget: the window draws it into its picture.
class GraphView
{
public:
    virtual ~GraphView() = default;

    /// @param viewSetting colours; must outlive the view
    void setViewSetting(const GraphViewSetting *viewSetting) { m_viewSetting = viewSetting; }
    const GraphViewSetting *viewSetting() const { return m_viewSetting; }
    /// Told when the view has to be drawn anew because it has other samples. Whoever changes a
    /// colour tells that himself.
    void setNeedsDisplay(std::function<void()> listener) { m_needsDisplay = std::move(listener); }

    /// Shares the array, oldest sample first, and has the whole view drawn anew.
    void setUsageCacheArray(const UsageCache &array);
    const UsageCache &usageCacheArray() const { return m_usageCacheArray; }

    /// Draws the background, and over it the line when there are at least 5 samples.
    /// @param image premultiplied ARGB; its devicePixelRatio is how many of its pixels are a point
    /// @param rect what to draw, in points from the image's top left corner; the whole view
    void drawRect(QImage &image, const QRectF &rect) const;

    /// The sample that is drawn nearest to a place: how many have come since, 0 for the newest.
    /// Absent where no line is drawn, and for series of which single samples are not asked about.
    /// @param x in points from the left edge
    /// @param width of the whole view
    std::optional<std::size_t> sampleAt(double x, double width) const;

protected:
    /// Draws the line; the base draws none.
    virtual void drawGraphInRect(QImage &image, const QRectF &rect) const;
    /// The index of a sample; the base knows none.
    virtual std::optional<qsizetype> indexAt(double x, double width) const;

private:
    UsageCache m_usageCacheArray;
    const GraphViewSetting *m_viewSetting = nullptr;
    std::function<void()> m_needsDisplay;
};

/// Every series but network traffic. Samples that are not numbers are left out.
class CPUGraphView : public GraphView
{
protected:
    void drawGraphInRect(QImage &image, const QRectF &rect) const override;
    std::optional<qsizetype> indexAt(double x, double width) const override;
};

/// Network traffic, in or out: a quiet line stays low. Every sample is drawn; where one is not a
/// number the line is interrupted.
class NetworkGraphView : public GraphView
{
protected:
    void drawGraphInRect(QImage &image, const QRectF &rect) const override;
};

} // namespace pulsebar
