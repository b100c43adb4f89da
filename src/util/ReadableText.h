#pragma once

#include <QString>

namespace pulsebar {

/// A text of unknown origin as a text field can show it without harm. Lines and tabs are kept;
/// every other control character, and every character that turns the reading direction of its
/// neighbours, becomes U+FFFD; endless lines and texts are cut, with an ellipsis at the cut.
QString readableText(const QString &text);

} // namespace pulsebar
