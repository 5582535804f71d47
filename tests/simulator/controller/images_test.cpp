#include "bytes.h"
#include "host.h"
#include "imagefiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zlib.h>

namespace {

using namespace controllertest;
using testing::ElementsAre;
using testing::SizeIs;
using V = std::vector<std::uint32_t>;

constexpr std::uint32_t noList = 2;
constexpr std::uint32_t mediaFifo = 16;
constexpr std::uint32_t fifoRead = 0x309014;
constexpr std::uint32_t fifoWrite = 0x309018;

// LOADIMAGE and the media FIFO.
class Images : public testing::Test {
protected:
    Images() { host.boot(); }

    void load(const Bytes& file, std::uint32_t address, std::uint32_t options) {
        load(host, file, address, options);
    }
    static void load(Host& on, const Bytes& file, std::uint32_t address, std::uint32_t options) {
        on.send({cmd::dlStart, cmd::loadImage, address, options});
        on.sendBytes(file);
        on.wait(10 * ms);
    }
    bool isFault(const std::string& why) {
        return host.read16(host.at.cmdRead()) == 0xFFF && host.seen.complainedAbout(why);
    }
    V results(std::uint32_t command, std::size_t count) {
        const std::uint32_t start = host.read16(host.at.cmdWrite());
        host.send(V{command} + V(count, 0xEEEEEEEE));
        V found;
        for (std::uint32_t i = 0; i < count; ++i) {
            found.push_back(host.read32(host.at.ramCmd() + ((start + 4 + 4 * i) & 0xFFC)));
        }
        return found;
    }
    void startFifo(std::uint32_t base, std::uint32_t size) {
        host.send({cmd::mediaFifo, base, size});
    }

    Host host{Generation::E3};
};

TEST_F(Images, AGreyPngBecomesL8) {
    load(pngFile({2, 2, png::grey, {0x10, 0x20, 0x30, 0x40}}), 1000, noList);
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_THAT(host.read(1000, 5), ElementsAre(0x10, 0x20, 0x30, 0x40, 0));
    EXPECT_TRUE(host.seen.complaints.empty());
}

TEST_F(Images, AColourPngBecomesRgb565) {
    load(pngFile({2, 1, png::rgb, {0xFF, 0x00, 0x08, 0x00, 0xFC, 0xF8}}), 1000, noList);
    EXPECT_EQ(host.read16(1000), 0xF801);
    EXPECT_EQ(host.read16(1002), 0x07FF);
}

TEST_F(Images, APngWithAlphaBecomesArgb4) {
    load(pngFile({1, 1, png::rgba, {0x12, 0x34, 0x56, 0x78}}), 1000, noList);
    EXPECT_EQ(host.read16(1000), 0x7135);
    load(pngFile({1, 1, png::greyAlpha, {0x50, 0xA0}}), 1000, noList);
    EXPECT_EQ(host.read16(1000), 0xA555);
}

TEST_F(Images, APngWithAPaletteHasItsTableInFront) {
    const Bytes colors = {0xFF, 0, 0, 0, 0xFF, 0};
    load(pngFile({2, 1, png::palette, {1, 0}, colors}), 1000, 0);
    EXPECT_EQ(host.read16(1000), 0xF800);
    EXPECT_EQ(host.read16(1002), 0x07E0);
    EXPECT_THAT(host.read(1000 + 512, 2), ElementsAre(1, 0));
    EXPECT_THAT(host.listWritten(), ElementsAre(0x2A000000 | 1000, 0x01000000 | 1512,
                                                0x07000000 | 14 << 19 | 2 << 9 | 1,
                                                0x08000000 | 2 << 9 | 1, 0x28000000, 0x29000000));
    load(pngFile({2, 1, png::palette, {1, 0}, colors, {0x80}}), 1000, noList);
    EXPECT_EQ(host.read16(1000), 0x8F00);
    EXPECT_EQ(host.read16(1002), 0xF0F0);
}

TEST_F(Images, AJpegBecomesRgb565OrWithTheOptionL8) {
    const Bytes red(3 * 64, 0);
    Bytes samples = red;
    for (std::size_t i = 0; i < samples.size(); i += 3) {
        samples[i] = 0xF8;
    }
    load(jpegFile(8, 8, samples), 1000, noList);
    EXPECT_NEAR(host.read16(1000 + 2 * 63) >> 11, 0x1F, 1);
    EXPECT_NEAR(host.read16(1000) & 0x1F, 0, 1);
    load(jpegFile(8, 8, Bytes(64, 0x60)), 2000, noList | 1);
    EXPECT_NEAR(host.read8(2000), 0x60, 1);
    EXPECT_NEAR(host.read8(2063), 0x60, 1);
    EXPECT_EQ(host.read8(2064), 0);
    EXPECT_TRUE(host.seen.complaints.empty());
}

TEST_F(Images, TheWordsForTheCurrentHandleAreAdded) {
    load(pngFile({300, 2, png::rgb, Bytes(1800)}), 4000, 0);
    EXPECT_THAT(host.listWritten(),
                ElementsAre(0x01000000 | 4000, 0x07000000 | 7 << 19 | 600 << 9 | 2,
                            0x08000000 | 300 << 9 | 2, 0x28000000, 0x29000000));
    load(pngFile({300, 2, png::rgb, Bytes(1800)}), 4000, noList);
    EXPECT_THAT(host.listWritten(), SizeIs(0));
}

TEST_F(Images, FullScreenScalesInPowersOfTwo) {
    load(pngFile({100, 60, png::grey, Bytes(6000)}), 4000, 8);
    // 480 x 272: four times.
    EXPECT_THAT(host.listWritten(),
                ElementsAre(0x01000000 | 4000, 0x07000000 | 3 << 19 | 100 << 9 | 60,
                            0x08000000 | 400 << 9 | 240, 0x28000000, 0x29000000, 0x15000000 | 64,
                            0x19000000 | 64));
}

TEST_F(Images, FullScreenMayFitExactly) {
    load(pngFile({240, 9, png::grey, Bytes(2160)}), 4000, 8);
    EXPECT_EQ(host.listWritten()[2], 0x08000000U | 480U << 9U | 18U);
    load(pngFile({9, 136, png::grey, Bytes(1224)}), 4000, 8);
    EXPECT_EQ(host.listWritten()[2], 0x08000000U | 18U << 9U | 272U);
}

TEST_F(Images, PropertiesAndPointerAreThoseOfTheLastOne) {
    EXPECT_EQ(results(cmd::getProps, 3), (V{0, 0, 0}));
    load(pngFile({3, 2, png::rgb, Bytes(18)}), 4000, noList);
    EXPECT_EQ(results(cmd::getProps, 3), (V{4000, 3, 2}));
    EXPECT_EQ(results(cmd::getPtr, 1), V{4012});
}

TEST_F(Images, AColdStartForgetsTheLastOneAndTheMediaFifo) {
    startFifo(0x8000, 1024);
    load(pngFile({3, 2, png::rgb, Bytes(18)}), 4000, noList);
    host.send({cmd::coldStart});
    EXPECT_EQ(results(cmd::getProps, 3), (V{0, 0, 0}));
    host.send({cmd::loadImage, 1000, mediaFifo});
    EXPECT_TRUE(isFault("there is no media FIFO"));
}

TEST_F(Images, CommandsGoOnBehindTheFilesLastWord) {
    const Bytes file = pngFile({1, 1, png::grey, {7}});
    load(file, 4000, noList);
    host.send({0x26000007});
    EXPECT_THAT(host.listWritten(), ElementsAre(0x26000007));
    load(jpegFile(8, 8, Bytes(64, 9)), 4000, noList);
    host.send({0x26000007});
    EXPECT_THAT(host.listWritten(), ElementsAre(0x26000007));
}

TEST_F(Images, WhatIsNoImageIsAFault) {
    load({1, 2, 3, 4}, 0, 0);
    EXPECT_TRUE(isFault("LOADIMAGE: neither JPEG nor PNG"));
}

TEST_F(Images, ADamagedPngIsAFault) {
    Bytes file = pngFile({8, 8, png::grey, Bytes(64, 5)});
    file[file.size() - 22] ^= 1U; // in the pixels' checksum or data
    load(file, 0, 0);
    EXPECT_TRUE(isFault("damaged PNG"));
}

TEST_F(Images, APngWithTooFewLinesIsAFault) {
    PngParts parts{8, 8, png::grey, Bytes(64, 5)};
    parts.height = 4;
    Bytes file = pngFile(parts);
    file[23] = 8; // of the height; its checksum is made right
    const std::uint32_t sum = static_cast<std::uint32_t>(crc32(0, &file[12], 17));
    for (int i = 0; i < 4; ++i) {
        file[static_cast<std::size_t>(29 + i)] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
    }
    load(file, 0, 0);
    EXPECT_TRUE(isFault("damaged PNG"));
}

TEST_F(Images, APngOfAnotherDepthIsAFault) {
    load(pngFile({1, 1, png::grey, {1, 2}, {}, {}, 16}), 0, 0);
    EXPECT_TRUE(isFault("PNG is not eight bits deep"));
}

TEST_F(Images, ADamagedJpegIsAFault) {
    Bytes file = jpegFile(32, 32, Bytes(1024, 50));
    file.erase(file.end() - 12, file.end() - 2);
    load(file, 0, 0);
    EXPECT_TRUE(isFault("damaged JPEG"));
}

TEST_F(Images, AProgressiveJpegIsAFault) {
    load(jpegFile(16, 16, Bytes(256, 50), true), 0, 0);
    EXPECT_TRUE(isFault("JPEG is not a baseline one"));
}

TEST_F(Images, AnImageThatDoesNotFitMemoryIsAFault) {
    load(pngFile({64, 64, png::grey, Bytes(4096, 1)}), 0x100000 - 4095, noList);
    EXPECT_TRUE(isFault("image does not fit general memory"));
    EXPECT_EQ(host.read8(0xFFFFF), 0) << "nothing is stored";
}

TEST_F(Images, AnImageOfGreatSizeIsRefusedBeforeItIsUnpacked) {
    const std::int64_t before = host.chip.coprocessorWork();
    PngParts parts{20'000, 20'000, png::grey, {}};
    load(pngFile(parts), 0, noList);
    EXPECT_TRUE(isFault("image does not fit general memory"));
    EXPECT_LT(host.chip.coprocessorWork() - before, 5'000'000);
}

TEST_F(Images, TheFirstGenerationKnowsJpegOnly) {
    Host e1(Generation::E1);
    e1.boot();
    load(e1, jpegFile(8, 8, Bytes(64, 0x60)), 1000, noList | 1);
    EXPECT_NEAR(e1.read8(1000), 0x60, 1);
    load(e1, pngFile({1, 1, png::grey, {7}}), 1000, noList);
    EXPECT_EQ(e1.read16(e1.at.cmdRead()), 0xFFF);
    EXPECT_TRUE(e1.seen.complainedAbout("E1 loads no PNG"));
}

TEST_F(Images, ImagesInFlashAreComplainedAbout) {
    host.send({cmd::dlStart, cmd::loadImage, 0, 64, 0x26000007});
    EXPECT_THAT(host.listWritten(), ElementsAre(0x26000007));
    EXPECT_TRUE(host.seen.complainedAbout("LOADIMAGE: images in flash are not modelled"));
}

TEST_F(Images, TheMediaFifoIsARingInMemory) {
    startFifo(0x8000, 64);
    EXPECT_EQ(host.read32(fifoRead), 0U);
    EXPECT_EQ(host.read32(0x30901C), 0x8000U);
    EXPECT_EQ(host.read32(0x309020), 64U);
    const Bytes file = pngFile({1, 1, png::grey, {7}});
    host.send({cmd::loadImage, 1000, noList | mediaFifo, cmd::memSet, 2000, 1, 1});
    std::uint32_t at = 0;
    for (const std::uint8_t byte : file) {
        EXPECT_EQ(host.read8(1000), 0) << "waits for the rest";
        EXPECT_EQ(host.read8(2000), 0);
        host.write8(0x8000 + at, byte);
        at = (at + 1) % 64;
        host.write32(fifoWrite, at);
        EXPECT_EQ(host.read32(fifoRead), at) << "what is there is taken";
    }
    EXPECT_EQ(host.read8(1000), 7);
    EXPECT_EQ(host.read8(2000), 1);
}

TEST_F(Images, BehindAFileInTheMediaFifoTheRestOfTheWordIsSkipped) {
    startFifo(0x8000, 1024);
    Bytes file = pngFile({1, 1, png::grey, {7}});
    const std::size_t length = (file.size() + 3) / 4 * 4;
    ASSERT_NE(file.size(), length);
    file.resize(length);
    const Bytes second = pngFile({1, 1, png::grey, {8}});
    file.insert(file.end(), second.begin(), second.end());
    host.write(0x8000, file);
    host.write32(fifoWrite, static_cast<std::uint32_t>(file.size()));
    host.send({cmd::loadImage, 1000, noList | mediaFifo});
    EXPECT_EQ(host.read32(fifoRead), length);
    host.send({cmd::loadImage, 1001, noList | mediaFifo});
    EXPECT_THAT(host.read(1000, 2), ElementsAre(7, 8));
}

TEST_F(Images, CompressedDataComeThroughTheMediaFifoToo) {
    startFifo(0x8000, 1024);
    const Bytes stream = compressed(Bytes(50, 9));
    host.write(0x8000, stream);
    host.write32(fifoWrite, static_cast<std::uint32_t>(stream.size()));
    host.send({cmd::inflate2, 1000, mediaFifo});
    EXPECT_TRUE(host.ringIsEmpty());
    EXPECT_EQ(host.read8(1049), 9);
    EXPECT_EQ(host.read8(1050), 0);
}

TEST_F(Images, WithoutAMediaFifoItsOptionIsAFault) {
    host.send({cmd::loadImage, 1000, mediaFifo});
    EXPECT_TRUE(isFault("there is no media FIFO"));
}

TEST_F(Images, AMediaFifoOutsideOfGeneralMemoryIsAFault) {
    startFifo(0x0FFFF0, 64);
    EXPECT_TRUE(isFault("media FIFO outside of general memory"));
}

} // namespace
