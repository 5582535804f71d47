#include "formattext.h"

#include <gtest/gtest.h>

namespace {

using Arguments = std::vector<std::uint32_t>;

std::string format(const std::string& text, const Arguments& arguments = {}) {
    return controller::formatText(text, arguments, [](std::uint32_t address) {
        return address == 1000 ? std::string("volts") : std::string();
    });
}

TEST(FormatText, PlainTextStaysAsItIs) {
    EXPECT_EQ(format("no sign"), "no sign");
    EXPECT_EQ(format("100%%"), "100%");
    EXPECT_EQ(format(""), "");
}

TEST(FormatText, Numbers) {
    EXPECT_EQ(format("%d", {0xFFFFFFFF}), "-1");
    EXPECT_EQ(format("%d", {0x80000000}), "-2147483648");
    EXPECT_EQ(format("%u", {0xFFFFFFFF}), "4294967295");
    EXPECT_EQ(format("%x %X %o %p", {255, 255, 8, 16}), "ff FF 10 0x10");
    EXPECT_EQ(format("%#x", {255}), "0xff");
    EXPECT_EQ(format("%+d % d", {5, 5}), "+5  5");
}

TEST(FormatText, WidthAndPrecision) {
    EXPECT_EQ(format("[%5d]", {42}), "[   42]");
    EXPECT_EQ(format("[%-5d]", {42}), "[42   ]");
    EXPECT_EQ(format("[%05d]", {0xFFFFFFD6}), "[-0042]");
    EXPECT_EQ(format("[%.3d]", {7}), "[007]");
    EXPECT_EQ(format("[%*d]", {4, 7}), "[   7]");
    EXPECT_EQ(format("[%.2s]", {1000}), "[vo]");
    EXPECT_EQ(format("[%7s]", {1000}), "[  volts]");
}

TEST(FormatText, CharactersAndStrings) {
    EXPECT_EQ(format("%c%c %s", {'m', 'V', 1000}), "mV volts");
}

TEST(FormatText, BadFormatsDoNoHarm) {
    EXPECT_EQ(format("%"), "");
    EXPECT_EQ(format("a%q"), "a");
    EXPECT_EQ(format("%d"), "0");
    EXPECT_EQ(format("%99999999999999999999d", {1}).size(), 99U);
    EXPECT_EQ(format("%5"), "     ");
}

} // namespace
