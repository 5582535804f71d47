#pragma once

#include <string>

// What a program on the board leaves behind whose file `path` of a GPIO line is missing: the fixed
// message, the line that explains it, and its status.
inline std::string lineFailure(const std::string& message, const std::string& path) {
    return message + "\n" + path +
           ": No such file or directory; the kernel must have GPIO lines in sysfs (GPIO_SYSFS), "
           "and "
           "this line must be there and not in use\nstatus 1";
}
