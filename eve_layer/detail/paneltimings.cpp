#include "paneltimings.h"

namespace {

// The gaps at the end are real: of these panels only the 4.3-inch one is brought up.
constexpr PanelTimingRow timingRows[] = {
    {u"__DispWidth", {320, 480, 800, 800}},
    {u"__DispHeight", {240, 272, 480, 480}},
    {u"__DispHCycle", {408, 548, 1056, 1056}},
    {u"__DispHOffset", {70, 43, 46, 46}},
    {u"__DispHSync0", {0, 0, 0, 0}},
    {u"__DispHSync1", {10, 41, 10, 10}},
    {u"__DispVCycle", {263, 292, 525, 525}},
    {u"__DispVOffset", {13, 12, 23, 23}},
    {u"__DispVSync0", {0, 0, 0, 0}},
    {u"__DispVSync1", {2, 10, 10, 10}},
    {u"__DispPCLK", {6, 5, 2, 2}},
    {u"__DispSwizzle", {2, 0, 0, 0}},
    {u"__DispPCLKPol", {1, 1, 0, 0}},
    {u"__DispCSpread", {0, 0, 0, 0}},
    {u"__DispDither", {absent, 1, absent, 1}},
    {u"__DispRotate", {absent, 0, absent, absent}},
};

} // namespace

RegistryTable<PanelTimingRow> panelTimings() {
    return RegistryTable<PanelTimingRow>(timingRows);
}
