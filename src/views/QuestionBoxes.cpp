#include "views/QuestionBoxes.h"

#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace pulsebar {

namespace {

void bringToFront(QMessageBox &box)
{
    box.show();
    box.raise();
    box.activateWindow();
}

/// Both the return and the escape key, and closing the window, answer with `cancel`.
QPushButton *fillBox(QMessageBox &box, const Question &question)
{
    box.setAttribute(Qt::WA_DeleteOnClose);
    // The user may have come from any program's window, and window managers keep new ones back.
    box.setWindowFlag(Qt::WindowStaysOnTopHint);
    box.setWindowModality(Qt::NonModal);
    box.setWindowTitle(question.title);
    box.setIcon(QMessageBox::Warning);
    // What stands in a text is never a format.
    box.setTextFormat(Qt::PlainText);
    box.setText(question.message);
    box.setInformativeText(question.informativeText);
    QPushButton *proceed = box.addButton(question.proceed, QMessageBox::DestructiveRole);
    QPushButton *cancel = box.addButton(question.cancel, QMessageBox::RejectRole);
    for (QPushButton *button : {proceed, cancel}) {
        button->setAccessibleName(button->text());
        button->setAutoDefault(button == cancel);
    }
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
    return proceed;
}

} // namespace

QuestionBoxes::~QuestionBoxes()
{
    for (const QPointer<QMessageBox> &box : std::as_const(m_open))
        delete box.data();
}

void QuestionBoxes::ask(const Question &question, std::function<void(bool)> answer)
{
    if (QMessageBox *shown = m_open.value(question.key)) {
        bringToFront(*shown);
        return;
    }
    auto *box = new QMessageBox;
    const QPushButton *proceed = fillBox(*box, question);
    m_open.insert(question.key, box);
    QObject::connect(box, &QMessageBox::finished, box,
                     [this, box, proceed, key = question.key, answer = std::move(answer)] {
                         const bool confirmed = box->clickedButton() == proceed;
                         m_open.remove(key);
                         answer(confirmed);
                     });
    bringToFront(*box);
}

} // namespace pulsebar
