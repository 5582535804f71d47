#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace controller {

constexpr std::size_t longestFormattedText = 4096;

// What E3's option FORMAT makes of a string: each percent sign with its conversion is replaced by
// the next argument word. Conversions: d i u x X o c s p and %%, with the flags - + 0 # and blank,
// a width and a precision of at most 99 (or * for an argument). `stringAt` gives the text that an
// argument of %s points at. A conversion that is none is left out, and so is what goes beyond
// the longest text.
std::string formatText(const std::string& format, const std::vector<std::uint32_t>& arguments,
                       const std::function<std::string(std::uint32_t)>& stringAt);

} // namespace controller
