#pragma once

#include "eveassert.h"
#include "generationinforce.h"

// For the first line of a function that not every generation has: end the process when the one in
// force lacks it. `words` is what the message says besides the condition; `source` and `line` are
// where its readers know the function to be.
#define NEEDS_EVE2_OR_EVE3(source, line, words)                                                    \
    EVE_ASSERT(!isEve1(), "!EVE1 && \"" words "\"", source, line, __PRETTY_FUNCTION__)
#define NEEDS_EVE3(source, line, words)                                                            \
    EVE_ASSERT(isEve3(), "EVE3 && \"" words "\"", source, line, __PRETTY_FUNCTION__)

// The words of all but the encoders of display-list words, which name themselves.
#define ONLY_EVE2_OR_EVE3 "this function is worked only on EVE2 or EVE3"
#define ONLY_EVE3 "This function worked only on EVE3 device"
