#pragma once

#include <QString>

#include <functional>

namespace pulsebar {

/// A question that the user answers with one of two buttons, as a value.
struct Question
{
    /// What it is about. A question about the same thing is not asked twice at a time.
    QString key;
    QString title; ///< of its window; plain text
    QString message;
    QString informativeText;
    QString cancel; ///< the default button's text
    QString proceed;
};

/// Shows a question and returns at once. The answer is given later, once: true for `proceed`, false
/// for anything else. While the same question stands already, that one is shown again and nobody
/// answers this one.
using Ask = std::function<void(const Question &question, std::function<void(bool)> answer)>;

} // namespace pulsebar
