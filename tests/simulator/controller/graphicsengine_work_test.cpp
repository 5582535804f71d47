// What drawing a list costs, as counted: never more than a frame has time for.

#include "costlylists.h"
#include "scanner.h"
#include "work.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

using namespace controller;
using namespace controller::listwords;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;

namespace {

// The last row of pixels that is drawn, and the word behind, are counted beyond the limit.
constexpr std::int64_t mostWork = Work::limit + 500'000;

std::int64_t workOf(int width, int height, const std::vector<std::uint32_t>& list) {
    Scanner scanner;
    return scanner.scan(width, height, list).work;
}

class CostlyLists : public testing::TestWithParam<CostlyList> {};

std::vector<std::uint32_t> filledOften(int times) {
    std::vector<std::uint32_t> list = {clearAll, begin(primitive::Rects)};
    for (int i = 0; i < times; ++i) {
        list.push_back(vertex2f(0, 0));
        list.push_back(vertex2f(16383, 16383));
    }
    return list;
}

} // namespace

TEST_P(CostlyLists, CostNoMoreThanAFrameHasTimeFor) {
    Scanner scanner;
    for (const int side : {1, 300}) {
        const Frame& frame = scanner.scan(side, side, GetParam().words);
        EXPECT_THAT(frame.work, Lt(mostWork)) << side;
        EXPECT_THAT(frame.complaints,
                    Contains(testing::AnyOf(HasSubstr("more to draw"), HasSubstr("circles"))))
            << side;
    }
}

INSTANTIATE_TEST_SUITE_P(Work, CostlyLists, testing::ValuesIn(costlyLists()),
                         [](const testing::TestParamInfo<CostlyList>& test) {
                             std::string name = test.param.name;
                             for (char& letter : name) {
                                 letter = std::isalnum(static_cast<unsigned char>(letter)) ? letter
                                                                                           : '_';
                             }
                             return name;
                         });

TEST(Work, AFrameHasTimeForAHundredLayers) {
    Scanner scanner;
    EXPECT_THAT(scanner.scan(480, 272, filledOften(100)).complaints, IsEmpty());
}

TEST(Work, GrowsWithThePixelsDrawn) {
    const std::int64_t small = workOf(100, 100, filledOften(10));
    const std::int64_t large = workOf(100, 200, filledOften(10));
    EXPECT_GT(large, small * 3 / 2);
    EXPECT_LT(large, small * 5 / 2);
}

TEST(Work, MayBeLimitedFurther) {
    Scanner scanner;
    scanner.engine().limitWork(2'000'000);
    const Frame& frame = scanner.scan(480, 272, filledOften(100));
    EXPECT_THAT(frame.complaints, Contains(HasSubstr("more to draw")));
    EXPECT_LT(frame.work, 2'010'000);
}

TEST(Work, OfWhatLiesOutsideThePanelIsThatOfItsWords) {
    const std::vector<std::uint32_t> beyond = {
        scissorXy(100, 0),        scissorSize(2048, 2048),  pointSize(8191),
        begin(primitive::Points), vertex2f(100 * 16, 1600),
    };
    EXPECT_EQ(workOf(100, 100, beyond) - workOf(100, 100, {}),
              workOf(1, 1, beyond) - workOf(1, 1, {}));
    const std::vector<std::uint32_t> across = {scissorSize(2048, 2048), clearAll};
    const std::vector<std::uint32_t> within = {scissorSize(100, 100), clearAll};
    EXPECT_EQ(workOf(100, 100, across), workOf(100, 100, within));
}

TEST(Work, TooMuchOfItLeavesWhatIsDrawnByThen) {
    Scanner scanner;
    const Frame& frame = scanner.scan(
        64, 64,
        costly::looped({dl::clearColorRgb(0x0000FF), clearAll, dl::colorRgb(0xFF0000)},
                       {begin(primitive::Points), pointSize(8191), vertex2f(512, 512)}));
    EXPECT_THAT(frame.complaints, Contains(HasSubstr("more to draw")));
    EXPECT_EQ(frame.picture.at(32, 32), 0xFFFF0000);
}

TEST(Work, TooMuchOfItEndsInTheMiddleOfAShape) {
    Scanner scanner;
    std::vector<std::uint32_t> list = costly::turnedBitmap(format::Paletted8, bilinear | repeatY);
    list.insert(list.end(), {word(opcode::AlphaFunc, 0), clearAll, begin(primitive::Bitmaps),
                             dl::vertex2ii(0, 0, 1, 0)});
    list[list.size() - 4] = word(opcode::StencilFunc, test::Equal << 16 | 0xFF);
    const Frame& frame = scanner.scan(2048, 2048, list);
    EXPECT_THAT(frame.complaints, Contains(HasSubstr("more to draw")));
    EXPECT_EQ(frame.tags.front(), 255);
    EXPECT_EQ(frame.tags.back(), 0);
}
