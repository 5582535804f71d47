#include "cplatform.h"
#include "linefailure.h"
#include "program.h"
#include "recordingwires.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <unistd.h>

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<useconds_t> sleeps;

std::string firstLineOf(const std::string& path) {
    std::string line;
    std::getline(std::ifstream(path), line);
    return line;
}

} // namespace

// In place of the C library's: keeps the microseconds instead of sleeping.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier): the header's name
int usleep(useconds_t __useconds) {
    sleeps.push_back(__useconds);
    return 0;
}

namespace {

// Platform is one per process, so all these tests share it and its board, also when they are
// repeated.
class PlatformTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (virtualBoard) {
            showBoardAgain();
            return;
        }
        wires = std::make_unique<RecordingWires>();
        virtualBoard = std::make_unique<board::VirtualBoard>(*wires);
        Platform::getInstance();
        virtualBoard->sync();
        logOfConstruction = wires->log();
    }

    PlatformTest() {
        platform_spi_init();
        wires->clear();
    }

    ~PlatformTest() override {
        virtualBoard->setTransfersFail(false);
        platform_spi_deinit();
    }

    static std::vector<std::string> log() {
        virtualBoard->sync();
        return wires->log();
    }

    inline static std::unique_ptr<RecordingWires> wires;
    inline static std::unique_ptr<board::VirtualBoard> virtualBoard;
    inline static std::vector<std::string> logOfConstruction;

private:
    // This process has seen other tests' boards since.
    static void showBoardAgain() {
        for (const auto& [name, value] : virtualBoard->environment()) {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
};

TEST_F(PlatformTest, DeselectsTheControllerAndLeavesItsPowerAloneWhenBuilt) {
    EXPECT_THAT(logOfConstruction, ElementsAre("CS 1"));
}

TEST_F(PlatformTest, IsOneObject) {
    EXPECT_EQ(Platform::getInstance(), Platform::getInstance());
    EXPECT_EQ(platform_init(), 0);
    EXPECT_EQ(Platform::getInstance()->platform_init(), 0);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(PlatformTest, HasTheControllersWiring) {
    const Platform* platform = Platform::getInstance();
    for (const cGPIO* line : {platform->gpioPD(), platform->gpioINT(), platform->gpioCS()}) {
        EXPECT_EQ(line->base(), 745U);
    }
    EXPECT_EQ(platform->gpioPD()->pin(), 54U);
    EXPECT_EQ(platform->gpioINT()->pin(), 55U);
    EXPECT_EQ(platform->gpioCS()->pin(), 56U);
    EXPECT_EQ(platform->spi()->mode(), 0U);
    EXPECT_EQ(platform->spi()->speed(), 20000000U);
    EXPECT_EQ(platform->spi()->bitsPerWord(), 8U);
    EXPECT_FALSE(platform->spi()->isCSAlwaysDown());
}

TEST_F(PlatformTest, SetsTheDirectionsOfTheLines) {
    const std::string lines = virtualBoard->root() + "/sys/class/gpio/gpio";
    EXPECT_EQ(firstLineOf(lines + "799/direction"), "out");
    EXPECT_EQ(firstLineOf(lines + "800/direction"), "in");
    EXPECT_EQ(firstLineOf(lines + "801/direction"), "out");
}

TEST_F(PlatformTest, DrivesChipSelectAndPowerDown) {
    platform_gpio_value(GPIO_CS, GPIO_LOW);
    platform_gpio_value(GPIO_PD, GPIO_LOW);
    platform_gpio_value(GPIO_PD, GPIO_HIGH);
    platform_gpio_value(GPIO_CS, GPIO_HIGH);
    EXPECT_THAT(log(), ElementsAre("CS 0", "PD 0", "PD 1", "CS 1"));
}

TEST_F(PlatformTest, OnlyOneMeansHigh) {
    platform_gpio_value(GPIO_PD, static_cast<gpio_val>(2));
    platform_gpio_value(GPIO_CS, static_cast<gpio_val>(3));
    EXPECT_THAT(log(), ElementsAre("PD 0", "CS 0"));
}

TEST_F(PlatformTest, OtherNamesTouchNoLine) {
    for (const int name : {0, 20, 22, 23, 25, 31}) {
        platform_gpio_value(static_cast<gpio_name>(name), GPIO_HIGH);
    }
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(PlatformTest, SleepsMilliseconds) {
    sleeps.clear();
    platform_sleep_ms(0);
    platform_sleep_ms(20);
    EXPECT_THAT(sleeps, ElementsAre(0, 20000));
}

TEST_F(PlatformTest, ExchangesAByteInOneMessage) {
    EXPECT_EQ(platform_spi_send_recv_byte(0x80), RecordingWires::answer);
    EXPECT_THAT(log(), ElementsAre("exchanges 80"));
}

TEST_F(PlatformTest, SendsDataInOneMessage) {
    std::array<unsigned char, 3> data{0xB0, 0x20, 0x00};
    platform_spi_send_data(data.data(), 3);
    EXPECT_THAT(log(), ElementsAre("sends b02000"));
}

TEST_F(PlatformTest, ReceivesDataInOneMessage) {
    std::array<unsigned char, 3> data{1, 2, 3};
    platform_spi_recv_data(data.data(), 2);
    EXPECT_THAT(data, ElementsAre(RecordingWires::answer, RecordingWires::answer, 3));
    EXPECT_THAT(log(), ElementsAre("receives 2"));
}

TEST_F(PlatformTest, MessagesOfNoBytesAreMessages) {
    unsigned char none = 0;
    platform_spi_send_data(&none, 0);
    platform_spi_recv_data(&none, 0);
    EXPECT_THAT(log(), ElementsAre("sends ", "receives 0"));
}

TEST_F(PlatformTest, LeavesChipSelectToItsCaller) {
    std::array<unsigned char, 2> data{};
    platform_spi_send_data(data.data(), 2);
    platform_spi_recv_data(data.data(), 2);
    platform_spi_send_recv_byte(0);
    EXPECT_THAT(log(), ElementsAre("sends 0000", "receives 2", "exchanges 00"));
}

TEST_F(PlatformTest, FailedTransfersReadAsZeros) {
    virtualBoard->setTransfersFail(true);
    std::array<unsigned char, 3> data{1, 2, 3};
    EXPECT_EQ(platform_spi_send_recv_byte(0xFF), 0);
    platform_spi_recv_data(data.data(), 3);
    EXPECT_THAT(data, Each(0));
    platform_spi_send_data(data.data(), 3);
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(PlatformTest, OpensTheDeviceAgainAfterClosingIt) {
    platform_spi_deinit();
    EXPECT_EQ(platform_spi_send_recv_byte(1), 0);
    platform_spi_init();
    EXPECT_EQ(platform_spi_send_recv_byte(1), RecordingWires::answer);
}

// What ends the program, seen from outside

TEST(PlatformOnABoardWithFaults, MissingSpiNodeEndsTheProgramAndLeavesNoFileBehind) {
    RecordingWires wires;
    board::Options options;
    options.spiNode = false;
    const board::VirtualBoard virtualBoard(wires, options);
    EXPECT_EQ(runOnBoard(virtualBoard.environment(), {"init", "open"}),
              "can't open device\n/dev/spidev2.0: No such file or directory; the kernel's spidev "
              "driver must be bound to device 0 of SPI bus 2, for example by the device tree\n"
              "status 1");
    EXPECT_FALSE(std::filesystem::exists(virtualBoard.root() + "/dev/spidev2.0"));
    EXPECT_FALSE(std::filesystem::exists("/dev/spidev2.0"));
}

TEST(PlatformOnABoardWithFaults, MissingExportFileEndsTheProgram) {
    RecordingWires wires;
    board::Options options;
    options.gpioExport = false;
    const board::VirtualBoard virtualBoard(wires, options);
    EXPECT_EQ(runOnBoard(virtualBoard.environment(), {"init"}),
              lineFailure("Can't open /sys/class/gpio/export file", "/sys/class/gpio/export"));
}

TEST(PlatformOnABoardWithFaults, LinesThatAreExportedAlreadyDoNotMatter) {
    RecordingWires wires;
    board::Options options;
    options.linesAlreadyExported = true;
    const board::VirtualBoard virtualBoard(wires, options);
    EXPECT_EQ(runOnBoard(virtualBoard.environment(), {"init", "open", "byte=x"}), "5a\n");
}

class PlatformLineFileTest : public testing::TestWithParam<const char*> {};

TEST_P(PlatformLineFileTest, MissingFileOfALineEndsTheProgram) {
    RecordingWires wires;
    const board::VirtualBoard virtualBoard(wires);
    ASSERT_TRUE(std::filesystem::remove(virtualBoard.root() + "/sys/class/gpio/" + GetParam()));
    const std::string kind = std::filesystem::path(GetParam()).filename();
    EXPECT_EQ(runOnBoard(virtualBoard.environment(), {"init"}),
              lineFailure("Can't open /sys/class/gpio/gpio%1/" + kind,
                          std::string("/sys/class/gpio/") + GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Lines, PlatformLineFileTest,
                         testing::Values("gpio799/value", "gpio800/value", "gpio801/value",
                                         "gpio799/direction", "gpio800/direction",
                                         "gpio801/direction"));

} // namespace
