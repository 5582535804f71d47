#pragma once

#include "App_Common.h"
#include "Gpu_Hal.h"
#include "commandlisting.h"
#include "displaysettings.h"
#include "ftwidget.h"
#include "recordingboard.h"

#include <QMetaMethod>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

// The signals and slots of a class, without those of its bases, in order.
inline std::vector<std::string> methodsOf(const QMetaObject& meta) {
    std::vector<std::string> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        methods.push_back(meta.method(i).methodSignature().toStdString());
    }
    return methods;
}

// A screen in front of an idle EVE_3 controller on the recording board.
class ScreenTest : public testing::Test {
protected:
    static constexpr std::uint32_t regTouchTag = 0x30212C;
    static constexpr std::uint32_t regCmdDl = 0x302100;

    ScreenTest() {
        DisplaySettings::getInstance()->setDisplayGeneration(DisplaySettings::EVE_3);
        App_Set_CmdBuffer_Index(0);
        board.reset();
        board.poke(regCmdDl, 456); // the size of every static display list
    }

    // What a finger is on from now on; 0 or 255: nothing.
    static void touch(std::uint32_t tag) { board.poke(regTouchTag, tag); }

    // What has reached the coprocessor since the last call.
    static std::string drawn() {
        std::string listing = listCommands(board.commandWords());
        board.clearRecord();
        return listing;
    }

    // The frame of a screen on which setup() has drawn `picture`.
    static std::string staticFrame(const std::string& picture) {
        return "DLSTART\n" + picture + "MEMCPY 100000 3145728 456\nDISPLAY\nSWAP\n";
    }

    // The frame that a redraw makes of what updateGUI() has drawn.
    static std::string redraw(const std::string& picture) {
        return "DLSTART\nAPPEND 100000 456\n" + picture + "DISPLAY\nSWAP\n";
    }

    Gpu_Hal_Context_t host;
};

// Tests of a screen that stays and can be touched.
class TouchedScreenTest : public ScreenTest {
protected:
    virtual FTWidget& touchedScreen() = 0;

    void show() {
        touchedScreen().exec();
        drawn();
    }

    // What a pass draws with the finger on `tag`, 0 for none.
    std::string passTouching(std::uint32_t tag) {
        touch(tag);
        touchedScreen().loop();
        return drawn();
    }

    // What the release draws when the finger has been on `tag`.
    std::string tap(std::uint32_t tag) {
        passTouching(tag);
        return passTouching(0);
    }
};
