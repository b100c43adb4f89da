#pragma once

#include "e2e/Desktop.h"

namespace pulsebar::e2e {

/// A window manager (openbox) on a test's display. It manages what is shown from the moment on that
/// the object is there: what is shown before is taken over later, and not given the focus.
class WindowManager
{
public:
    /// Throws when there is none within the time of a test.
    explicit WindowManager(Desktop &desktop);

private:
    Process m_process;
};

} // namespace pulsebar::e2e
