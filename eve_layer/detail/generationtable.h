#pragma once

#include "registrytable.h"

#include <cstdint>

using GenerationRow = RegistryRow<uint32_t, 3>; // values for EVE_1, EVE_2, EVE_3

// What the registry knows of the controller generations; each name stands once.
RegistryTable<GenerationRow> generationTable();
