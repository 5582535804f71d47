#include "events.h"

namespace soak {

void TagWatcher::touchTagRead(int tag) {
    Event event;
    event.tag = tag;
    m_events.add(event);
}

} // namespace soak
