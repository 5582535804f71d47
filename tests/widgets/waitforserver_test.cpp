#include "screentest.h"
#include "waitforserver.h"

namespace {

using WaitForServerTest = ScreenTest;

TEST_F(WaitForServerTest, ShowsTheMessageAndTheSpinnerAndEnds) {
    WaitForServer screen(&host);
    screen.exec();
    EXPECT_TRUE(screen.isStoped());
    EXPECT_EQ(drawn(), staticFrame(R"(GRADIENT 21 13 CACACA 455 268 F3F3F3
COLOR_RGB 19190C
TEXT 240 83 font 31 CENTER "Please wait"
TEXT 240 127 font 28 CENTER "Preparing the system"
COLOR_RGB F26421
SPINNER 236 196 3 1
)"));
}

TEST_F(WaitForServerTest, DrawsNothingOnANullHost) {
    WaitForServer screen(nullptr);
    screen.exec();
    EXPECT_TRUE(board.events().empty());
}

} // namespace
