#pragma once

#include "App_Common.h"
#include "Gpu_Hal.h"
#include "displaysettings.h"
#include "recordingboard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

// An opened controller of a chosen generation (EVE_3 at first) behind the recording board, with
// nothing pending in the application buffers and nothing on record yet.
class DrawingTest : public testing::Test {
protected:
    DrawingTest() {
        board.reset();
        Gpu_Hal_Open(&host);
        App_Set_CmdBuffer_Index(0);
        App_Set_DlBuffer_Index(0);
        std::memset(CmdBuffer, 0, sizeof CmdBuffer); // so that the pad of strings is known
        use(DisplaySettings::EVE_3);
        board.clearRecord();
    }

    static void use(DisplaySettings::DisplayGeneration generation) {
        DisplaySettings::getInstance()->setDisplayGeneration(generation);
    }

    // The coprocessor stream so far, with what is still pending.
    std::vector<uint32_t> flushedWords() {
        App_Flush_Co_Buffer(&host);
        return board.commandWords();
    }

    Gpu_Hal_Context_t host;
};

using Words = std::vector<uint32_t>;

constexpr int failedUntouched = 3;

// Runs a call that is to fail an assertion; the process ends with the status failedUntouched if by
// then the call has neither appended nor sent anything. For EXPECT_EXIT.
template<typename Call>
void abortUntouched(Call call) {
    App_Set_CmdBuffer_Index(0);
    board.clearRecord();
    std::signal(SIGABRT, [](int) {
        _exit(CmdBuffer_Index == 0 && board.events().empty() ? failedUntouched : 1);
    });
    call();
}
