#pragma once

#include <QPlainTextEdit>

namespace pulsebar {

/// A report as it came, to be read, scrolled, selected and copied. 630 by 361 unless its place
/// stretches it.
class DetailText : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit DetailText(QWidget *parent = nullptr);

    /// Shows another report. What is scrolled to stays in sight and what is selected stays
    /// selected, by place. While the mouse selects, the text stays as it is.
    void setReport(const QString &report);

    QSize sizeHint() const override { return {kWidth, kHeight}; }
    QSize minimumSizeHint() const override { return {kWidth / 4, kHeight / 4}; }

    static constexpr int kWidth = 630;
    static constexpr int kHeight = 361;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    QString m_report;
    bool m_selecting = false;
};

} // namespace pulsebar
