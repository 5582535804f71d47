#include "screentest.h"
#include "text.h"

#include <limits>

namespace {

using TextTest = ScreenTest;

TEST(FormatValueTest, ZeroIsTheDigitAfterFiveBlanks) {
    EXPECT_STREQ(formatValue(0.0), "     0");
}

TEST(FormatValueTest, ShortValuesAreRightAlignedInSixCharacters) {
    EXPECT_STREQ(formatValue(12.5), "  12.5");
    EXPECT_STREQ(formatValue(-3.0), "    -3");
    EXPECT_STREQ(formatValue(9999.0), "  9999");
}

TEST(FormatValueTest, HasFourSignificantDigits) {
    EXPECT_STREQ(formatValue(3.14159), " 3.142");
    EXPECT_STREQ(formatValue(123.456), " 123.5");
}

TEST(FormatValueTest, OneDigitPositiveExponentsAreShortened) {
    EXPECT_STREQ(formatValue(1234567.0), "1.235e6");
    EXPECT_STREQ(formatValue(10000.0), " 1e4"); // once it is aligned
}

TEST(FormatValueTest, FixedNotationOfASmallValueIsUnchanged) {
    EXPECT_STREQ(formatValue(0.0001234), "0.0001234");
}

TEST(FormatValueTest, TwoDigitExponentsAreKept) {
    EXPECT_STREQ(formatValue(1.5e10), "1.5e+10");
}

TEST(FormatValueTest, NegativeExponentsAreKept) {
    EXPECT_STREQ(formatValue(1.234e-05), "1.234e-05");
}

TEST(FormatValueTest, ValuesThatAreNoNumberAreStillText) {
    EXPECT_STREQ(formatValue(std::numeric_limits<double>::quiet_NaN()), "   nan");
    EXPECT_STREQ(formatValue(std::numeric_limits<double>::infinity()), "   inf");
}

TEST_F(TextTest, AlignmentIsTheOnlyDifferenceBetweenTheThree) {
    drawCentredText(&host, {1, 2}, 31, "a");
    drawLeftAlignedText(&host, {3, 4}, 27, "");
    drawRightAlignedText(&host, {511, 6}, 26, "long enough for three words");
    App_Flush_Co_Buffer(&host);
    EXPECT_EQ(drawn(), "TEXT 1 2 font 31 CENTER \"a\"\n"
                       "TEXT 3 4 font 27 CENTERY \"\"\n"
                       "TEXT 511 6 font 26 CENTERY|RIGHTX \"long enough for three words\"\n");
}

} // namespace
