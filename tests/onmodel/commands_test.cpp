// Every coprocessor command of the application's library on every controller that has it, and
// commands of other generations on one that has not.

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "displaysettings.h"
#include "generationtable.h"
#include "onmodel.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <set>

namespace {

using controller::Generation;
using modelboard::controller;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using Host = Gpu_Hal_Context_t*;

constexpr std::uint32_t memory = 0x20000; // scratch area, in the general memory of all generations
constexpr std::uint32_t noAddress = 0;
constexpr std::uint32_t faultMark = 0xFFF;

constexpr Generation E1 = Generation::E1;
constexpr Generation E2 = Generation::E2;
constexpr Generation E3 = Generation::E3;

enum Model : std::uint8_t {
    Whole,   // carried out
    Lacking, // taken with its arguments, and complained about by name
};

using Sender = std::function<void(Host)>;

struct Command {
    const char* name; // behind "__CMD_"
    Generation since;
    Sender send;
    Model model = Whole;
};

template<class Type>
struct Same {
    using type = Type;
};

// Sends a command by its function of the library.
template<class... Parameters>
Sender call(void (*function)(Host, Parameters...), typename Same<Parameters>::type... arguments) {
    return [=](Host host) { function(host, arguments...); };
}

// The same, and what the command takes from the stream after its arguments.
Sender followedBy(const std::vector<std::uint32_t>& words, const Sender& send) {
    return [=](Host host) {
        send(host);
        for (const std::uint32_t word : words) {
            Gpu_Copro_SendCmd(host, word);
        }
    };
}

// The zlib stream of "abcd".
const std::vector<std::uint32_t> zlibStream = {0x4C4B9C78, 0x00014E4A, 0x8B01D803};
// A JPEG of one grey pixel.
const std::vector<std::uint32_t> smallestJpeg = {
    0xDBFFD8FF, 0x01004300, 0x01010101, 0x01010101, 0x01010101, 0x01010101, 0x01010101, 0x01010101,
    0x01010101, 0x01010101, 0x01010101, 0x01010101, 0x01010101, 0x01010101, 0x01010101, 0x01010101,
    0x01010101, 0xFF010101, 0x080B00C0, 0x01000100, 0x00110101, 0x1400C4FF, 0x00000100, 0x00000000,
    0x00000000, 0x00000000, 0xC4FF0000, 0x01101400, 0x00000000, 0x00000000, 0x00000000, 0x00000000,
    0x0800DAFF, 0x00000101, 0xFF3F003F, 0x000000D9};
// "RIFF" and how much follows.
const std::vector<std::uint32_t> emptyVideo = {0x46464952, 4, 0x20495641};
const std::vector<std::uint32_t> sixBytes = {0x04030201, 0x00000605};
const std::vector<std::uint32_t> pageOfFlash(64, 0x55555555);
const std::vector<std::uint8_t> bytesOfPage(256, 0x55);

// Functions that take what their text's format asks for.

void drawText(Host host) {
    Gpu_CoCmd_Text(host, 10, 20, 27, 0, "text");
}

void drawButton(Host host) {
    Gpu_CoCmd_Button(host, 10, 10, 100, 40, 27, 0, "button");
}

void drawToggle(Host host) {
    Gpu_CoCmd_Toggle(host, 10, 10, 80, 27, 0, 65535, "off\xFFon");
}

// Registry values are asked for when a command is sent: they depend on the controller.

void readIdentity(Host host) {
    Gpu_CoCmd_RegRead(host, EVE_REG("__REG_ID"), 0);
}

void drawFormattedText(Host host) {
    const auto format = static_cast<std::uint16_t>(EVE_REG("__OPT_FORMAT"));
    Gpu_CoCmd_Text(host, 10, 20, 27, format, "%d of %u", 3U, 4U);
}

void sketch(Host host) {
    Gpu_CoCmd_Sketch(host, 0, 0, 64, 64, memory, EVE_REG("__L8"));
}

void setBitmap(Host host) {
    Gpu_CoCmd_SetBitmap(host, memory, static_cast<std::uint16_t>(EVE_REG("__ARGB4")), 32, 32);
}

void takeSnapshot2(Host host) {
    Gpu_CoCmd_Snapshot2(host, EVE_REG("__ARGB4"), noAddress, 0, 0, 32, 32);
}

// The tables are in the order in which one test sends all of them to the same controller.

// clang-format off
const std::vector<Command> frameCommands = {
    {"DLSTART",   E1, call(Gpu_CoCmd_Dlstart)},
    {"SWAP",      E1, call(Gpu_CoCmd_Swap)},
    {"COLDSTART", E1, call(Gpu_CoCmd_ColdStart)},
    {"INTERRUPT", E1, call(Gpu_CoCmd_Interrupt, 10)},
    {"APPEND",    E1, call(Gpu_CoCmd_Append, memory, 16)},
    {"REGREAD",   E1, readIdentity},
    {"BGCOLOR",   E1, call(Gpu_CoCmd_BgColor, 0x102030)},
    {"FGCOLOR",   E1, call(Gpu_CoCmd_FgColor, 0x102030)},
    {"GRADCOLOR", E1, call(Gpu_CoCmd_GradColor, 0x102030)},
    {"SYNC",       E2, call(Gpu_CoCmd_Sync)},
    {"SETROTATE",  E2, call(Gpu_CoCmd_SetRotate, 0)},
    {"SETSCRATCH", E2, call(Gpu_CoCmd_SetScratch, 14)},
    {"INT_RAMSHARED",   E2, call(Gpu_CoCmd_Int_RAMShared, memory), Lacking},
    {"INT_RAMSHARED",   E3, call(Gpu_CoCmd_Int_RamShared, memory), Lacking},
    {"INT_SWLOADIMAGE", E2, call(Gpu_CoCmd_Int_SWLoadImage, memory, 0), Lacking},
    {"NOP",     E3, call(Gpu_CoCmd_Nop)},
    {"APPENDF", E3, call(Gpu_CoCmd_AppendF, 64, 0)},
};

const std::vector<Command> textCommands = {
    {"TEXT",       E1, drawText},
    {"TEXT",       E3, drawFormattedText},
    {"NUMBER",     E1, call(Gpu_CoCmd_Number, 10, 20, 27, 0, 1234)},
    {"SETBASE",    E2, call(Gpu_CoCmd_SetBase, 16)},
    {"FILLWIDTH",  E3, call(Gpu_CoCmd_FillWidth, 200)},
    {"SETFONT",    E1, call(Gpu_CoCmd_SetFont, 7, memory)},
    {"SETFONT2",   E2, call(Gpu_CoCmd_SetFont2, 7, memory, 32)},
    {"ROMFONT",    E2, call(Gpu_CoCmd_RomFont, 1, 33)},
    {"RESETFONTS", E3, call(Gpu_CoCmd_ResetFonts)},
};

const std::vector<Command> widgetCommands = {
    {"BUTTON",    E1, drawButton},
    {"TOGGLE",    E1, drawToggle},
    {"KEYS",      E1, call(Gpu_CoCmd_Keys, 10, 10, 200, 40, 27, 0, "12345")},
    {"GAUGE",     E1, call(Gpu_CoCmd_Gauge, 100, 100, 50, 0, 5, 4, 30, 100)},
    {"CLOCK",     E1, call(Gpu_CoCmd_Clock, 100, 100, 50, 0, 10, 8, 30, 0)},
    {"DIAL",      E1, call(Gpu_CoCmd_Dial, 100, 100, 50, 0, 0x8000)},
    {"SLIDER",    E1, call(Gpu_CoCmd_Slider, 10, 10, 100, 10, 0, 30, 100)},
    {"PROGRESS",  E1, call(Gpu_CoCmd_Progress, 10, 10, 100, 10, 0, 30, 100)},
    {"SCROLLBAR", E1, call(Gpu_CoCmd_Scrollbar, 10, 10, 100, 10, 0, 30, 20, 100)},
    {"GRADIENT",  E1, call(Gpu_CoCmd_Gradient, 0, 0, 0x000000, 480, 272, 0xFFFFFF)},
    {"GRADIENTA", E3, call(Gpu_CoCmd_GradientA, 0, 0, 0x80000000, 480, 272, 0xFFFFFFFF)},
};

const std::vector<Command> animationCommands = {
    {"SPINNER",     E1, call(Gpu_CoCmd_Spinner, 240, 136, 0, 0)},
    {"SCREENSAVER", E1, call(Gpu_CoCmd_ScreenSaver)},
    {"SKETCH",      E1, sketch},
    {"STOP",        E1, call(Gpu_CoCmd_Stop)},
    {"ANIMSTART",   E3, call(Gpu_CoCmd_AnimStart, 0, 4096, 0), Lacking},
    {"ANIMSTOP",    E3, call(Gpu_CoCmd_AnimStop, 0), Lacking},
    {"ANIMXY",      E3, call(Gpu_CoCmd_AnimXY, 0, 10, 20), Lacking},
    {"ANIMDRAW",    E3, call(Gpu_CoCmd_AnimDraw, 0), Lacking},
    {"ANIMFRAME",   E3, call(Gpu_CoCmd_AnimFrame, 10, 20, 4096, 0), Lacking},
};

const std::vector<Command> touchCommands = {
    {"CALIBRATE",       E1, call(Gpu_CoCmd_Calibrate, 0)},
    {"TRACK",           E1, call(Gpu_CoCmd_Track, 10, 10, 100, 20, 5)},
    {"TOUCH_TRANSFORM", E1, call(Gpu_CoCmd_TouchTransform,
                                 0, 0, 1000, 0, 0, 1000, 0, 0, 480, 0, 0, 272, 0)},
    {"GETPOINT",        E3, call(Gpu_CoCmd_GetPoint, 10, 20, 0, 0), Lacking},
};

const std::vector<Command> bitmapCommands = {
    {"LOADIDENTITY",     E1, call(Gpu_CoCmd_LoadIdentity)},
    {"TRANSLATE",        E1, call(Gpu_CoCmd_Translate, 65536, -65536)},
    {"SCALE",            E1, call(Gpu_CoCmd_Scale, 131072, 32768)},
    {"ROTATE",           E1, call(Gpu_CoCmd_Rotate, -8192)},
    {"SETMATRIX",        E1, call(Gpu_CoCmd_SetMatrix)},
    {"GETMATRIX",        E1, call(Gpu_CoCmd_GetMatrix, 0, 0, 0, 0, 0, 0)},
    {"BITMAP_TRANSFORM", E1, call(Gpu_CoCmd_BitmapTransform,
                                  0, 0, 64, 0, 0, 64, 0, 0, 32, 0, 0, 32, 0)},
    {"ROTATEAROUND",     E3, call(Gpu_CoCmd_RotateAround, 100, 100, 8192, 65536)},
    {"SETBITMAP",        E2, setBitmap},
    {"SNAPSHOT",         E1, call(Gpu_CoCmd_Snapshot, noAddress)},
    {"SNAPSHOT2",        E2, takeSnapshot2},
};

const std::vector<Command> memoryCommands = {
    {"INFLATE",     E1, followedBy(zlibStream, call(Gpu_CoCmd_Inflate, memory))},
    {"INFLATE2",    E3, followedBy(zlibStream, call(Gpu_CoCmd_Inflate2, memory, 0))},
    {"LOADIMAGE",   E1, followedBy(smallestJpeg, call(Gpu_CoCmd_LoadImage, memory, 0))},
    {"GETPTR",      E1, call(Gpu_CoCmd_GetPtr, 0)},
    {"GETPROPS",    E1, call(Gpu_CoCmd_GetProps, 0, 0, 0)},
    {"MEMWRITE",    E1, followedBy(sixBytes, call(Gpu_CoCmd_MemWrite, memory, 6))},
    {"MEMCPY",      E1, call(Gpu_CoCmd_Memcpy, memory, 0, 100)},
    {"MEMSET",      E1, call(Gpu_CoCmd_MemSet, memory, 0x55, 100)},
    {"MEMZERO",     E1, call(Gpu_CoCmd_MemZero, memory, 100)},
    {"MEMCRC",      E1, call(Gpu_CoCmd_MemCrc, memory, 100, 0)},
    {"MEDIAFIFO",   E2, call(Gpu_CoCmd_MediaFifo, memory, 4096)},
    {"PLAYVIDEO",   E2, followedBy(emptyVideo, call(Gpu_CoCmd_PlayVideo, 0)), Lacking},
    {"VIDEOSTART",  E2, call(Gpu_CoCmd_VideoStart), Lacking},
    {"VIDEOFRAME",  E2, call(Gpu_CoCmd_VideoFrame, memory, 0), Lacking},
    {"VIDEOSTARTF", E3, call(Gpu_CoCmd_VideoStartF), Lacking},
    {"SHA1",        E3, call(Gpu_CoCmd_Sha1, memory, 100, memory), Lacking},
};

const std::vector<Command> flashCommands = {
    {"FLASHERASE",  E3, call(Gpu_CoCmd_FlashErase)},
    {"FLASHWRITE",  E3, followedBy(pageOfFlash, call(Gpu_CoCmd_FlashWrite, 0, 256))},
    {"FLASHWRITE",  E3, call(Gpu_CoCmd_FlashWriteExt, 0, 256, bytesOfPage.data())},
    {"FLASHREAD",   E3, call(Gpu_CoCmd_FlashRead, memory, 0, 256)},
    {"FLASHUPDATE", E3, call(Gpu_CoCmd_FlashUpdate, 0, memory, 4096)},
    {"FLASHFAST",   E3, call(Gpu_CoCmd_FlashFast, 0)},
    {"FLASHATTACH", E3, call(Gpu_CoCmd_FlashAttach)},
    {"FLASHSOURCE", E3, call(Gpu_CoCmd_FlashSource, 4096)},
    {"CLEARCACHE",  E3, call(Gpu_CoCmd_ClearCache)},
    {"FLASHDETACH", E3, call(Gpu_CoCmd_FlashDetach)},
};

// Those that the flash must be detached for.
const std::vector<Command> flashSpiCommands = {
    {"FLASHSPIDESEL", E3, call(Gpu_CoCmd_FlashSpiDesel)},
    {"FLASHSPITX",    E3, followedBy({0x9F}, call(Gpu_CoCmd_FlashSpiTx, 1))},
    {"FLASHSPIRX",    E3, call(Gpu_CoCmd_FlashSpiRx, memory, 3)},
};
// clang-format on

// The commands that a controller of this generation has, in order, the flash's SPI apart.
std::vector<Command> commandsOf(Generation generation) {
    std::vector<Command> all;
    for (const auto* table : {&frameCommands, &textCommands, &widgetCommands, &animationCommands,
                              &touchCommands, &bitmapCommands, &memoryCommands, &flashCommands}) {
        std::copy_if(table->begin(), table->end(), std::back_inserter(all),
                     [=](const Command& command) { return command.since <= generation; });
    }
    return all;
}

std::uint32_t codeOf(const char* name) {
    return (*DisplaySettings::getInstance())[QStringLiteral("__CMD_") + QLatin1String(name)];
}

class CommandsOnModel : public OnModel, public testing::WithParamInterface<Generation> {
protected:
    void bringUpWithFlash() {
        controller::Options options;
        options.flashSize = 1048576;
        bringUp(GetParam(), options);
    }

    // Sends one command. True when the ring is empty afterwards and nothing has gone wrong that
    // was not meant to.
    void expectToBeTaken(const Command& command) {
        SCOPED_TRACE(command.name);
        const std::uint32_t start = host.cmd_write_offset;
        command.send(&host);
        for (const controller::Nanoseconds at : {100U, 300U, 500U}) { // for CALIBRATE
            tapAfter(milliseconds(at), 48 + static_cast<int>(at) / 2, at == 300 ? 200 : 27);
        }
        complete();
        EXPECT_TRUE(coprocessorIsIdle());
        EXPECT_NE(controller().peek32(EVE_REG("__REG_CMD_READ")), faultMark);
        EXPECT_EQ(controller().peek32(EVE_REG("__RAM_CMD") + start), codeOf(command.name));
        modelboard::pass(milliseconds(50));
        const std::vector<std::string> complaints = takeComplaints();
        if (command.model == Lacking) {
            EXPECT_THAT(complaints, ElementsAre("coprocessor command " + std::string(command.name) +
                                                " is not modelled"));
        } else {
            EXPECT_THAT(complaints, IsEmpty());
        }
        m_sent.insert(codeOf(command.name));
    }

    // What a host does about a coprocessor that has stopped at a fault.
    void resetCoprocessor() {
        Gpu_Hal_Wr8(&host, EVE_REG("__REG_CPURESET"), 1);
        Gpu_Hal_Wr16(&host, EVE_REG("__REG_CMD_READ"), 0);
        Gpu_Hal_Wr16(&host, EVE_REG("__REG_CMD_WRITE"), 0);
        Gpu_Hal_Wr8(&host, EVE_REG("__REG_CPURESET"), 0);
        Gpu_Hal_ResetCmdFifo(&host);
    }

    // Sends a word that is no command of this controller: a fault that the host recovers from.
    void expectFaultAndRecovery(std::uint32_t code) {
        bringUp(GetParam());
        Gpu_Hal_WrCmd32(&host, code);
        EXPECT_EQ(Gpu_Hal_Rd16(&host, EVE_REG("__REG_CMD_READ")), faultMark);
        EXPECT_THAT(takeComplaints(),
                    ElementsAre(StartsWith("coprocessor fault: unknown command")));
        resetCoprocessor();
        EXPECT_TRUE(showsAFrame());
    }

    // Sends a command that puts the coprocessor into reset, which the host gets it out of.
    void expectRecoveryFromReset(const Sender& reset) {
        bringUp(GetParam());
        reset(&host);
        App_Flush_Co_Buffer_nowait(&host);
        modelboard::pass(milliseconds(50));
        resetCoprocessor();
        EXPECT_TRUE(showsAFrame());
        takeComplaints();
    }

    const std::set<std::uint32_t>& sent() const { return m_sent; }

private:
    std::set<std::uint32_t> m_sent;
};

INSTANTIATE_TEST_SUITE_P(Generations, CommandsOnModel, everyGeneration, generationOf);

TEST_P(CommandsOnModel, EachIsTakenWholeAndEitherCarriedOutOrComplainedAboutByName) {
    for (const Command& command : commandsOf(GetParam())) {
        bringUpWithFlash();
        expectToBeTaken(command);
    }
    if (GetParam() == E3) {
        bringUpWithFlash();
        Gpu_CoCmd_FlashHelper_SwitchState(&host, 1);
        for (const Command& command : flashSpiCommands) {
            expectToBeTaken(command);
        }
    }

    // Which leaves these, that have no function of their own.
    const std::set<QString> without = {
        "__CMD_CRC",     "__CMD_HAMMERAUX", "__CMD_MARCH",    "__CMD_IDCT",
        "__CMD_EXECUTE", "__CMD_CSKETCH",   "__CMD_HMAC",     "__CMD_IDCT_DELETED",
        "__CMD_LAST_",   "__CMD_LOGO",      "__CMD_GETPOINT", "__CMD_DEPRECATED_CSKETCH",
    };
    for (const GenerationRow& row : generationTable()) {
        const std::optional<std::uint32_t> code =
            row.values.at(static_cast<std::size_t>(GetParam()));
        const QString name = row.name.toString();
        if (code && name.startsWith(QLatin1String("__CMD_")) && without.count(name) == 0) {
            EXPECT_EQ(sent().count(*code), 1U) << name.toStdString();
        }
    }
}

TEST_P(CommandsOnModel, OneAfterTheOtherLeaveTheControllerAbleToShowAFrame) {
    bringUpWithFlash();
    for (const Command& command : commandsOf(GetParam())) {
        expectToBeTaken(command);
    }
    Gpu_CoCmd_Stop(&host);
    EXPECT_TRUE(showsAFrame());
}

TEST_P(CommandsOnModel, TheLogoEndsWithAnEmptyRingAtItsStart) {
    bringUp(GetParam());
    EXPECT_TRUE(showsAFrame()); // so that the ring is not at its start
    Gpu_CoCmd_Logo(&host);
    App_Flush_Co_Buffer_nowait(&host);
    const controller::Nanoseconds start = modelboard::now();
    Gpu_Hal_WaitLogo_Finish(&host);
    EXPECT_GT(modelboard::now() - start, seconds(1));
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_READ")), 0U);
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_WRITE")), 0U);
    EXPECT_TRUE(showsAFrame());
}

TEST_P(CommandsOnModel, WithoutAFunctionAreTakenAndComplainedAboutToo) {
    bringUp(GetParam());
    for (const char* name : {"CRC", "HAMMERAUX", "MARCH", "EXECUTE"}) {
        SCOPED_TRACE(name);
        Gpu_Hal_WrCmd32(&host, codeOf(name));
        Gpu_Hal_WaitCmdfifo_empty(&host);
        EXPECT_THAT(takeComplaints(),
                    ElementsAre("coprocessor command " + std::string(name) + " is not modelled"));
    }
    EXPECT_TRUE(showsAFrame());
}

class ForeignCommandsOnModel : public CommandsOnModel {};

INSTANTIATE_TEST_SUITE_P(Generations, ForeignCommandsOnModel, testing::Values(E1, E2),
                         generationOf);

TEST_P(ForeignCommandsOnModel, AreFaultsThatTheHostRecoversFrom) {
    int foreign = 0;
    for (const GenerationRow& row : generationTable()) {
        const bool known = row.values.at(static_cast<std::size_t>(GetParam())).has_value();
        const std::optional<std::uint32_t> code = row.values.back();
        const QString name = row.name.toString();
        // The renamed ones have the code of a command that every generation has.
        if (known || !code || !name.startsWith(QLatin1String("__CMD_")) ||
            name == QLatin1String("__CMD_IDCT_DELETED") ||
            name == QLatin1String("__CMD_DEPRECATED_CSKETCH")) {
            continue;
        }
        SCOPED_TRACE(name.toStdString());
        ++foreign;
        expectFaultAndRecovery(*code);
    }
    EXPECT_EQ(foreign, GetParam() == E1 ? 42 : 28); // all of E2 and E3, all of E3
}

TEST_P(CommandsOnModel, ThatNoGenerationHasAreFaultsToo) {
    for (const std::uint32_t code : {0xFFFFFF60U, 0xFFFFFFFFU, 0xFF000000U, 0xFFFF0001U}) {
        SCOPED_TRACE(code);
        expectFaultAndRecovery(code);
    }
}

TEST_P(CommandsOnModel, ACommandMayResetTheCoprocessorThatRunsIt) {
    const std::vector<std::uint32_t> resetOn = {1, 0};
    expectRecoveryFromReset([&](Host h) {
        followedBy(resetOn, call(Gpu_CoCmd_MemWrite, EVE_REG("__REG_CPURESET"), 8))(h);
    });
    expectRecoveryFromReset([](Host h) { Gpu_CoCmd_MemSet(h, EVE_REG("__REG_CPURESET"), 1, 1); });
}

TEST_P(CommandsOnModel, AFaultKeepsTheApplicationWaitingForEver) {
    bringUp(GetParam());
    Gpu_Copro_SendCmd(&host, 0xFFFFFF60);
    giveUpAfter(seconds(1));
    EXPECT_THROW(App_Flush_Co_Buffer(&host), TookTooLong);
    takeComplaints();
}

class FaultTextOnModel : public OnModel {};

TEST_F(FaultTextOnModel, E3SaysWhatWentWrong) {
    bringUp(E3);
    Gpu_Hal_WrCmd32(&host, 0xFFFFFF60);
    std::string text(128, '\0');
    Gpu_Hal_RdMem(&host, 0x309800, reinterpret_cast<std::uint8_t*>(text.data()), 128);
    EXPECT_THAT(text, StartsWith("unknown command"));
    takeComplaints();
}

TEST_F(FaultTextOnModel, ATooLongDisplayListAndABadStreamAreFaults) {
    bringUp(E3);
    Gpu_CoCmd_Dlstart(&host);
    for (int word = 0; word < 2048; ++word) {
        App_WrCoCmd_Buffer(&host, 0x2D000000); // NOP
    }
    complete();
    EXPECT_TRUE(coprocessorIsIdle()); // as long as a list may be
    Gpu_Hal_WrCmd32(&host, 0x2D000000);
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_READ")), faultMark);
    EXPECT_THAT(takeComplaints(), ElementsAre("coprocessor fault: display list overflow"));

    bringUp(E3);
    Gpu_Hal_WrCmd32(&host, codeOf("INFLATE"));
    Gpu_Hal_WrCmd32(&host, memory);
    Gpu_Hal_WrCmd32(&host, 0x12345678);
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_READ")), faultMark);
    EXPECT_THAT(takeComplaints(), ElementsAre("coprocessor fault: INFLATE: corrupt zlib stream"));
}

class GpuClockOnModel : public OnModel {};

TEST_F(GpuClockOnModel, TwoSamplesAreAFrameApart) {
    bringUp(E3);
    Set_GpuClock(&host);
    Set_GpuClock(&host);
    EXPECT_NEAR(Get_GpuClock(&host), 5 * 548 * 292, 100);
    Set_GpuClock(&host);
    EXPECT_NEAR(Get_GpuClock(&host), 5 * 548 * 292, 100);
}

} // namespace
