#include "layout.h"

#include <gtest/gtest.h>

namespace soak {
namespace {

TEST(Layout, GivesTheTagUnderAPixel) {
    EXPECT_EQ(tagAt(Screen::Counter, {339, 28}), tag::run);
    EXPECT_EQ(tagAt(Screen::Options, {430, 120}), tag::firstTrigger);
    EXPECT_EQ(tagAt(Screen::Keypad, {56, 142}), '1');
    EXPECT_EQ(tagAt(Screen::Keypad, {240, 85}), tag::none);
}

TEST(Layout, HasTheModeButtonOnTheHistogramOnly) {
    EXPECT_EQ(tagAt(Screen::Histogram, {30, 28}), tag::mode);
    EXPECT_EQ(tagAt(Screen::Counter, {30, 28}), tag::none);
}

TEST(Layout, LeavesOpenWhatAnEdgeGives) {
    EXPECT_EQ(tagAt(Screen::Counter, {319, 28}), std::nullopt);
}

} // namespace
} // namespace soak
