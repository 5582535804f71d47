#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "displaylistwords.h"
#include "drawinghelpers.h"
#include "drawingtest.h"

#include <algorithm>

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::SizeIs;

constexpr uint32_t dlstart = 0xFFFFFF00;
constexpr std::size_t streamWords = 6224 / 4;
constexpr std::size_t inflateWords = 2;

Words joined(const std::vector<Words>& parts) {
    Words whole;
    for (const Words& part : parts) {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

const Words firstFrame = joined({
    // start of the frame
    {0xFFFFFF00, 0x02FFFFFF, 0x26000007, 0x0500000F, 0x1F000001, 0xFFFFFF26, 0xFFFFFF28, 0x00009999,
     0x00009999, 0xFFFFFF2A, 0x04231F20},
    // piece 0
    {0x01000000, 0x07104A91, 0x08105A57, 0x28000000, 0x29000000, 0x7E9305C2},
    // piece 1
    {0x010014F5, 0x07106EDA, 0x08108483, 0x28000000, 0x29000000, 0x7DE6045F},
    // piece 2
    {0x010043CB, 0x07101C1D, 0x08102212, 0x28000000, 0x29000000, 0x7DB6066F},
    // piece 3
    {0x01004561, 0x07101C1D, 0x08102212, 0x28000000, 0x29000000, 0x7DB60965},
    // piece 4
    {0x010046F7, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x7E1B05A5},
    // piece 5
    {0x0100489B, 0x07101E1D, 0x08102412, 0x28000000, 0x29000000, 0x7E1B0A39},
    // piece 6
    {0x01004A4E, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x7E8484D2},
    // piece 7
    {0x01004BF2, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x7E848B0C},
    // piece 8
    {0x01004D96, 0x07101C1C, 0x08102211, 0x28000000, 0x29000000, 0x7EEE03FF},
    // piece 9, in its own colour
    {0x04ED1C24, 0x01004F1E, 0x07101C1C, 0x08102211, 0x28000000, 0x29000000, 0x7EEE0BDF},
    // piece 10
    {0x043871C1, 0x22000000, 0x010050A6, 0x07119095, 0x0811E05A, 0x28000000, 0x29000000},
    // placed and turned by its transform
    {0xFFFFFF26, 0xFFFFFF28, 0x00009999, 0x00009999, 0xFFFFFF27, 0x00BE0000, 0x00D49D5C, 0xFFFFFF29,
     0xFFFFC000, 0xFFFFFF27, 0x00000000, 0xFFC40000, 0xFFFFFF2A, 0x40000000, 0x23000000},
    // piece 11
    {0x0100C50E, 0x0710C278, 0x0810EA48, 0x28000000, 0x29000000, 0x4F2105B9},
    // piece 12
    {0x04231F20, 0x10000000, 0x0100F286, 0x07125A1D, 0x0812D412, 0x28000000, 0x29000000,
     0x438F8AD2},
    // end of the frame
    {0x00000000, 0xFFFFFF01},
});

const Words frame40 = joined({
    // start of the frame
    {0xFFFFFF00, 0x02FFFFFF, 0x26000007, 0x0500000F, 0x1F000001, 0xFFFFFF26, 0xFFFFFF28, 0x00009999,
     0x00009999, 0xFFFFFF2A, 0x04231F20},
    // piece 0
    {0x01000000, 0x07104A91, 0x08105A57, 0x28000000, 0x29000000, 0x40F305C2},
    // piece 1
    {0x010014F5, 0x07106EDA, 0x08108483, 0x28000000, 0x29000000, 0x4030045F},
    // piece 2
    {0x010043CB, 0x07101C1D, 0x08102212, 0x28000000, 0x29000000, 0x7FDB066F},
    // piece 3
    {0x01004561, 0x07101C1D, 0x08102212, 0x28000000, 0x29000000, 0x7FA38965},
    // piece 4
    {0x010046F7, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x7FBB05A5},
    // piece 5
    {0x0100489B, 0x07101E1D, 0x08102412, 0x28000000, 0x29000000, 0x7F540A39},
    // piece 6
    {0x01004A4E, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x7F3804D2},
    // piece 7
    {0x01004BF2, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x7E918B0C},
    // piece 8
    {0x01004D96, 0x07101C1C, 0x08102211, 0x28000000, 0x29000000, 0x7EEE03FF},
    // piece 9, in its own colour
    {0x04ED1C24, 0x01004F1E, 0x07101C1C, 0x08102211, 0x28000000, 0x29000000, 0x7EEE0BDF},
    // piece 10
    {0x043871C1, 0x22000000, 0x010050A6, 0x07119095, 0x0811E05A, 0x28000000, 0x29000000},
    // placed and turned by its transform
    {0xFFFFFF26, 0xFFFFFF28, 0x00009999, 0x00009999, 0xFFFFFF27, 0x00BE0000, 0x00D49D5C, 0xFFFFFF29,
     0xFFFFF68D, 0xFFFFFF27, 0x00000000, 0xFFC40000, 0xFFFFFF2A, 0x40000000, 0x23000000},
    // piece 11
    {0x0100C50E, 0x0710C278, 0x0810EA48, 0x28000000, 0x29000000, 0x4F2105B9},
    // piece 12
    {0x04231F20, 0x10000000, 0x0100F286, 0x07125A1D, 0x0812D412, 0x28000000, 0x29000000,
     0x438F8AD2},
    // end of the frame
    {0x00000000, 0xFFFFFF01},
});

const Words lastFrame = joined({
    // start of the frame
    {0xFFFFFF00, 0x02FFFFFF, 0x26000007, 0x0500000F, 0x1F000001, 0xFFFFFF26, 0xFFFFFF28, 0x00009999,
     0x00009999, 0xFFFFFF2A, 0x04231F20},
    // piece 0
    {0x01000000, 0x07104A91, 0x08105A57, 0x28000000, 0x29000000, 0x410305C2},
    // piece 1
    {0x010014F5, 0x07106EDA, 0x08108483, 0x28000000, 0x29000000, 0x4056045F},
    // piece 2
    {0x010043CB, 0x07101C1D, 0x08102212, 0x28000000, 0x29000000, 0x4026066F},
    // piece 3
    {0x01004561, 0x07101C1D, 0x08102212, 0x28000000, 0x29000000, 0x40260965},
    // piece 4
    {0x010046F7, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x408B05A5},
    // piece 5
    {0x0100489B, 0x07101E1D, 0x08102412, 0x28000000, 0x29000000, 0x408B0A39},
    // piece 6
    {0x01004A4E, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x40F484D2},
    // piece 7
    {0x01004BF2, 0x07101E1C, 0x08102411, 0x28000000, 0x29000000, 0x40F48B0C},
    // piece 8
    {0x01004D96, 0x07101C1C, 0x08102211, 0x28000000, 0x29000000, 0x415E03FF},
    // piece 9, in its own colour
    {0x04ED1C24, 0x01004F1E, 0x07101C1C, 0x08102211, 0x28000000, 0x29000000, 0x415E0BDF},
    // piece 10
    {0x043871C1, 0x22000000, 0x010050A6, 0x07119095, 0x0811E05A, 0x28000000, 0x29000000},
    // placed and turned by its transform
    {0xFFFFFF26, 0xFFFFFF28, 0x00009999, 0x00009999, 0xFFFFFF27, 0x00BE0000, 0x00D49D5C, 0xFFFFFF29,
     0x00000000, 0xFFFFFF27, 0x00000000, 0xFFC40000, 0xFFFFFF2A, 0x40000000, 0x23000000},
    // piece 11
    {0x0100C50E, 0x0710C278, 0x0810EA48, 0x28000000, 0x29000000, 0x4B3185B9},
    // piece 12
    {0x04231F20, 0x100000FE, 0x0100F286, 0x07125A1D, 0x0812D412, 0x28000000, 0x29000000,
     0x438F8AD2},
    // end of the frame
    {0x00000000, 0xFFFFFF01},
});

const Words firstFrameEve1 = joined({
    // start of the frame
    {0xFFFFFF00, 0x02FFFFFF, 0x26000007, 0x0500000F, 0x1F000001, 0xFFFFFF26, 0xFFFFFF28, 0x00009999,
     0x00009999, 0xFFFFFF2A, 0x04231F20},
    // piece 0
    {0x01000000, 0x07104A91, 0x08105A57, 0x7E9305C2},
    // piece 1
    {0x010014F5, 0x07106EDA, 0x08108483, 0x7DE6045F},
    // piece 2
    {0x010043CB, 0x07101C1D, 0x08102212, 0x7DB6066F},
    // piece 3
    {0x01004561, 0x07101C1D, 0x08102212, 0x7DB60965},
    // piece 4
    {0x010046F7, 0x07101E1C, 0x08102411, 0x7E1B05A5},
    // piece 5
    {0x0100489B, 0x07101E1D, 0x08102412, 0x7E1B0A39},
    // piece 6
    {0x01004A4E, 0x07101E1C, 0x08102411, 0x7E8484D2},
    // piece 7
    {0x01004BF2, 0x07101E1C, 0x08102411, 0x7E848B0C},
    // piece 8
    {0x01004D96, 0x07101C1C, 0x08102211, 0x7EEE03FF},
    // piece 9, in its own colour
    {0x04ED1C24, 0x01004F1E, 0x07101C1C, 0x08102211, 0x7EEE0BDF},
    // piece 10
    {0x043871C1, 0x22000000, 0x010050A6, 0x07119095, 0x0811E05A},
    // placed and turned by its transform
    {0xFFFFFF26, 0xFFFFFF28, 0x00009999, 0x00009999, 0xFFFFFF27, 0x00BE0000, 0x00D49D5C, 0xFFFFFF29,
     0xFFFFC000, 0xFFFFFF27, 0x00000000, 0xFFC40000, 0xFFFFFF2A, 0x40000000, 0x23000000},
    // piece 11
    {0x0100C50E, 0x0710C278, 0x0810EA48, 0x4F2105B9},
    // piece 12
    {0x04231F20, 0x10000000, 0x0100F286, 0x07125A1D, 0x0812D412, 0x438F8AD2},
    // end of the frame
    {0x00000000, 0xFFFFFF01},
});

class LogoTest : public DrawingTest {
protected:
    // The commands of each frame, from DLSTART to the next; the last has none of its own.
    static std::vector<Words> frames() {
        const Words all = board.commandWords();
        std::vector<Words> split;
        for (std::size_t i = inflateWords + streamWords; i < all.size(); ++i) {
            if (all[i] == dlstart) {
                split.emplace_back();
            }
            split.back().push_back(all[i]);
        }
        return split;
    }

    // One word of every frame but the last, which only clears.
    static Words wordOfFrames(std::size_t index) {
        std::vector<Words> all = frames();
        all.pop_back();
        Words words;
        std::transform(all.begin(), all.end(), std::back_inserter(words),
                       [index](const Words& frame) { return frame.at(index); });
        return words;
    }
};

// Places of words in a frame of EVE_3.
constexpr std::size_t angleWord = 11 + 10 * 6 + 1 + 7 + 8;
constexpr std::size_t rightPieceVertex = angleWord + 7 + 5;
constexpr std::size_t alphaWord = rightPieceVertex + 2;

TEST_F(LogoTest, ThePiecesAreInflatedToGeneralMemoryAddress0) {
    App_Show_Logo(&host);
    const Words all = board.commandWords();
    EXPECT_THAT(Words(all.begin(), all.begin() + 2), ElementsAre(0xFFFFFF22, 0));
    // A zlib stream, and nothing but the first frame behind it.
    const uint32_t zlibHeader = (all[2] & 0xFFU) << 8 | ((all[2] >> 8) & 0xFFU);
    EXPECT_EQ(zlibHeader % 31, 0U);
    EXPECT_EQ(zlibHeader >> 8 & 0xFU, 8U);
    EXPECT_EQ(all[inflateWords + streamWords], dlstart);
}

TEST_F(LogoTest, PlaysAHundredAndTwentyFramesAndClears) {
    App_Show_Logo(&host);
    const std::vector<Words> all = frames();
    ASSERT_THAT(all, SizeIs(121));
    for (std::size_t i = 0; i < 120; ++i) {
        EXPECT_THAT(all[i], SizeIs(firstFrame.size()));
        EXPECT_EQ(all[i].back(), 0xFFFFFF01U);
    }
    EXPECT_THAT(all.back(), ElementsAre(dlstart));
}

TEST_F(LogoTest, TheFirstFrameHasEveryPieceAtItsStart) {
    App_Show_Logo(&host);
    EXPECT_THAT(frames().front(), ElementsAreArray(firstFrame));
}

TEST_F(LogoTest, InFrame40TheLeftPiecesAndTheTurnAreOnTheirWay) {
    App_Show_Logo(&host);
    EXPECT_THAT(frames().at(40), ElementsAreArray(frame40));
}

TEST_F(LogoTest, TheLastFrameHasEveryPieceAtItsPlace) {
    App_Show_Logo(&host);
    EXPECT_THAT(frames().at(119), ElementsAreArray(lastFrame));
}

TEST_F(LogoTest, Eve1HasNoUpperBitsOfLayoutAndSize) {
    use(DisplaySettings::EVE_1);
    App_Show_Logo(&host);
    const std::vector<Words> all = frames();
    ASSERT_THAT(all, SizeIs(121));
    EXPECT_THAT(all.front(), ElementsAreArray(firstFrameEve1));
}

TEST_F(LogoTest, ThePieceThatTurnsGoesFromAQuarterTurnBackToNone) {
    App_Show_Logo(&host);
    Words angles = wordOfFrames(angleWord);
    EXPECT_EQ(angles[0], 0xFFFFC000U);
    EXPECT_EQ(angles[11], 0xFFFFC000U); // 11 x 550 is before 6553
    EXPECT_NE(angles[13], 0xFFFFC000U);
    EXPECT_EQ(angles[72], 0U); // 72 x 550 is a full run behind 6553 at twice the speed
    std::replace(angles.begin(), angles.end(), 0U, 0xFFFFFFFFU);
    EXPECT_TRUE(std::is_sorted(angles.begin(), angles.end()));
}

TEST_F(LogoTest, TheRightPieceComesInFromTheRight) {
    App_Show_Logo(&host);
    const Words vertices = wordOfFrames(rightPieceVertex);
    EXPECT_EQ(vertices[47], vertices[0]); // 47 x 550 is before 26214
    EXPECT_NE(vertices[48], vertices[0]);
    EXPECT_EQ(vertices[88],
              vertices[119]); // 88 x 550 is a full run behind, at three times the speed
    EXPECT_TRUE(std::is_sorted(vertices.rbegin(), vertices.rend()));
}

TEST_F(LogoTest, TheLastPieceFadesIn) {
    App_Show_Logo(&host);
    const Words alphas = wordOfFrames(alphaWord);
    EXPECT_THAT(Words(alphas.begin(), alphas.begin() + 90), Each(0x10000000)); // until 49152
    EXPECT_EQ(alphas[90], 0x1000000FU);
    EXPECT_EQ(alphas[119], 0x100000FEU);
    EXPECT_TRUE(std::is_sorted(alphas.begin(), alphas.end()));
}

// Where a movement is that began at `phase` 0 and takes until 0x10000.
int movedTo(int phase, int from, int to) {
    return phase < 0 ? from : phase < 0x10000 ? tween(phase, from, to) : to;
}

TEST_F(LogoTest, EveryMovementKeepsItsTimeInEveryFrame) {
    App_Show_Logo(&host);
    const Words angles = wordOfFrames(angleWord);
    const Words rightPieces = wordOfFrames(rightPieceVertex);
    const Words alphas = wordOfFrames(alphaWord);
    const uint32_t row = rightPieces.at(0) & 0x7FFF;
    for (int frame = 0; frame < 120; ++frame) {
        const int t = 550 * frame % 0x10000;
        const auto i = static_cast<std::size_t>(frame);
        const int angle = -movedTo(2 * (t - 6553), 0x4000, 0); // from a tenth of the time on
        EXPECT_EQ(angles.at(i), static_cast<uint32_t>(angle)) << frame;
        const int right = dc(597) + movedTo(3 * (t - 26214), dc(210), 0); // four tenths
        EXPECT_EQ(rightPieces.at(i), VERTEX2F(right, static_cast<int>(row))) << frame;
        const int alpha = movedTo(4 * (t - 49152), 0, 255); // three quarters
        EXPECT_EQ(alphas.at(i), COLOR_A(static_cast<uint32_t>(alpha))) << frame;
    }
}

// How often the FIFO is waited for: after each piece of the picture that it takes, and for the
// whole picture; for a frame as it is flushed, and once more.
constexpr std::size_t waitsForThePicture = 3;
constexpr std::size_t waitsForTheFrames = std::size_t{121} * 2;

std::size_t waitsForTheFifo() {
    return board.transactions(Transaction::Read, 0x3020FC).size();
}

TEST_F(LogoTest, EveryFrameIsConsumedBeforeTheNextIsSent) {
    App_Show_Logo(&host);
    EXPECT_EQ(board.peek(0x3020F8), board.peek(0x3020FC));
    EXPECT_EQ(waitsForTheFifo(), waitsForThePicture + waitsForTheFrames);
}

TEST_F(LogoTest, WhatWasPendingIsSentBeforeTheFirstFrame) {
    App_WrCoCmd_Buffer(&host, DISPLAY());
    App_Show_Logo(&host);
    EXPECT_EQ(board.commandWords().at(inflateWords + streamWords), DISPLAY());
    EXPECT_EQ(waitsForTheFifo(), waitsForThePicture + 1 + waitsForTheFrames);
}

TEST_F(LogoTest, LeavesTheScreenClearedAndTheBufferEmpty) {
    App_Show_Logo(&host);
    EXPECT_THAT(
        board.transactions(Transaction::Write, 0x300000),
        ElementsAre(Transaction::write(0x300000, {0, 0, 0, 0x02, 7, 0, 0, 0x26, 0, 0, 0, 0})));
    EXPECT_THAT(board.transactions(Transaction::Write, 0x302054),
                ElementsAre(Transaction::write8(0x302054, 2)));
    EXPECT_EQ(board.sleptMs(), 20U);
    EXPECT_EQ(board.events().back(), "sleep 20");
    EXPECT_EQ(CmdBuffer_Index, 0U);
}

TEST_F(LogoTest, CanBePlayedAgain) {
    App_Show_Logo(&host);
    const std::vector<Words> first = frames();
    board.reset();
    Gpu_Hal_ResetCmdFifo(&host);
    App_Show_Logo(&host);
    EXPECT_EQ(frames(), first);
}

// A panel as wide as the design, so that every piece shows at its own size.
class LogoOn800PixelsTest : public LogoTest {
protected:
    LogoOn800PixelsTest() {
        DisplaySettings::getInstance()->setDisplaySize(DisplaySettings::Size_70);
        App_Show_Logo(&host);
    }
    ~LogoOn800PixelsTest() override {
        DisplaySettings::getInstance()->setDisplaySize(DisplaySettings::Size_43);
    }

    // The words of the last frame that begin with these bits.
    static Words ofLastFrame(uint32_t bits, uint32_t mask) {
        const std::vector<Words> all = frames();
        const Words& last = all.at(119);
        Words found;
        std::copy_if(last.begin(), last.end(), std::back_inserter(found),
                     [&](uint32_t word) { return (word & mask) == bits; });
        return found;
    }
};

TEST_F(LogoOn800PixelsTest, NothingIsScaled) {
    const std::vector<Words> all = frames();
    ASSERT_THAT(all, SizeIs(121));
    EXPECT_EQ(all[119][7], 0x00010000U);
}

TEST_F(LogoOn800PixelsTest, EachPieceHasItsSizeAndEndsAtItsPlace) {
    struct Piece {
        uint32_t w, h;
        int32_t x, y;
    };
    const std::vector<Piece> pieces = {
        {74, 145, 54, 48},
        {110, 218, 18, 11},
        {28, 29, 8, 66},
        {28, 29, 8, 145},
        {30, 28, 29, 45},
        {30, 29, 29, 167},
        {30, 28, 51, 23},
        {30, 28, 51, 189},
        {28, 28, 73, 1},
        {28, 28, 73, 211},
        {400, 149, 0, 0}, // the turning one: by its
                          // transform
        {194, 120, 597, 47},
        {602, 29, 190, 183},
    };
    constexpr uint32_t l4 = 2;
    Words layouts;
    Words sizes;
    Words upperSizes;
    Words places;
    for (const Piece& piece : pieces) {
        const uint32_t width = piece.w + 1;
        layouts.push_back(BITMAP_LAYOUT(l4, piece.w / 2, piece.h));
        sizes.push_back(BITMAP_SIZE(1, 0, 0, width, piece.h + 1));
        upperSizes.push_back(0x29000000U | width >> 9 << 2);
        const bool turning = piece.x == 0;
        const int32_t top = turning ? 0 : (480 - 242) / 2;
        places.push_back(VERTEX2F(piece.x * 16, (top + piece.y) * 16));
    }
    EXPECT_EQ(ofLastFrame(0x07000000, 0xFF000000), layouts);
    EXPECT_EQ(ofLastFrame(0x08000000, 0xFF000000), sizes);
    EXPECT_EQ(ofLastFrame(0x29000000, 0xFF000000), upperSizes);
    EXPECT_EQ(ofLastFrame(0x40000000, 0xC0000000), places);
}

} // namespace
