#pragma once

#include "menu/Question.h"

#include <QHash>
#include <QPointer>

class QMessageBox;

namespace pulsebar {

/// Puts questions to the user, each in a window of its own in front of all others. Nothing waits
/// for the answer: samples go on, and so do menus and other questions.
class QuestionBoxes
{
public:
    QuestionBoxes() = default;
    /// Takes the open questions back; they are answered no more.
    ~QuestionBoxes();
    QuestionBoxes(const QuestionBoxes &) = delete;
    QuestionBoxes &operator=(const QuestionBoxes &) = delete;

    void ask(const Question &question, std::function<void(bool)> answer);

private:
    QHash<QString, QPointer<QMessageBox>> m_open;
};

} // namespace pulsebar
