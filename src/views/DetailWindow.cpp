#include "views/DetailWindow.h"

#include "util/Localisation.h"
#include "views/DetailText.h"

#include <QShortcut>
#include <QVBoxLayout>
#include <QWidget>

#include <utility>

namespace pulsebar {

DetailWindow::DetailWindow(std::function<QString()> report, QObject *parent)
    : QObject(parent)
    , m_report(std::move(report))
{
}

DetailWindow::~DetailWindow()
{
    delete m_window;
}

void DetailWindow::open()
{
    const QString title = localizedString(QStringLiteral("Detailed Information"));
    m_window = new QWidget;
    m_window->setAttribute(Qt::WA_DeleteOnClose);
    m_window->setAttribute(Qt::WA_QuitOnClose, false);
    m_window->setWindowTitle(title);
    m_window->setAccessibleName(title);
    m_text = new DetailText(m_window);
    auto *all = new QVBoxLayout(m_window);
    all->setContentsMargins(0, 0, 0, 0);
    all->addWidget(m_text);
    auto *leave = new QShortcut(QKeySequence(Qt::Key_Escape), m_window);
    connect(leave, &QShortcut::activated, m_window, &QWidget::close);
    m_window->resize(DetailText::kWidth, DetailText::kHeight);
}

void DetailWindow::show()
{
    // A closed window goes at the end of the run loop's turn.
    if (!isOpen())
        open();
    m_text->setReport(m_report());
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    m_text->setFocus();
}

bool DetailWindow::isOpen() const
{
    return m_window && m_window->isVisible();
}

void DetailWindow::refresh()
{
    if (isOpen() && !m_window->isMinimized())
        m_text->setReport(m_report());
}

void DetailWindow::close()
{
    if (m_window)
        m_window->close();
}

} // namespace pulsebar
