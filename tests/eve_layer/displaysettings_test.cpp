#include "assertionfailure.h"
#include "displaysettings.h"

namespace {

TEST(DisplaySettingsDeathTest, UnknownNameFailsTheAssertion) {
    DisplaySettings settings;
    EXPECT_EQ(settings["__REG_ID"], 0x102400U);
    EXPECT_ASSERTION_FAILURE(settings["__REG_I"], "eve_layer/displaysettings.cpp", 1119,
                             "uint32_t DisplaySettings::operator[](QString)", "false");
}

} // namespace
