#include "waitforserver.h"

#include "CoPro_Cmds.h"
#include "palette.h"
#include "shapes.h"
#include "text.h"

void WaitForServer::setup() {
    drawBackground(host());
    setColor(host(), palette::ink);
    drawCentredText(host(), {240, 83}, 31, "Please wait");
    drawCentredText(host(), {240, 127}, 28, "Preparing the system");
    setColor(host(), palette::orange);
    Gpu_CoCmd_Spinner(host(), 236, 196, 3, 1);
    terminate();
}
