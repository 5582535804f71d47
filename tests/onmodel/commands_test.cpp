// Every coprocessor command of the application's library on every controller that has it, and
// commands of other generations on one that has not.

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "displaysettings.h"
#include "generationtable.h"
#include "onmodel.h"

#include <functional>
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

enum class Model {
    Whole,   // carried out
    Lacking, // taken with its arguments, and complained about by name
};

struct Command {
    const char* name; // behind "__CMD_"
    Generation since;
    std::function<void(Host)> send;
    Model model = Model::Whole;
};

// A picture file of the least size that shows where it ends.
void sendSmallestJpeg(Host host) {
    Gpu_Copro_SendCmd(host, 0xE0FFD8FF);
    Gpu_Copro_SendCmd(host, 0x0000D9FF);
}

void sendEmptyVideo(Host host) {
    Gpu_Copro_SendCmd(host, 0x46464952); // "RIFF" and how much follows
    Gpu_Copro_SendCmd(host, 4);
    Gpu_Copro_SendCmd(host, 0x20495641);
}

// The zlib stream of "abcd".
void sendZlibStream(Host host) {
    for (const std::uint32_t word : {0x4C4B9C78U, 0x00014E4AU, 0x8B01D803U}) {
        Gpu_Copro_SendCmd(host, word);
    }
}

const std::vector<Command>& commands() {
    static const std::vector<Command> all = {
        // frames and state
        {"DLSTART", Generation::E1, [](Host h) { Gpu_CoCmd_Dlstart(h); }},
        {"SWAP", Generation::E1, [](Host h) { Gpu_CoCmd_Swap(h); }},
        {"COLDSTART", Generation::E1, [](Host h) { Gpu_CoCmd_ColdStart(h); }},
        {"INTERRUPT", Generation::E1, [](Host h) { Gpu_CoCmd_Interrupt(h, 10); }},
        {"APPEND", Generation::E1, [](Host h) { Gpu_CoCmd_Append(h, memory, 16); }},
        {"REGREAD", Generation::E1, [](Host h) { Gpu_CoCmd_RegRead(h, EVE_REG("__REG_ID"), 0); }},
        {"BGCOLOR", Generation::E1, [](Host h) { Gpu_CoCmd_BgColor(h, 0x102030); }},
        {"FGCOLOR", Generation::E1, [](Host h) { Gpu_CoCmd_FgColor(h, 0x102030); }},
        {"GRADCOLOR", Generation::E1, [](Host h) { Gpu_CoCmd_GradColor(h, 0x102030); }},
        {"SYNC", Generation::E2, [](Host h) { Gpu_CoCmd_Sync(h); }},
        {"SETROTATE", Generation::E2, [](Host h) { Gpu_CoCmd_SetRotate(h, 0); }},
        {"SETSCRATCH", Generation::E2, [](Host h) { Gpu_CoCmd_SetScratch(h, 14); }},
        {"INT_RAMSHARED", Generation::E2, [](Host h) { Gpu_CoCmd_Int_RAMShared(h, memory); },
         Model::Lacking},
        {"INT_RAMSHARED", Generation::E3, [](Host h) { Gpu_CoCmd_Int_RamShared(h, memory); },
         Model::Lacking},
        {"INT_SWLOADIMAGE", Generation::E2, [](Host h) { Gpu_CoCmd_Int_SWLoadImage(h, memory, 0); },
         Model::Lacking},
        {"NOP", Generation::E3, [](Host h) { Gpu_CoCmd_Nop(h); }},
        {"APPENDF", Generation::E3, [](Host h) { Gpu_CoCmd_AppendF(h, 64, 0); }},

        // text and numbers
        {"TEXT", Generation::E1, [](Host h) { Gpu_CoCmd_Text(h, 10, 20, 27, 0, "text"); }},
        {"TEXT", Generation::E3,
         [](Host h) {
             const auto format = static_cast<std::uint16_t>(EVE_REG("__OPT_FORMAT"));
             Gpu_CoCmd_Text(h, 10, 20, 27, format, "%d of %u", 3U, 4U);
         }},
        {"NUMBER", Generation::E1, [](Host h) { Gpu_CoCmd_Number(h, 10, 20, 27, 0, 1234); }},
        {"SETBASE", Generation::E2, [](Host h) { Gpu_CoCmd_SetBase(h, 16); }},
        {"FILLWIDTH", Generation::E3, [](Host h) { Gpu_CoCmd_FillWidth(h, 200); }, Model::Lacking},
        {"SETFONT", Generation::E1, [](Host h) { Gpu_CoCmd_SetFont(h, 7, memory); }},
        {"SETFONT2", Generation::E2, [](Host h) { Gpu_CoCmd_SetFont2(h, 7, memory, 32); }},
        {"ROMFONT", Generation::E2, [](Host h) { Gpu_CoCmd_RomFont(h, 1, 33); }},
        {"RESETFONTS", Generation::E3, [](Host h) { Gpu_CoCmd_ResetFonts(h); }},

        // widgets
        {"BUTTON", Generation::E1,
         [](Host h) { Gpu_CoCmd_Button(h, 10, 10, 100, 40, 27, 0, "button"); }},
        {"TOGGLE", Generation::E1,
         [](Host h) { Gpu_CoCmd_Toggle(h, 10, 10, 80, 27, 0, 65535, "off\xFFon"); }},
        {"KEYS", Generation::E1,
         [](Host h) { Gpu_CoCmd_Keys(h, 10, 10, 200, 40, 27, 0, "12345"); }},
        {"GAUGE", Generation::E1,
         [](Host h) { Gpu_CoCmd_Gauge(h, 100, 100, 50, 0, 5, 4, 30, 100); }},
        {"CLOCK", Generation::E1,
         [](Host h) { Gpu_CoCmd_Clock(h, 100, 100, 50, 0, 10, 8, 30, 0); }},
        {"DIAL", Generation::E1, [](Host h) { Gpu_CoCmd_Dial(h, 100, 100, 50, 0, 0x8000); }},
        {"SLIDER", Generation::E1,
         [](Host h) { Gpu_CoCmd_Slider(h, 10, 10, 100, 10, 0, 30, 100); }},
        {"PROGRESS", Generation::E1,
         [](Host h) { Gpu_CoCmd_Progress(h, 10, 10, 100, 10, 0, 30, 100); }},
        {"SCROLLBAR", Generation::E1,
         [](Host h) { Gpu_CoCmd_Scrollbar(h, 10, 10, 100, 10, 0, 30, 20, 100); }},
        {"GRADIENT", Generation::E1,
         [](Host h) { Gpu_CoCmd_Gradient(h, 0, 0, 0x000000, 480, 272, 0xFFFFFF); }},
        {"GRADIENTA", Generation::E3,
         [](Host h) { Gpu_CoCmd_GradientA(h, 0, 0, 0x80000000, 480, 272, 0xFFFFFFFF); },
         Model::Lacking},

        // animations
        {"SPINNER", Generation::E1, [](Host h) { Gpu_CoCmd_Spinner(h, 240, 136, 0, 0); }},
        {"SCREENSAVER", Generation::E1, [](Host h) { Gpu_CoCmd_ScreenSaver(h); }},
        {"SKETCH", Generation::E1,
         [](Host h) { Gpu_CoCmd_Sketch(h, 0, 0, 64, 64, memory, EVE_REG("__L8")); }},
        {"STOP", Generation::E1, [](Host h) { Gpu_CoCmd_Stop(h); }},
        {"ANIMSTART", Generation::E3, [](Host h) { Gpu_CoCmd_AnimStart(h, 0, 4096, 0); },
         Model::Lacking},
        {"ANIMSTOP", Generation::E3, [](Host h) { Gpu_CoCmd_AnimStop(h, 0); }, Model::Lacking},
        {"ANIMXY", Generation::E3, [](Host h) { Gpu_CoCmd_AnimXY(h, 0, 10, 20); }, Model::Lacking},
        {"ANIMDRAW", Generation::E3, [](Host h) { Gpu_CoCmd_AnimDraw(h, 0); }, Model::Lacking},
        {"ANIMFRAME", Generation::E3, [](Host h) { Gpu_CoCmd_AnimFrame(h, 10, 20, 4096, 0); },
         Model::Lacking},

        // touch
        {"CALIBRATE", Generation::E1, [](Host h) { Gpu_CoCmd_Calibrate(h, 0); }},
        {"TRACK", Generation::E1, [](Host h) { Gpu_CoCmd_Track(h, 10, 10, 100, 20, 5); }},
        {"TOUCH_TRANSFORM", Generation::E1,
         [](Host h) {
             Gpu_CoCmd_TouchTransform(h, 0, 0, 1000, 0, 0, 1000, 0, 0, 480, 0, 0, 272, 0);
         }},
        {"GETPOINT", Generation::E3, [](Host h) { Gpu_CoCmd_GetPoint(h, 10, 20, 0, 0); },
         Model::Lacking},

        // bitmaps and their transform
        {"LOADIDENTITY", Generation::E1, [](Host h) { Gpu_CoCmd_LoadIdentity(h); }},
        {"TRANSLATE", Generation::E1, [](Host h) { Gpu_CoCmd_Translate(h, 65536, -65536); }},
        {"SCALE", Generation::E1, [](Host h) { Gpu_CoCmd_Scale(h, 131072, 32768); }},
        {"ROTATE", Generation::E1, [](Host h) { Gpu_CoCmd_Rotate(h, -8192); }},
        {"SETMATRIX", Generation::E1, [](Host h) { Gpu_CoCmd_SetMatrix(h); }},
        {"GETMATRIX", Generation::E1, [](Host h) { Gpu_CoCmd_GetMatrix(h, 0, 0, 0, 0, 0, 0); }},
        {"BITMAP_TRANSFORM", Generation::E1,
         [](Host h) { Gpu_CoCmd_BitmapTransform(h, 0, 0, 64, 0, 0, 64, 0, 0, 32, 0, 0, 32, 0); }},
        {"ROTATEAROUND", Generation::E3,
         [](Host h) { Gpu_CoCmd_RotateAround(h, 100, 100, 8192, 65536); }},
        {"SETBITMAP", Generation::E2,
         [](Host h) {
             Gpu_CoCmd_SetBitmap(h, memory, static_cast<std::uint16_t>(EVE_REG("__ARGB4")), 32, 32);
         }},
        {"SNAPSHOT", Generation::E1, [](Host h) { Gpu_CoCmd_Snapshot(h, noAddress); }},
        {"SNAPSHOT2", Generation::E2,
         [](Host h) { Gpu_CoCmd_Snapshot2(h, EVE_REG("__ARGB4"), noAddress, 0, 0, 32, 32); }},

        // images, video and memory
        {"INFLATE", Generation::E1,
         [](Host h) {
             Gpu_CoCmd_Inflate(h, memory);
             sendZlibStream(h);
         }},
        {"INFLATE2", Generation::E3,
         [](Host h) {
             Gpu_CoCmd_Inflate2(h, memory, 0);
             sendZlibStream(h);
         }},
        {"LOADIMAGE", Generation::E1,
         [](Host h) {
             Gpu_CoCmd_LoadImage(h, memory, 0);
             sendSmallestJpeg(h);
         },
         Model::Lacking},
        {"GETPTR", Generation::E1, [](Host h) { Gpu_CoCmd_GetPtr(h, 0); }},
        {"GETPROPS", Generation::E1, [](Host h) { Gpu_CoCmd_GetProps(h, 0, 0, 0); }},
        {"MEMWRITE", Generation::E1,
         [](Host h) {
             Gpu_CoCmd_MemWrite(h, memory, 6);
             Gpu_Copro_SendCmd(h, 0x04030201);
             Gpu_Copro_SendCmd(h, 0x00000605);
         }},
        {"MEMCPY", Generation::E1, [](Host h) { Gpu_CoCmd_Memcpy(h, memory, 0, 100); }},
        {"MEMSET", Generation::E1, [](Host h) { Gpu_CoCmd_MemSet(h, memory, 0x55, 100); }},
        {"MEMZERO", Generation::E1, [](Host h) { Gpu_CoCmd_MemZero(h, memory, 100); }},
        {"MEMCRC", Generation::E1, [](Host h) { Gpu_CoCmd_MemCrc(h, memory, 100, 0); }},
        {"MEDIAFIFO", Generation::E2, [](Host h) { Gpu_CoCmd_MediaFifo(h, memory, 4096); },
         Model::Lacking},
        {"PLAYVIDEO", Generation::E2,
         [](Host h) {
             Gpu_CoCmd_PlayVideo(h, 0);
             sendEmptyVideo(h);
         },
         Model::Lacking},
        {"VIDEOSTART", Generation::E2, [](Host h) { Gpu_CoCmd_VideoStart(h); }, Model::Lacking},
        {"VIDEOFRAME", Generation::E2, [](Host h) { Gpu_CoCmd_VideoFrame(h, memory, 0); },
         Model::Lacking},
        {"VIDEOSTARTF", Generation::E3, [](Host h) { Gpu_CoCmd_VideoStartF(h); }, Model::Lacking},
        {"SHA1", Generation::E3, [](Host h) { Gpu_CoCmd_Sha1(h, memory, 100, memory); },
         Model::Lacking},

        // flash
        {"FLASHERASE", Generation::E3, [](Host h) { Gpu_CoCmd_FlashErase(h); }},
        {"FLASHWRITE", Generation::E3,
         [](Host h) {
             Gpu_CoCmd_FlashWrite(h, 0, 256);
             for (std::uint32_t word = 0; word < 64; ++word) {
                 Gpu_Copro_SendCmd(h, word);
             }
         }},
        {"FLASHWRITE", Generation::E3,
         [](Host h) {
             const std::vector<std::uint8_t> page(256, 0x55);
             Gpu_CoCmd_FlashWriteExt(h, 0, 256, page.data());
         }},
        {"FLASHREAD", Generation::E3, [](Host h) { Gpu_CoCmd_FlashRead(h, memory, 0, 256); }},
        {"FLASHUPDATE", Generation::E3, [](Host h) { Gpu_CoCmd_FlashUpdate(h, 0, memory, 4096); }},
        {"FLASHFAST", Generation::E3, [](Host h) { Gpu_CoCmd_FlashFast(h, 0); }},
        {"FLASHATTACH", Generation::E3, [](Host h) { Gpu_CoCmd_FlashAttach(h); }},
        {"FLASHSOURCE", Generation::E3, [](Host h) { Gpu_CoCmd_FlashSource(h, 4096); }},
        {"CLEARCACHE", Generation::E3, [](Host h) { Gpu_CoCmd_ClearCache(h); }},
        {"FLASHDETACH", Generation::E3, [](Host h) { Gpu_CoCmd_FlashDetach(h); }},
    };
    return all;
}

// Those that the flash must be detached for.
const std::vector<Command>& flashSpiCommands() {
    static const std::vector<Command> all = {
        {"FLASHSPIDESEL", Generation::E3, [](Host h) { Gpu_CoCmd_FlashSpiDesel(h); }},
        {"FLASHSPITX", Generation::E3,
         [](Host h) {
             Gpu_CoCmd_FlashSpiTx(h, 1);
             Gpu_Copro_SendCmd(h, 0x9F);
         }},
        {"FLASHSPIRX", Generation::E3, [](Host h) { Gpu_CoCmd_FlashSpiRx(h, memory, 3); }},
    };
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
        if (command.model == Model::Lacking) {
            EXPECT_THAT(complaints, ElementsAre("coprocessor command " + std::string(command.name) +
                                                " is not modelled"));
        } else {
            EXPECT_THAT(complaints, IsEmpty());
        }
        m_sent.insert(codeOf(command.name));
    }

    // Shows one frame of one colour; false when the panel does not show it.
    bool showsAFrame() {
        Gpu_CoCmd_Dlstart(&host);
        App_WrCoCmd_Buffer(&host, 0x02123456); // CLEAR_COLOR_RGB
        App_WrCoCmd_Buffer(&host, 0x26000007); // CLEAR
        App_WrCoCmd_Buffer(&host, 0x00000000); // DISPLAY
        Gpu_CoCmd_Swap(&host);
        complete();
        modelboard::pass(milliseconds(50));
        return picture().at(240, 136) == 0xFF123456;
    }

    // What a host does about a coprocessor that has stopped at a fault.
    void resetCoprocessor() {
        Gpu_Hal_Wr8(&host, EVE_REG("__REG_CPURESET"), 1);
        Gpu_Hal_Wr16(&host, EVE_REG("__REG_CMD_READ"), 0);
        Gpu_Hal_Wr16(&host, EVE_REG("__REG_CMD_WRITE"), 0);
        Gpu_Hal_Wr8(&host, EVE_REG("__REG_CPURESET"), 0);
        Gpu_Hal_ResetCmdFifo(&host);
    }

    const std::set<std::uint32_t>& sent() const { return m_sent; }

private:
    std::set<std::uint32_t> m_sent;
};

INSTANTIATE_TEST_SUITE_P(Generations, CommandsOnModel,
                         testing::Values(Generation::E1, Generation::E2, Generation::E3),
                         [](const auto& generation) { return nameOf(generation.param); });

TEST_P(CommandsOnModel, EachIsTakenWholeAndEitherCarriedOutOrComplainedAboutByName) {
    for (const Command& command : commands()) {
        if (command.since <= GetParam()) {
            bringUpWithFlash();
            expectToBeTaken(command);
        }
    }
    if (GetParam() == Generation::E3) {
        bringUpWithFlash();
        Gpu_CoCmd_FlashHelper_SwitchState(&host, 1);
        for (const Command& command : flashSpiCommands()) {
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
    for (const Command& command : commands()) {
        if (command.since <= GetParam()) {
            expectToBeTaken(command);
        }
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

INSTANTIATE_TEST_SUITE_P(Generations, ForeignCommandsOnModel,
                         testing::Values(Generation::E1, Generation::E2),
                         [](const auto& generation) { return nameOf(generation.param); });

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
        bringUp(GetParam());
        Gpu_Hal_WrCmd32(&host, *code);
        EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_READ")), faultMark);
        EXPECT_THAT(takeComplaints(),
                    ElementsAre(StartsWith("coprocessor fault: unknown command")));
        resetCoprocessor();
        EXPECT_TRUE(showsAFrame());
    }
    EXPECT_EQ(foreign, GetParam() == Generation::E1 ? 42 : 28); // all of E2 and E3, all of E3
}

TEST_P(CommandsOnModel, ThatNoGenerationHasAreFaultsToo) {
    for (const std::uint32_t code : {0xFFFFFF60U, 0xFFFFFFFFU, 0xFF000000U, 0xFFFF0001U}) {
        SCOPED_TRACE(code);
        bringUp(GetParam());
        Gpu_Hal_WrCmd32(&host, code);
        EXPECT_EQ(Gpu_Hal_Rd16(&host, EVE_REG("__REG_CMD_READ")), faultMark);
        EXPECT_THAT(takeComplaints(),
                    ElementsAre(StartsWith("coprocessor fault: unknown command")));
        resetCoprocessor();
        EXPECT_TRUE(showsAFrame());
    }
}

TEST_P(CommandsOnModel, ACommandMayResetTheCoprocessorThatRunsIt) {
    bringUp(GetParam());
    Gpu_CoCmd_MemWrite(&host, EVE_REG("__REG_CPURESET"), 8);
    Gpu_Copro_SendCmd(&host, 1);
    Gpu_Copro_SendCmd(&host, 0);
    App_Flush_Co_Buffer_nowait(&host);
    modelboard::pass(milliseconds(50));
    resetCoprocessor();
    EXPECT_TRUE(showsAFrame());

    bringUp(GetParam());
    Gpu_CoCmd_MemSet(&host, EVE_REG("__REG_CPURESET"), 1, 1);
    App_Flush_Co_Buffer_nowait(&host);
    modelboard::pass(milliseconds(50));
    resetCoprocessor();
    EXPECT_TRUE(showsAFrame());
    takeComplaints();
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
    bringUp(Generation::E3);
    Gpu_Hal_WrCmd32(&host, 0xFFFFFF60);
    std::string text(128, '\0');
    Gpu_Hal_RdMem(&host, 0x309800, reinterpret_cast<std::uint8_t*>(text.data()), 128);
    EXPECT_THAT(text, StartsWith("unknown command"));
    takeComplaints();
}

TEST_F(FaultTextOnModel, ATooLongDisplayListAndABadStreamAreFaults) {
    bringUp(Generation::E3);
    Gpu_CoCmd_Dlstart(&host);
    for (int word = 0; word < 2048; ++word) {
        App_WrCoCmd_Buffer(&host, 0x2D000000); // NOP
    }
    complete();
    EXPECT_TRUE(coprocessorIsIdle()); // as long as a list may be
    Gpu_Hal_WrCmd32(&host, 0x2D000000);
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_READ")), faultMark);
    EXPECT_THAT(takeComplaints(), ElementsAre("coprocessor fault: display list overflow"));

    bringUp(Generation::E3);
    Gpu_Hal_WrCmd32(&host, codeOf("INFLATE"));
    Gpu_Hal_WrCmd32(&host, memory);
    Gpu_Hal_WrCmd32(&host, 0x12345678);
    EXPECT_EQ(controller().peek32(EVE_REG("__REG_CMD_READ")), faultMark);
    EXPECT_THAT(takeComplaints(), ElementsAre("coprocessor fault: INFLATE: corrupt zlib stream"));
}

class GpuClockOnModel : public OnModel {};

TEST_F(GpuClockOnModel, TwoSamplesAreAFrameApart) {
    bringUp(Generation::E3);
    Set_GpuClock(&host);
    Set_GpuClock(&host);
    EXPECT_NEAR(Get_GpuClock(&host), 5 * 548 * 292, 100);
    Set_GpuClock(&host);
    EXPECT_NEAR(Get_GpuClock(&host), 5 * 548 * 292, 100);
}

} // namespace
