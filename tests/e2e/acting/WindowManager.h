#pragma once

#include "e2e/Desktop.h"

#include <stdexcept>

namespace pulsebar::e2e {

/// A window manager on a test's display, there when the object is: what is shown before is managed
/// later, and not given the focus.
class WindowManager
{
public:
    explicit WindowManager(Desktop &desktop)
        : m_process(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")},
                    desktop.environment())
    {
        const auto isThere = [&desktop] {
            Process xprop(QStringLiteral("xprop"),
                          {QStringLiteral("-root"), QStringLiteral("_NET_SUPPORTING_WM_CHECK")},
                          desktop.environment());
            xprop.waitForEnd();
            return xprop.output().contains(QStringLiteral("window id"));
        };
        if (!waitFor(isThere))
            throw std::runtime_error("the window manager does not start");
    }

private:
    Process m_process;
};

} // namespace pulsebar::e2e
