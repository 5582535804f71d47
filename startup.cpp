#include "startup.h"

#include "Gpu_Hal.h"
#include "datareader.h"
#include "displaysettings.h"
#include "servicemanager.h"

#include <QDebug>

#include <chrono>
#include <string>

namespace {

constexpr int connectionAttempts = 10;
constexpr uint32_t retryPauseMs = 1000;
// The longest that an attempt takes, with its pause, and as long again for a busy board.
constexpr std::chrono::seconds attemptPatience{22};

void announceAttempt(ServiceManager& manager, int attempt) {
    manager.starting("connecting to the measurement server, attempt " + std::to_string(attempt) +
                         " of " + std::to_string(connectionAttempts),
                     attemptPatience);
}

} // namespace

void registerRecords() {
    qRegisterMetaType<DataReaderData>("DataReaderData");
    qRegisterMetaType<DataReaderParams>("DataReaderParams");
}

void detectController() {
    DisplaySettings* const settings = DisplaySettings::getInstance();
    settings->autoDetectDisplayGeneration();
    qDebug() << "Display Settings done!!!" << static_cast<int>(settings->getDisplayGeneration());
}

void writeTouchTransform(Gpu_Hal_Context_t* host) {
    const auto write = [host](uint32_t address, int32_t value) {
        Gpu_Hal_Wr32(host, address, static_cast<uint32_t>(value));
    };
    write(EVE_REG("__REG_TOUCH_TRANSFORM_A"), 24916);
    write(EVE_REG("__REG_TOUCH_TRANSFORM_B"), 0);
    write(EVE_REG("__REG_TOUCH_TRANSFORM_C"), -591770);
    write(EVE_REG("__REG_TOUCH_TRANSFORM_D"), 372);
    write(EVE_REG("__REG_TOUCH_TRANSFORM_E"), 22707);
    write(EVE_REG("__REG_TOUCH_TRANSFORM_F"), 10494);
}

bool connectToServer(DataReader& client, ServiceManager& manager) {
    for (int attempt = 1; attempt <= connectionAttempts; ++attempt) {
        announceAttempt(manager, attempt);
        if (client.connectToServer()) {
            return true;
        }
        Gpu_Hal_Sleep(retryPauseMs);
    }
    return false;
}
