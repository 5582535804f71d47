#pragma once

#include "generation.h"

#include <cstdint>

namespace controller {

// A set of generations, one bit each, for tables that say where something exists.
using GenerationSet = std::uint8_t;

constexpr GenerationSet setOf(Generation generation) {
    return static_cast<GenerationSet>(1U << static_cast<unsigned>(generation));
}

constexpr GenerationSet e3Only = setOf(Generation::E3);
constexpr GenerationSet e1AndE2 = setOf(Generation::E1) | setOf(Generation::E2);
constexpr GenerationSet e1AndE3 = setOf(Generation::E1) | setOf(Generation::E3);
constexpr GenerationSet e2AndE3 = setOf(Generation::E2) | setOf(Generation::E3);
constexpr GenerationSet everyGeneration = e1AndE2 | e3Only;

constexpr bool contains(GenerationSet set, Generation generation) {
    return (set & setOf(generation)) != 0;
}

} // namespace controller
