#pragma once

#include "displaysettings.h"

// Which controller generation the registry is set to.

inline bool isEve1() {
    return DisplaySettings::getInstance()->getDisplayGeneration() == DisplaySettings::EVE_1;
}

inline bool isEve3() {
    return DisplaySettings::getInstance()->getDisplayGeneration() == DisplaySettings::EVE_3;
}
