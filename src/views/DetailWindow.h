#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

class QWidget;

namespace pulsebar {

class DetailText;

/// The window with the newest report: one at most, made when it is asked for and gone when it is
/// closed. It neither keeps the program alive nor ends it.
class DetailWindow : public QObject
{
    Q_OBJECT

public:
    /// @param report answers the newest report; asked only while the window is open
    explicit DetailWindow(std::function<QString()> report, QObject *parent = nullptr);
    ~DetailWindow() override;

    /// Opens the window, or brings the open one to the front.
    void show();
    /// Shows the newest report; does nothing while no window can be seen.
    void refresh();
    void close();
    bool isOpen() const;

private:
    void open();

    std::function<QString()> m_report;
    QPointer<QWidget> m_window;
    QPointer<DetailText> m_text;
};

} // namespace pulsebar
