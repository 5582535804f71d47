#include "inflate.h"
#include "streams.h"

#include <algorithm>

namespace {

template<std::size_t N>
std::vector<std::uint8_t> pixelsOf(const std::array<unsigned char, N>& stream) {
    return inflated(stream.data(), stream.size());
}

// An ARGB4 picture, its pixels by column and row.
class Picture {
public:
    template<std::size_t N>
    Picture(const std::array<unsigned char, N>& stream, std::size_t width)
        : m_width(width), m_pixels(pixelsOf(stream)) {}

    std::size_t width() const { return m_width; }
    std::size_t height() const { return m_pixels.size() / 2 / m_width; }

    int alpha(std::size_t x, std::size_t y) const { return m_pixels[at(x, y) + 1] >> 4; }
    int red(std::size_t x, std::size_t y) const { return m_pixels[at(x, y) + 1] & 0x0F; }
    int green(std::size_t x, std::size_t y) const { return m_pixels[at(x, y)] >> 4; }
    int blue(std::size_t x, std::size_t y) const { return m_pixels[at(x, y)] & 0x0F; }

    bool isInkedColumn(std::size_t x) const {
        for (std::size_t y = 0; y < height(); ++y) {
            if (alpha(x, y) > 0) {
                return true;
            }
        }
        return false;
    }

    bool isInkedRow(std::size_t y) const {
        for (std::size_t x = 0; x < width(); ++x) {
            if (alpha(x, y) > 0) {
                return true;
            }
        }
        return false;
    }

private:
    std::size_t at(std::size_t x, std::size_t y) const { return 2 * (y * m_width + x); }

    std::size_t m_width;
    std::vector<std::uint8_t> m_pixels;
};

// The start-up screen places the logo at this column, and uncovers the panel from the left.
constexpr std::size_t logoLeft = 5;

TEST(Streams, LogoInflatesTo470By85PixelsOfTwoBytes) {
    EXPECT_EQ(pixelsOf(assets::logo).size(), 79900U);
}

TEST(Streams, LogoEndsBeforeTheColumnsOfTheLastStep) {
    // Between the last step and the next screen the panel may show the last step but one again.
    const Picture logo(assets::logo, 470);
    for (std::size_t x = 455 - logoLeft; x < logo.width(); ++x) {
        EXPECT_FALSE(logo.isInkedColumn(x)) << x;
    }
    EXPECT_TRUE(logo.isInkedColumn(440)); // the name takes the room that there is
}

TEST(Streams, LogoHasAGapWhereItIsCutWhileItBreathes) {
    const Picture logo(assets::logo, 470);
    constexpr std::size_t cut = 175 - logoLeft;
    for (std::size_t x = cut - 1; x <= cut + 1; ++x) {
        EXPECT_FALSE(logo.isInkedColumn(x)) << x;
    }
}

TEST(Streams, LogoHasNoColourBesidesItsInksAndTheirMixture) {
    const Picture logo(assets::logo, 470);
    std::size_t black = 0;
    for (std::size_t y = 0; y < logo.height(); ++y) {
        for (std::size_t x = 0; x < logo.width(); ++x) {
            const int red = logo.red(x, y);
            const int green = logo.green(x, y);
            const int blue = logo.blue(x, y);
            const bool isGrey = red == green && green == blue;
            const bool isBlueOrMixed = red <= green && green <= blue;
            const bool isOrange = red == 0xE && green == 0x6 && blue == 0x2;
            EXPECT_TRUE(isGrey || isBlueOrMixed || isOrange)
                << "pixel " << x << ", " << y << ": " << red << ' ' << green << ' ' << blue;
            black += isGrey && red == 0x1 ? 1U : 0U;
        }
    }
    EXPECT_GT(black, 5000U);
}

TEST(Streams, LogoBaselineCoversWholeRows) {
    const Picture logo(assets::logo, 470);
    for (const std::size_t x : {20U, 30U, 155U, 162U}) { // before the first pulse, after the last
        int covered = 0;
        for (std::size_t y = 60; y < 75; ++y) {
            EXPECT_TRUE(logo.alpha(x, y) == 0 || logo.alpha(x, y) == 15) << x << ", " << y;
            covered += logo.alpha(x, y) > 0 ? 1 : 0;
        }
        EXPECT_EQ(covered, 5) << x;
    }
}

TEST(Streams, LogoPiecesInflateToThePackedLengthOfAllThirteen) {
    EXPECT_EQ(pixelsOf(assets::logoPieces).size(), 70815U);
}

TEST(Streams, EveryLogoPieceHasFullInkSomewhere) {
    const auto pixels = pixelsOf(assets::logoPieces);
    const std::vector<std::size_t> starts = {0x0,    0x14F5, 0x43CB, 0x4561, 0x46F7, 0x489B, 0x4A4E,
                                             0x4BF2, 0x4D96, 0x4F1E, 0x50A6, 0xC50E, 0xF286, 70815};
    for (std::size_t i = 0; i + 1 < starts.size(); ++i) {
        EXPECT_TRUE(std::any_of(pixels.begin() + static_cast<std::ptrdiff_t>(starts[i]),
                                pixels.begin() + static_cast<std::ptrdiff_t>(starts[i + 1]),
                                [](std::uint8_t pair) { return pair == 0xFF; }))
            << "piece " << i;
    }
}

TEST(Streams, DerivativeIconHasItsFractionBarAcrossTheMiddle) {
    const Picture icon(assets::derivativeIcon, 18);
    ASSERT_EQ(icon.height(), 28U);
    for (std::size_t x = 0; x < 14; ++x) {
        for (const std::size_t y : {13U, 14U}) {
            EXPECT_EQ(icon.alpha(x, y), 15) << x << ", " << y;
        }
        EXPECT_EQ(icon.alpha(x, 12), 0) << x;
        EXPECT_EQ(icon.alpha(x, 15), 0) << x;
    }
}

TEST(Streams, DerivativeIconIsInTheMiddleOfItsButton) {
    // The button of 40 x 40 pixels begins at (10, 8), the icon at (23, 14).
    constexpr std::size_t middleColumn = 10 + 40 / 2 - 23;
    constexpr std::size_t middleRow = 8 + 40 / 2 - 14;
    const Picture icon(assets::derivativeIcon, 18);
    std::vector<std::size_t> columns;
    for (std::size_t x = 0; x < icon.width(); ++x) {
        if (icon.isInkedColumn(x)) {
            columns.push_back(x);
        }
    }
    std::vector<std::size_t> rows;
    for (std::size_t y = 0; y < icon.height(); ++y) {
        if (icon.isInkedRow(y)) {
            rows.push_back(y);
        }
    }
    ASSERT_FALSE(columns.empty());
    EXPECT_EQ(columns.front() + columns.back() + 1, 2 * middleColumn);
    EXPECT_EQ(rows.front() + rows.back() + 1, 2 * middleRow);
}

TEST(Streams, IntegralIconIsDarkInkOnTransparentGround) {
    const auto pixels = pixelsOf(assets::integralIcon);
    ASSERT_EQ(pixels.size(), 1728U);
    int inked = 0;
    for (std::size_t i = 0; i < pixels.size(); i += 2) {
        if (pixels[i + 1] >> 4 == 0) {
            EXPECT_EQ(pixels[i] | pixels[i + 1], 0);
        } else {
            EXPECT_EQ(pixels[i], 0x11);
            EXPECT_EQ(pixels[i + 1] & 0x0F, 0x01);
            ++inked;
        }
    }
    EXPECT_GT(inked, 100);
}

} // namespace
