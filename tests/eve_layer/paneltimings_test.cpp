#include "paneltimings.h"

#include <QString>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace {

using testing::ElementsAre;

auto countNamesOfSize(std::size_t size) {
    const auto table = panelTimings();
    return std::count_if(table.begin(), table.end(), [size](const PanelTimingRow& row) {
        return row.values[size].has_value();
    });
}

std::array<std::optional<unsigned short>, 4> timingsOf(const char* name) {
    for (const PanelTimingRow& row : panelTimings()) {
        if (row.name == QLatin1String(name)) {
            return row.values;
        }
    }
    ADD_FAILURE() << "no row " << name;
    return {};
}

TEST(PanelTimings, HasTheNamesOfEachSize) {
    EXPECT_EQ(countNamesOfSize(0), 14);
    EXPECT_EQ(countNamesOfSize(1), 16);
    EXPECT_EQ(countNamesOfSize(2), 14);
    EXPECT_EQ(countNamesOfSize(3), 15);
}

TEST(PanelTimings, HasTheValuesOfEachSize) {
    EXPECT_THAT(timingsOf("__DispWidth"), ElementsAre(320, 480, 800, 800));
    EXPECT_THAT(timingsOf("__DispHeight"), ElementsAre(240, 272, 480, 480));
    EXPECT_THAT(timingsOf("__DispHCycle"), ElementsAre(408, 548, 1056, 1056));
    EXPECT_THAT(timingsOf("__DispHOffset"), ElementsAre(70, 43, 46, 46));
    EXPECT_THAT(timingsOf("__DispHSync0"), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(timingsOf("__DispHSync1"), ElementsAre(10, 41, 10, 10));
    EXPECT_THAT(timingsOf("__DispVCycle"), ElementsAre(263, 292, 525, 525));
    EXPECT_THAT(timingsOf("__DispVOffset"), ElementsAre(13, 12, 23, 23));
    EXPECT_THAT(timingsOf("__DispVSync0"), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(timingsOf("__DispVSync1"), ElementsAre(2, 10, 10, 10));
    EXPECT_THAT(timingsOf("__DispPCLK"), ElementsAre(6, 5, 2, 2));
    EXPECT_THAT(timingsOf("__DispSwizzle"), ElementsAre(2, 0, 0, 0));
    EXPECT_THAT(timingsOf("__DispPCLKPol"), ElementsAre(1, 1, 0, 0));
    EXPECT_THAT(timingsOf("__DispCSpread"), ElementsAre(0, 0, 0, 0));
}

TEST(PanelTimings, LeavesOutDitherAndRotationWhereTheyAreNotSet) {
    EXPECT_THAT(timingsOf("__DispDither"), ElementsAre(absent, 1, absent, 1));
    EXPECT_THAT(timingsOf("__DispRotate"), ElementsAre(absent, 0, absent, absent));
}

} // namespace
