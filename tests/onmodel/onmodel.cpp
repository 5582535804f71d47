#include "onmodel.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "displaysettings.h"
#include "startup.h"

#include <fstream>

namespace {

DisplaySettings::DisplayGeneration registryGeneration(controller::Generation generation) {
    switch (generation) {
    case controller::Generation::E1:
        return DisplaySettings::EVE_1;
    case controller::Generation::E2:
        return DisplaySettings::EVE_2;
    case controller::Generation::E3:
        break;
    }
    return DisplaySettings::EVE_3;
}

} // namespace

std::string nameOf(controller::Generation generation) {
    return "E" + std::to_string(static_cast<int>(generation) + 1);
}

std::string generationOf(const testing::TestParamInfo<controller::Generation>& test) {
    return nameOf(test.param);
}

void tapAfter(controller::Nanoseconds delay, int x, int y) {
    modelboard::after(delay, [x, y] { modelboard::controller().touch(x, y); });
    modelboard::after(delay + milliseconds(100), [] { modelboard::controller().release(); });
}

OnModel::OnModel() {
    App_Set_CmdBuffer_Index(0);
}

OnModel::~OnModel() {
    EXPECT_THAT(m_complaints, testing::IsEmpty());
    modelboard::controller().setObserver(nullptr);
}

void OnModel::fit(controller::Generation generation, const controller::Options& options) {
    modelboard::fit(generation, options);
    modelboard::controller().setObserver(this);
    giveUpAfter(seconds(30));
    DisplaySettings::getInstance()->setDisplayGeneration(registryGeneration(generation));
}

void OnModel::bringUp(controller::Generation generation, const controller::Options& options) {
    fit(generation, options);
    App_Common_Init(&host);
    writeTouchTransform(&host);
}

void OnModel::giveUpAfter(controller::Nanoseconds limit) {
    modelboard::after(limit, [] { throw TookTooLong(); });
}

void OnModel::complete() {
    App_Flush_Co_Buffer(&host);
    Gpu_Hal_WaitCmdfifo_empty(&host);
}

bool OnModel::showsAFrame() {
    Gpu_CoCmd_Dlstart(&host);
    App_WrCoCmd_Buffer(&host, 0x02123456); // CLEAR_COLOR_RGB
    App_WrCoCmd_Buffer(&host, 0x26000007); // CLEAR
    App_WrCoCmd_Buffer(&host, 0x00000000); // DISPLAY
    Gpu_CoCmd_Swap(&host);
    complete();
    modelboard::pass(milliseconds(50));
    return picture().at(240, 136) == 0xFF123456;
}

bool OnModel::coprocessorIsIdle() const {
    const auto& chip = modelboard::controller();
    return chip.peek32(EVE_REG("__REG_CMD_READ")) == chip.peek32(EVE_REG("__REG_CMD_WRITE"));
}

std::vector<std::string> OnModel::takeComplaints() {
    std::vector<std::string> taken;
    taken.swap(m_complaints);
    return taken;
}

void OnModel::keepOnFailure(const controller::Picture& picture, const std::string& name) {
    if (!HasFailure()) {
        return;
    }
    std::ofstream file(name + ".ppm", std::ios::binary);
    file << "P6\n" << picture.width << ' ' << picture.height << "\n255\n";
    for (const std::uint32_t pixel : picture.pixels) {
        file.put(static_cast<char>(pixel >> 16)).put(static_cast<char>(pixel >> 8));
        file.put(static_cast<char>(pixel));
    }
}
