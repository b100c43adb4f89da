#pragma once

#include <QColor>
#include <QPointer>
#include <QPushButton>

class QColorDialog;

namespace pulsebar {

/// A button that shows a colour, over a checkerboard where it is translucent, and lets the user
/// choose another one. The colour follows every movement in the dialog; there is no way back.
class ColorButton : public QPushButton
{
    Q_OBJECT

public:
    /// @param name what the colour is for; the title of its dialog, and read by screen readers
    explicit ColorButton(const QString &name, QWidget *parent = nullptr);

    QColor color() const { return m_color; }
    /// Shows a colour, in an open dialog too; nobody is told of it.
    void setColor(const QColor &color);
    void closeDialog();

Q_SIGNALS:
    /// The user chose another colour.
    void colorChosen(const QColor &color);

protected:
    void changeEvent(QEvent *event) override;

private:
    void openDialog();
    void choose(const QColor &color);
    void showColor();

    QString m_name;
    QColor m_color;
    QPointer<QColorDialog> m_dialog;
};

} // namespace pulsebar
