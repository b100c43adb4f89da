#pragma once

#include "graph/GraphPicture.h"

#include <QAbstractButton>

namespace pulsebar {

/// A button of a graph window. It takes events, the focus and the names that screen readers speak;
/// what it looks like is painted with everything else in the window.
class GraphWindowButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit GraphWindowButton(const QString &name, QWidget *parent);

    /// While it is not offered it is seen only when the keyboard has come to it.
    void setOffered(bool offered);
    bool isOffered() const { return m_offered; }

    GraphButtonLook look() const;
    bool showsFocus() const { return hasFocus(); }

Q_SIGNALS:
    /// look() or showsFocus() may be another.
    void lookChanged();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_offered = false;
};

} // namespace pulsebar
