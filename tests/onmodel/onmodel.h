#pragma once

#include "Gpu_Hal.h"
#include "modelboard.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

// What the model board throws out of a call of the application that has lasted too long.
class TookTooLong : public std::runtime_error {
public:
    TookTooLong() : std::runtime_error("the application still waits") {}
};

constexpr controller::Nanoseconds milliseconds(controller::Nanoseconds count) {
    return count * 1'000'000;
}

constexpr controller::Nanoseconds seconds(controller::Nanoseconds count) {
    return milliseconds(1000 * count);
}

constexpr std::uint32_t black = 0xFF000000; // a pixel of the panel

// "E1" and the like: names for tests that run once per generation.
std::string nameOf(controller::Generation generation);

// For tests that run once per generation.
inline const auto everyGeneration = testing::Values(
    controller::Generation::E1, controller::Generation::E2, controller::Generation::E3);
std::string generationOf(const testing::TestParamInfo<controller::Generation>& test);

// Taps the panel from `delay` from now on for 100 ms, while the application goes on.
void tapAfter(controller::Nanoseconds delay, int x, int y);

// The application's own layers in front of a controller model. A test fails when the controller
// complained of something that the test has not asked for with takeComplaints(), and when it takes
// more than half a minute of simulated time.
class OnModel : public testing::Test, protected controller::Observer {
protected:
    OnModel();
    ~OnModel() override;

    // Fits a controller, powered down, and sets the registry to its generation.
    void fit(controller::Generation generation, const controller::Options& options = {});
    // The same, and takes it through the program's start up to the black first frame.
    void bringUp(controller::Generation generation, const controller::Options& options = {});

    // Lets the board throw TookTooLong out of the application `limit` from now on. The controller
    // is then in the middle of whatever it was doing: only fit() gets it out of there.
    static void giveUpAfter(controller::Nanoseconds limit);

    // Sends what is in the application's command buffer and waits until it is done.
    void complete();

    // Shows one frame of one colour; false when the panel does not show it.
    bool showsAFrame();

    // Whether the coprocessor has taken all that the application sent.
    bool coprocessorIsIdle() const;

    // What the controller has complained of since the last call.
    std::vector<std::string> takeComplaints();

    static const controller::Picture& picture() { return modelboard::controller().frame().picture; }

    // Keeps a picture as NAME.ppm in the working directory if the test has failed, for the eyes of
    // whoever looks into that.
    static void keepOnFailure(const controller::Picture& picture, const std::string& name);

    Gpu_Hal_Context_t host{};

private:
    void complained(const std::string& text) override { m_complaints.push_back(text); }

    std::vector<std::string> m_complaints;
};
