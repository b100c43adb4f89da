#include "graph/Fade.h"

#include <gtest/gtest.h>

#include <limits>

namespace pulsebar {
namespace {

TEST(Fade, IsLinearAndEndsOnTheTarget)
{
    Fade fade;
    fade.start(1.0F, 10);
    float alpha = 0.55F;
    for (int at = 1; at <= 10; ++at) {
        EXPECT_TRUE(fade.isRunning());
        alpha = fade.step(alpha);
        EXPECT_NEAR(alpha, 0.55 + 0.045 * at, 1e-6);
    }
    EXPECT_EQ(alpha, 1.0F);
    EXPECT_FALSE(fade.isRunning());
    EXPECT_EQ(fade.step(alpha), 1.0F);
}

TEST(Fade, EveryStepCoversItsShareOfWhatIsLeft)
{
    Fade fade;
    fade.start(0.0F, 10);
    EXPECT_EQ(fade.step(0.5F), 0.5F - 0.05F);
    EXPECT_EQ(fade.countAlphaChange(), 9);
    // Somebody else set the opacity meanwhile.
    EXPECT_EQ(fade.step(0.9F), 0.9F - 0.1F);
    EXPECT_EQ(fade.countAlphaChange(), 8);
}

TEST(Fade, ANewOneStartsFromThePresent)
{
    Fade fade;
    fade.start(1.0F, 10);
    float alpha = fade.step(fade.step(0.55F));
    EXPECT_NEAR(alpha, 0.64, 1e-6);
    fade.start(0.55F, 10);
    alpha = fade.step(alpha);
    EXPECT_NEAR(alpha, 0.631, 1e-6);
    while (fade.isRunning())
        alpha = fade.step(alpha);
    EXPECT_EQ(alpha, 0.55F);
}

TEST(Fade, StaysWithinItsRange)
{
    Fade fade;
    fade.start(5.0F, 1);
    EXPECT_EQ(fade.step(0.5F), 1.0F);
    fade.start(-5.0F, 1);
    EXPECT_EQ(fade.step(0.5F), -1.0F);
}

TEST(Fade, HasAtLeastOneStep)
{
    Fade fade;
    fade.start(0.25F, 0);
    EXPECT_EQ(fade.step(1.0F), 0.25F);
    EXPECT_FALSE(fade.isRunning());
    fade.start(0.75F, -3);
    EXPECT_EQ(fade.step(1.0F), 0.75F);
}

} // namespace
} // namespace pulsebar
