#pragma once

#include <QByteArray>

#include <optional>

namespace pulsebar {

/// The toolkit's way to the display, for its option "-platform"; empty to leave the choice to it.
///
/// Where an X server serves a Wayland session, the X way is taken unless the user chose: only
/// there can a window of ours stand where it is put and above the others. (An environment variable
/// would do as well, but programs that we start would inherit it.)
/// @return absent, with a line on the error output, when there is no display at all
std::optional<QByteArray> displayPlatform();

/// While one of these lives, the toolkit's fatal error (a display that does not answer) ends the
/// program with a plain line and exit status 1 instead of an abort.
class DisplayErrors
{
public:
    DisplayErrors();
    ~DisplayErrors();
    DisplayErrors(const DisplayErrors &) = delete;
    DisplayErrors &operator=(const DisplayErrors &) = delete;
};

} // namespace pulsebar
