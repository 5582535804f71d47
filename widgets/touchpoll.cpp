#include "touchpoll.h"

#include "touch.h"

#include <utility>

void onTouchPoll(std::function<void()> hook) {
    setTouchPollHook(std::move(hook));
}
