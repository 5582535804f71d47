#pragma once

#include "registrytable.h"

using PanelTimingRow = RegistryRow<unsigned short, 4>; // values for 3.5, 4.3, 5.0 and 7.0 inch

// Timing and output settings of the panel sizes; each name stands once. Width and height are in
// pixels, other horizontal values in pixel clocks, other vertical values in lines, __DispPCLK is
// the pixel clock's divisor; the rest is what the register of that name takes.
RegistryTable<PanelTimingRow> panelTimings();
