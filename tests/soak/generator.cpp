#include "generator.h"

#include <array>

namespace soak {

namespace {

constexpr int panelWidth = 480;
constexpr int panelHeight = 272;

const std::vector<double>& usualTimeConsts() {
    static const std::vector<double> seconds{0.01, 0.02, 0.05, 0.1, 0.1, 0.2, 0.2, 0.5, 1, 2.5};
    return seconds;
}

const std::vector<double>& oddTimeConsts() {
    static const std::vector<double> seconds{0, -1, 0.0004, 12, 86400, 1e12};
    return seconds;
}

const std::vector<std::string>& usualNumbers() {
    static const std::vector<std::string> numbers{"0.01", ".02", "0.05", "0.1", "0.2",  "0.5",
                                                  "1.",   "250", "12.5", "007", "-150", "-0.5"};
    return numbers;
}

} // namespace

bool breaksStep(const std::string& fault) {
    return fault == "late" || fault == "huge" || fault == "close-connection";
}

Action Generator::next(const FlowModel& model) {
    while (m_plan.empty()) {
        plan(model);
    }
    Action action = m_plan.front();
    m_plan.pop_front();
    return action;
}

void Generator::plan(const FlowModel& model) {
    const bool brokenByItself = m_server != Server::Broken && !model.client().inStep();
    if (brokenByItself || (m_server != Server::Good && --m_gesturesLeft <= 0)) {
        planOrder(model);
        return;
    }
    if (m_random.percent(10)) {
        planServer();
    } else {
        planGesture(model.screen());
    }
}

void Generator::planServer() {
    Action pause{Action::Kind::Pause};
    pause.number = m_random.between(20, 600);
    switch (m_random.weighted({35, 20, 15, 20, m_server == Server::Good ? 10 : 0})) {
    case 0:
        add(values());
        break;
    case 1:
        add(params());
        break;
    case 2:
        add(pause);
        break;
    case 3:
        if (m_server == Server::Good) {
            planOdd();
        }
        break;
    default:
        planBroken();
    }
}

void Generator::planOdd() {
    m_server = Server::Odd;
    m_gesturesLeft = m_random.between(1, 6);
    static const std::vector<std::string> faults{
        "silent", "cut", "not-json", "not-object", "missing-members", "nul-byte"};
    static const std::vector<std::string> replies{
        "START Error",
        "START Not Ok at all",
        "DATA? {}",
        "DATA? []",
        R"(DATA? {"TimeConst":"soon","Channel0":null,"Channel1":7})",
        R"(PARAMS? {"Ref2":1e5,"TimeConst":0.2})",
        "PARAMS? null"};
    Action action;
    const bool isFault = m_random.percent(60);
    action.kind = isFault ? Action::Kind::Fault : Action::Kind::Reply;
    action.text = m_random.oneOf(isFault ? faults : replies);
    add(action);
}

void Generator::planBroken() {
    m_server = Server::Broken;
    m_gesturesLeft = m_random.between(1, 6);
    static const std::vector<std::string> faults{"late", "huge", "close-connection", "", ""};
    Action action;
    action.text = m_random.oneOf(faults);
    action.kind = action.text.empty() ? Action::Kind::ServerStops : Action::Kind::Fault;
    add(action);
}

// The client notices that its connection is gone only while no keypad is up.
void Generator::planOrder(const FlowModel& model) {
    if (m_server == Server::Odd && model.client().inStep()) {
        add({Action::Kind::Fault, {}, {}, 0, "none"});
        for (const char* command : {"START", "DATA?", "PARAMS?"}) {
            add({Action::Kind::UsualReply, {}, {}, 0, command});
        }
        m_server = Server::Good;
        return;
    }
    if (model.screen() == Screen::Keypad) {
        tap(Screen::Keypad, tag::back);
        return; // and again
    }
    add({Action::Kind::ServerStops});
    add({Action::Kind::ServerStarts});
    add(params());
    m_server = Server::Good;
}

void Generator::planGesture(Screen screen) {
    if (screen == Screen::Keypad) {
        planKeypad();
        return;
    }
    switch (m_random.weighted({70, 12, 10, 8})) {
    case 0:
        tap(screen, anyTag(screen));
        break;
    case 1:
        slide(screen);
        break;
    case 2:
        slideOff(screen);
        break;
    default:
        touchNothing(screen);
    }
}

int Generator::anyTag(Screen screen) {
    if (screen == Screen::Counter || screen == Screen::Histogram) {
        static constexpr std::array<int, 4> tags{tag::run, tag::otherScreen, tag::options,
                                                 tag::mode};
        return tags[m_random.weighted({50, 20, 20, screen == Screen::Histogram ? 25 : 0})];
    }
    return m_random.oneOf(itemsOf(screen)).tag;
}

void Generator::planKeypad() {
    switch (m_random.weighted({30, 40, 6, 8, 8, 4, 4})) {
    case 0:
        planNumber(m_random.oneOf(usualNumbers()));
        break;
    case 1:
        for (int i = m_random.between(1, 4); i > 0; --i) {
            static const std::string keys = "0123456789...---<<<";
            tap(Screen::Keypad,
                keys[static_cast<std::size_t>(m_random.below(static_cast<int>(keys.size())))]);
        }
        break;
    case 2:
        tap(Screen::Keypad, tag::back);
        break;
    case 3:
        tap(Screen::Keypad, tag::ok);
        break;
    case 4:
        slide(Screen::Keypad);
        break;
    case 5:
        slideOff(Screen::Keypad);
        break;
    default:
        touchNothing(Screen::Keypad);
    }
}

void Generator::planNumber(const std::string& number) {
    std::string keys = number;
    if (keys.front() == '-') {
        keys = keys.substr(1) + '-';
    }
    for (const char key : keys) {
        tap(Screen::Keypad, key);
    }
    tap(Screen::Keypad, tag::ok);
}

void Generator::tap(Screen screen, int tag) {
    touch(pixelOf(screen, tag));
    lift();
}

void Generator::touch(Pixel pixel) {
    add({Action::Kind::Touch, pixel});
}

void Generator::lift() {
    add({Action::Kind::Lift});
}

void Generator::slide(Screen screen) {
    touch(pixelOf(screen, anyTag(screen)));
    for (int i = m_random.between(1, 2); i > 0; --i) {
        touch(pixelOf(screen, anyTag(screen)));
    }
    lift();
}

// Off the item, which is a release, and perhaps onto another; the screen may be another by then.
void Generator::slideOff(Screen screen) {
    touch(pixelOf(screen, anyTag(screen)));
    touch(pixelOf(screen, tag::none));
    if (m_random.percent(30)) {
        touch(pixelOf(screen, anyTag(screen)));
    }
    lift();
}

void Generator::touchNothing(Screen screen) {
    touch(pixelOf(screen, tag::none));
    lift();
}

// The finger may still be there when another screen comes, so it must be clear there too what it
// touches.
Pixel Generator::pixelOf(Screen screen, int tag) {
    const Item whole{tag::none, {0, 10}, panelWidth, panelHeight - 10, {}, 0, 0};
    const Item& item = tag == tag::none ? whole : itemOf(screen, tag);
    for (;;) {
        const Pixel pixel{item.topLeft.x + m_random.below(item.width),
                          item.topLeft.y + m_random.below(item.height)};
        bool clear = tagAt(screen, pixel) == tag;
        for (int other = 0; other < screenCount; ++other) {
            clear = clear && tagAt(static_cast<Screen>(other), pixel);
        }
        if (clear) {
            return pixel;
        }
    }
}

Action Generator::values() {
    Action action{Action::Kind::Values};
    const std::size_t kind = m_random.weighted({40, 20, 10, 15, 15});
    for (double& value : action.values) {
        switch (kind) {
        case 0: // as counters count
            value = m_random.below(2000);
            break;
        case 1:
            value = m_random.between(-500, 500) / 8.0;
            break;
        case 2:
            value = 0;
            break;
        case 3:
            value = m_random.between(-1000, 1000) * 1e5;
            break;
        default:
            value = m_random.oneOf(std::vector<double>{0, 1, -1, 1e300, -1e300, 1e-300, 99999.5,
                                                       0.0001234, 1.234e-5, 1234567, 1.5e10});
        }
    }
    return action;
}

Action Generator::firstParams() {
    Action action{Action::Kind::Params};
    action.number = m_random.oneOf(usualTimeConsts());
    for (double& level : action.values) {
        level = m_random.between(-1000, 1000) / 1000.0;
    }
    return action;
}

Action Generator::params() {
    Action action = firstParams();
    if (m_server == Server::Good && m_random.percent(15)) {
        action.number = m_random.oneOf(oddTimeConsts());
        action.values[0] = m_random.oneOf(std::vector<double>{0, 1e9, -1e-9, 0.1234567});
    }
    return action;
}

} // namespace soak
