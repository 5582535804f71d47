#include "bytes.h"
#include "serialflash.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using controller::SerialFlash;
using controllertest::Bytes;
using testing::ElementsAre;

class SerialFlashTest : public testing::Test {
protected:
    // One command; what comes back while `extra` more bytes go out.
    Bytes command(const Bytes& sent, std::size_t extra = 0) {
        for (const std::uint8_t byte : sent) {
            flash.exchange(byte);
        }
        Bytes received;
        for (std::size_t i = 0; i < extra; ++i) {
            received.push_back(flash.exchange(0));
        }
        flash.deselect();
        return received;
    }
    SerialFlash flash{131072};
};

TEST_F(SerialFlashTest, IsErasedWhenNew) {
    EXPECT_EQ(flash.content(), Bytes(131072, 0xFF));
}

TEST_F(SerialFlashTest, IdentifiesItselfWithItsSize) {
    EXPECT_THAT(command({0x9F}, 4), ElementsAre(0x7F, 0x01, 17, 0));
}

TEST_F(SerialFlashTest, ProgramsOnlyWhenWritingIsEnabled) {
    command({0x02, 0, 0, 0, 0x00});
    EXPECT_EQ(flash.read(0), 0xFF);
    EXPECT_THAT(command({0x05}, 1), ElementsAre(0));
    command({0x06});
    EXPECT_THAT(command({0x05}, 1), ElementsAre(2));
    command({0x04});
    EXPECT_THAT(command({0x05}, 1), ElementsAre(0));
    command({0x06});
    command({0x02, 0, 0, 0, 0x0F});
    EXPECT_EQ(flash.read(0), 0x0F);
    EXPECT_THAT(command({0x05}, 1), ElementsAre(0)) << "disabled again by itself";
}

TEST_F(SerialFlashTest, ProgrammingWrapsInsideThePage) {
    command({0x06});
    command({0x02, 0x00, 0x01, 0xFF, 1, 2});
    EXPECT_EQ(flash.read(0x1FF), 1);
    EXPECT_EQ(flash.read(0x100), 2);
    EXPECT_EQ(flash.read(0x200), 0xFF);
}

TEST_F(SerialFlashTest, OfMoreThanAPageTheLastBytesCount) {
    command({0x06});
    Bytes program = {0x02, 0x00, 0x01, 0x10};
    program.insert(program.end(), 256, 0);
    program.insert(program.end(), {1, 2});
    command(program);
    EXPECT_EQ(flash.read(0x10F), 0);
    EXPECT_EQ(flash.read(0x110), 1);
    EXPECT_EQ(flash.read(0x111), 2);
    EXPECT_EQ(flash.read(0x112), 0);
}

TEST_F(SerialFlashTest, ErasesSectorsBlocksAndAll) {
    const auto soil = [this] {
        for (std::uint8_t& byte : flash.content()) {
            byte = 0;
        }
        command({0x06});
    };
    soil();
    command({0x20, 0x00, 0x12, 0x34});
    EXPECT_EQ(flash.read(0x0FFF), 0);
    EXPECT_EQ(flash.read(0x1000), 0xFF);
    EXPECT_EQ(flash.read(0x1FFF), 0xFF);
    EXPECT_EQ(flash.read(0x2000), 0);
    soil();
    command({0xD8, 0x01, 0x00, 0x00});
    EXPECT_EQ(flash.read(0xFFFF), 0);
    EXPECT_EQ(flash.read(0x10000), 0xFF);
    soil();
    command({0xC7});
    EXPECT_EQ(flash.content(), Bytes(131072, 0xFF));
}

TEST_F(SerialFlashTest, AnEraseCutShortDoesNothing) {
    flash.content()[0] = 0;
    command({0x06});
    command({0x20, 0x00});
    EXPECT_EQ(flash.read(0), 0);
}

TEST_F(SerialFlashTest, UpdatesOnlyASectorThatDiffers) {
    const Bytes sector(SerialFlash::sectorSize, 0x11);
    flash.updateSector(4096, sector.data());
    EXPECT_EQ(flash.sectorsErased(), 1U);
    flash.updateSector(4096, sector.data());
    EXPECT_EQ(flash.sectorsErased(), 1U);
    flash.content()[5000] = 0;
    flash.updateSector(4096, sector.data());
    EXPECT_EQ(flash.sectorsErased(), 2U);
    EXPECT_EQ(flash.read(5000), 0x11);
}

TEST_F(SerialFlashTest, AddressesBeyondTheChipDoNoHarm) {
    const Bytes sector(SerialFlash::sectorSize, 0x11);
    flash.updateSector(131072, sector.data());
    flash.program(131072, 0);
    flash.erase(131072, 4096);
    flash.erase(0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(flash.read(131072), 0xFF);
    command({0x06});
    command({0x02, 0xFF, 0xFF, 0xFF, 1, 2, 3});
    EXPECT_THAT(command({0x03, 0xFF, 0xFF, 0xFF}, 2), ElementsAre(0xFF, 0xFF));
}

TEST(SerialFlash, AMissingChipAnswersNothing) {
    SerialFlash none(0);
    EXPECT_FALSE(none.isFitted());
    EXPECT_EQ(none.exchange(0x9F), 0xFF);
    EXPECT_EQ(none.exchange(0), 0xFF);
    none.deselect();
    EXPECT_EQ(none.read(0), 0xFF);
}

} // namespace
