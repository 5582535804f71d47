#include "host.h"

#include <gtest/gtest.h>

namespace {

using namespace controllertest;
using V = std::vector<std::uint32_t>;

// The ring reader: words, blocking, faults and their recovery.
class CoprocessorOfEveryGeneration : public testing::TestWithParam<Generation> {};

INSTANTIATE_TEST_SUITE_P(Coprocessor, CoprocessorOfEveryGeneration,
                         testing::Values(Generation::E1, Generation::E2, Generation::E3));

TEST_P(CoprocessorOfEveryGeneration, CopiesDisplayListWordsAndCountsThem) {
    Host host(GetParam());
    host.boot();
    host.send({cmd::dlStart, 0x02123456, 0x26000007});
    EXPECT_EQ(host.read16(host.at.cmdDl()), 8);
    EXPECT_EQ(host.read32(host.at.ramDl()), 0x02123456U);
    EXPECT_EQ(host.read32(host.at.ramDl() + 4), 0x26000007U);
    EXPECT_EQ(host.read16(host.at.cmdRead()), 12);
}

TEST_P(CoprocessorOfEveryGeneration, StartsNoListWhileASwapIsPending) {
    Host host(GetParam());
    host.bootWithPanel();
    host.send({cmd::dlStart, 0x02FF0000, 0x26000007, 0, cmd::swap, cmd::dlStart, 0x020000FF,
               0x26000007, 0, cmd::swap});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 20) << "waits at the second DLSTART";
    EXPECT_EQ(host.chip.listsSwapped(), 0U);
    host.waitFrames(1);
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.chip.frame().picture.at(0, 0), 0xFFFF0000);
    host.waitFrames(1);
    EXPECT_EQ(host.chip.frame().picture.at(0, 0), 0xFF0000FF);
}

TEST_P(CoprocessorOfEveryGeneration, TakesACommandThatComesInPieces) {
    Host host(GetParam());
    host.boot();
    host.send({cmd::dlStart, cmd::memSet});
    EXPECT_TRUE(host.ringIsEmpty()) << "words are taken as they come";
    host.send({1000});
    host.send({0x5A});
    host.send({4});
    EXPECT_EQ(host.read32(1000), 0x5A5A5A5AU);
}

TEST_P(CoprocessorOfEveryGeneration, ReadsOnAtTheStartOfTheRing) {
    Host host(GetParam());
    host.boot();
    host.send(V(1020, 0x26000007)); // 4080 bytes
    host.send({cmd::dlStart, cmd::memSet, 2000, 0x77, 8, 0x26000001});
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read16(host.at.cmdWrite()), 8);
    EXPECT_EQ(host.read32(2004), 0x77777777U);
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4);
}

TEST_P(CoprocessorOfEveryGeneration, RunsOnlyWhatTheWritePointerCovers) {
    Host host(GetParam());
    host.boot();
    host.write32(host.at.ramCmd(), 0x26000007);
    EXPECT_EQ(host.read16(host.at.cmdDl()), 0);
    host.write16(host.at.cmdWrite(), 4);
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4);
}

TEST_P(CoprocessorOfEveryGeneration, AnUnknownCommandIsAFaultAndAComplaint) {
    Host host(GetParam());
    host.boot();
    host.send({cmd::dlStart, 0xFFFFFF5E, 0x26000007});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
    EXPECT_TRUE(host.seen.complainedAbout("unknown command"));
    host.send({0x26000007});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF) << "nothing runs after a fault";
    EXPECT_EQ(host.read16(host.at.cmdDl()), 0);
}

TEST_P(CoprocessorOfEveryGeneration, RunsAgainAfterAReset) {
    Host host(GetParam());
    host.boot();
    host.send({0xFF123456});
    ASSERT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
    host.write8(host.at.cpuReset(), 1);
    host.write16(host.at.cmdRead(), 0);
    host.write16(host.at.cmdWrite(), 0);
    host.write8(host.at.cpuReset(), 0);
    EXPECT_TRUE(host.ringIsEmpty());
    host.write32(host.at.ramCmd(), cmd::dlStart);
    host.write32(host.at.ramCmd() + 4, 0x26000007);
    host.write16(host.at.cmdWrite(), 8);
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4);
}

TEST_P(CoprocessorOfEveryGeneration, AListThatIsTooLongIsAFault) {
    Host host(GetParam());
    host.boot();
    host.send({cmd::dlStart});
    host.send(V(1023, 0x26000007));
    host.send(V(1023, 0x26000007));
    host.send({0x26000007, 0x26000007});
    EXPECT_TRUE(host.ringIsEmpty()) << "2048 words fit";
    host.send({0x26000007});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
    EXPECT_TRUE(host.seen.complainedAbout("display list overflow"));
}

TEST_P(CoprocessorOfEveryGeneration, AFullListCanBeStartedAnew) {
    Host host(GetParam());
    host.boot();
    host.send({cmd::dlStart});
    host.send(V(1020, 0x26000007));
    host.send(V(1020, 0x26000007));
    host.send(V(8, 0x26000007));
    host.send({cmd::dlStart, 0x26000007});
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4);
}

TEST(Coprocessor, TheThirdGenerationSaysWhyItFailed) {
    Host host(Generation::E3);
    host.boot();
    host.send({cmd::text, pair(0, 0), pair(50, 0), 0});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0xFFF);
    const std::vector<std::uint8_t> bytes = host.read(0x309800, 128);
    const std::string text(bytes.begin(), bytes.begin() + 16);
    EXPECT_EQ(text, std::string("TEXT: no font 50"));
    EXPECT_EQ(bytes[127], 0);
}

TEST(Coprocessor, CommandsOfLaterGenerationsDoNotExistEarlier) {
    struct First {
        std::uint32_t command;
        Generation generation;
    };
    constexpr Generation E1 = Generation::E1;
    constexpr Generation E2 = Generation::E2;
    constexpr Generation E3 = Generation::E3;
    for (const First& first :
         {First{cmd::snapshot, E1},      First{cmd::loadImage, E1},   First{cmd::gradColor, E1},
          First{cmd::setRotate, E2},     First{cmd::snapshot2, E2},   First{cmd::mediaFifo, E2},
          First{cmd::setBitmap, E2},     First{cmd::romFont, E2},     First{cmd::setScratch, E2},
          First{cmd::flashErase, E3},    First{cmd::flashWrite, E3},  First{cmd::flashRead, E3},
          First{cmd::flashUpdate, E3},   First{cmd::flashDetach, E3}, First{cmd::flashAttach, E3},
          First{cmd::flashFast, E3},     First{cmd::flashSpiTx, E3},  First{cmd::flashSpiRx, E3},
          First{cmd::flashSpiDesel, E3}, First{cmd::flashSource, E3}, First{cmd::inflate2, E3},
          First{cmd::gradientA, E3},     First{cmd::fillWidth, E3},   First{cmd::appendF, E3}}) {
        for (const Generation generation : {E1, E2, E3}) {
            Host host(generation);
            host.boot();
            host.send({first.command});
            EXPECT_EQ(host.read16(host.at.cmdRead()) == 0xFFF, generation < first.generation)
                << std::hex << first.command << " on E" << static_cast<int>(generation) + 1;
        }
    }
}

TEST(Coprocessor, ACommandThatIsNotModelledIsTakenAndComplainedAbout) {
    Host host(Generation::E3);
    host.boot();
    host.send({cmd::dlStart, cmd::animDraw, 3, 0x26000007});
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4);
    EXPECT_TRUE(host.seen.complainedAbout("ANIMDRAW is not modelled"));
}

TEST(Coprocessor, VideoIsTakenToItsEndAndComplainedAbout) {
    Host host(Generation::E3);
    host.boot();
    host.send({cmd::dlStart, 0xFFFFFF3A, 0});
    host.sendBytes({'R', 'I', 'F', 'F', 3, 0, 0, 0, 1, 2, 3, 0});
    host.send({0x26000007});
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4);
    EXPECT_TRUE(host.seen.complainedAbout("PLAYVIDEO is not modelled"));
}

TEST(Coprocessor, WordsCanBeFedThroughARegister) {
    Host host(Generation::E3);
    host.boot();
    EXPECT_EQ(host.read16(0x302574), 4092);
    host.write(0x302578, {0x00, 0xFF, 0xFF, 0xFF, 0x07, 0x00, 0x00, 0x26});
    EXPECT_EQ(host.read16(host.at.cmdWrite()), 8);
    EXPECT_EQ(host.read16(host.at.cmdDl()), 4);
    EXPECT_EQ(host.read16(0x302574), 4092);
}

TEST(Coprocessor, AFullRingRefusesFedWords) {
    Host host(Generation::E2);
    host.bootWithPanel();
    host.send({cmd::swap, cmd::dlStart}); // waits
    const std::size_t free = host.read16(0x302574);
    EXPECT_EQ(free, 4088U);
    host.write(0x302578, std::vector<std::uint8_t>(free));
    EXPECT_EQ(host.read16(0x302574), 0);
    const std::uint16_t before = host.read16(host.at.cmdWrite());
    host.write32(0x302578, 0);
    EXPECT_EQ(host.read16(host.at.cmdWrite()), before);
    EXPECT_TRUE(host.seen.complainedAbout("full ring"));
}

TEST(Coprocessor, HeldInResetItTakesNothing) {
    Host host(Generation::E3);
    host.boot();
    host.write8(host.at.cpuReset(), 1);
    host.send({cmd::dlStart, 0x26000007});
    EXPECT_EQ(host.read16(host.at.cmdRead()), 0);
    host.write8(host.at.cpuReset(), 0);
    EXPECT_TRUE(host.ringIsEmpty());
}

TEST(Coprocessor, CanBeMadeToHang) {
    Host host(Generation::E3);
    host.boot();
    host.chip.setCoprocessorStalled(true);
    host.send({cmd::dlStart, 0x26000007});
    host.wait(1000 * ms);
    EXPECT_FALSE(host.ringIsEmpty());
    host.chip.setCoprocessorStalled(false);
    EXPECT_TRUE(host.ringIsEmpty());
}

TEST(Coprocessor, TellsWhenTheRingIsEmpty) {
    Host host(Generation::E3);
    host.boot();
    host.read8(host.at.intFlags());
    host.send({0x2D000000});
    EXPECT_EQ(host.read8(host.at.intFlags()) & 0x20, 0x20);
}

} // namespace
