#pragma once

namespace pulsebar {

/// Sees to it that the toolkit finds the right display, before the application object is made.
///
/// Where an X server serves a Wayland session, the X way is taken unless the user chose: only
/// there can a window of ours stand where it is put and above the others.
/// @return false, with a line on the error output, when there is no display at all
bool prepareDisplay();

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
