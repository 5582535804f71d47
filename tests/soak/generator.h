#pragma once

#include "flowmodel.h"
#include "randomness.h"

#include <cstdint>
#include <deque>
#include <string>

namespace soak {

// One thing that happens to the instrument.
struct Action {
    enum class Kind : std::uint8_t {
        Touch, // the finger comes down or slides to `pixel`
        Lift,
        Values,     // what DATA? gives: `values`
        Params,     // the server's time constant `number` and levels `values`
        Fault,      // the server's fault `text`; "none" ends it
        Reply,      // a command, the first word of `text`, is answered with the rest
        UsualReply, // the command `text` is answered as usual again
        ServerStops,
        ServerStarts, // all in order
        Pause,        // `number` milliseconds
    };
    Kind kind = Kind::Lift;
    Pixel pixel{};
    FourValues values{};
    double number = 0;
    std::string text{};
};

// Whether replies under that fault cannot be told to the letter.
bool breaksStep(const std::string& fault);

// Thinks up what happens next: gestures on the screen that the model says is shown, now and then a
// change of the server's mind, and the way back to good order after one that put client and server
// out of step.
class Generator {
public:
    explicit Generator(std::uint32_t seed) : m_random(seed) {}

    Action next(const FlowModel& model);
    Action firstParams(); // to be done before the application starts
    Action values();

private:
    enum class Server : std::uint8_t { Good, Odd, Broken };

    void plan(const FlowModel& model);
    void planServer();
    void planOdd();
    void planBroken();
    void planOrder(const FlowModel& model);
    void planGesture(Screen screen);
    void planKeypad();
    void planNumber(const std::string& number);
    void tap(Screen screen, int tag);
    void touch(Pixel pixel);
    void lift();
    void add(Action action) { m_plan.push_back(std::move(action)); }
    void slide(Screen screen);
    void slideOff(Screen screen);
    void touchNothing(Screen screen);
    Pixel pixelOf(Screen screen, int tag);
    int anyTag(Screen screen);
    Action params();

    Randomness m_random;
    std::deque<Action> m_plan;
    Server m_server = Server::Good;
    int m_gesturesLeft = 0; // until the server is in order again
};

} // namespace soak
