#include "modelboard.h"

#include "platform.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace {

constexpr controller::Nanoseconds byteTime = 400;
constexpr controller::Nanoseconds messageTime = 10'000;
constexpr controller::Nanoseconds millisecond = 1'000'000;

std::unique_ptr<controller::Controller> fitted;
controller::Nanoseconds clockTime = 0;
std::multimap<controller::Nanoseconds, std::function<void()>> due; // by the time on the clock

unsigned char exchange(unsigned char sent) {
    clockTime += byteTime;
    return fitted->exchange(sent, clockTime);
}

} // namespace

namespace modelboard {

void fit(controller::Generation generation, const controller::Options& options) {
    fitted = std::make_unique<controller::Controller>(generation, options);
    clockTime = 0;
    due.clear();
}

controller::Controller& controller() {
    return *fitted;
}

controller::Nanoseconds now() {
    return clockTime;
}

void pass(controller::Nanoseconds time) {
    const controller::Nanoseconds end = clockTime + time;
    while (!due.empty() && due.begin()->first <= end) {
        clockTime = std::max(clockTime, due.begin()->first);
        fitted->advance(clockTime);
        const std::function<void()> action = std::move(due.begin()->second);
        due.erase(due.begin());
        action();
    }
    clockTime = end;
    fitted->advance(clockTime);
}

void after(controller::Nanoseconds delay, std::function<void()> action) {
    due.emplace(clockTime + delay, std::move(action));
}

} // namespace modelboard

int platform_init() {
    return 0;
}

void platform_sleep_ms(unsigned int ms) {
    modelboard::pass(ms * millisecond);
}

void platform_spi_init() {}

void platform_spi_deinit() {}

unsigned char platform_spi_send_recv_byte(unsigned char b) {
    modelboard::pass(messageTime);
    return exchange(b);
}

void platform_spi_send_data(unsigned char* data, unsigned short len) {
    modelboard::pass(messageTime);
    for (unsigned short i = 0; i < len; ++i) {
        exchange(data[i]);
    }
}

void platform_spi_recv_data(unsigned char* data, unsigned short len) {
    modelboard::pass(messageTime);
    for (unsigned short i = 0; i < len; ++i) {
        data[i] = exchange(0);
    }
}

void platform_gpio_value(gpio_name name, gpio_val val) {
    if (name == GPIO_CS) {
        fitted->setChipSelect(val == GPIO_HIGH, clockTime);
    } else if (name == GPIO_PD) {
        fitted->setPowerDown(val == GPIO_HIGH, clockTime);
    }
}
