#include "graph/Fade.h"

#include <algorithm>

namespace pulsebar {

void Fade::start(float targetAlphaValue, int steps)
{
    m_targetAlphaValue = targetAlphaValue;
    m_countAlphaChange = std::max(steps, 1);
}

float Fade::step(float alpha)
{
    if (!isRunning()) {
        return alpha;
    }
    const auto step = float((double(m_targetAlphaValue) - double(alpha)) / m_countAlphaChange);
    --m_countAlphaChange;
    return std::clamp(alpha + step, -1.0F, 1.0F);
}

} // namespace pulsebar
