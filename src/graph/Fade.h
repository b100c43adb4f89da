#pragma once

namespace pulsebar {

/// How a window's opacity goes to another one in equal steps, without a clock.
class Fade
{
public:
    /// Seconds between two steps.
    static constexpr double interval = 0.05;
    /// The steps of every fade.
    static constexpr int usualSteps = 10;

    /// Forgets a fade that is under way.
    /// @param steps at least 1
    void start(float targetAlphaValue, int steps);

    /// @param alpha the opacity now
    /// @return the next one, -1 to 1; the last step ends on the target
    float step(float alpha);

    /// Whether there is a step to do.
    bool isRunning() const { return m_countAlphaChange > 0; }
    int countAlphaChange() const { return m_countAlphaChange; }
    float targetAlphaValue() const { return m_targetAlphaValue; }

private:
    float m_targetAlphaValue = 0.0F;
    int m_countAlphaChange = 0;
};

} // namespace pulsebar
