#include "touch.h"

#include "Gpu_Hal.h"
#include "displaysettings.h"

#include <utility>

namespace {

std::function<void()> touchPollHook;

} // namespace

int readTouchTag(Gpu_Hal_Context_t* host) {
    constexpr int untagged = 255;
    const int tag = Gpu_Hal_Rd8(host, EVE_REG("__REG_TOUCH_TAG"));
    if (touchPollHook) {
        touchPollHook();
    }
    return tag == untagged ? noTouch : tag;
}

void setTouchPollHook(std::function<void()> hook) {
    touchPollHook = std::move(hook);
}
