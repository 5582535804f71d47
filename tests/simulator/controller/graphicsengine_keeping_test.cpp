// What the engine keeps of one frame for the next: never anything that could be seen.

#include "randomlists.h"
#include "scanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

using namespace controller;
using namespace controller::listwords;

namespace {

using List = std::vector<std::uint32_t>;

constexpr int sceneWidth = 200;
constexpr int sceneHeight = 100;

// A panel full of work, and a bitmap of one texel at address 5000.
const List beginning = {
    clearAll,
    begin(primitive::Rects),
    vertex2f(0, 0),
    vertex2f(3200, 1600),
    bitmapHandle(0),
    dl::bitmapSource(5000),
    dl::bitmapLayout(format::L8, 1, 1),
    bitmapSize(nearest, 1, 1),
    dl::colorRgb(0x00FF00),
    begin(primitive::Bitmaps),
    dl::vertex2ii(7, 7, 0, 0),
    end(),
    dl::colorRgb(0xFF0000),
};

List dotAt(int x) {
    return {pointSize(40), begin(primitive::Points), vertex2f(x * 16 + 8, 808)};
}

class Kept : public testing::Test {
protected:
    Kept() {
        for (int x = 0; x < 3; ++x) { // until there is something to keep
            scan(beginning + dotAt(x));
        }
    }
    const Frame& scan(const List& list) { return scanner.scan(sceneWidth, sceneHeight, list); }
    // What a frame costs that is not the last one's.
    std::int64_t workFor(const List& list) {
        const std::int64_t before = scanner.engine().workDone();
        scan(list);
        return scanner.engine().workDone() - before;
    }
    void expectAllAnew(const List& list) {
        const std::int64_t done = workFor(list);
        EXPECT_EQ(done, scan(list).work);
        EXPECT_GT(done, 0);
    }

    Scanner scanner;
};

} // namespace

TEST_F(Kept, AFrameLikeTheLastCostsNothing) {
    scan(beginning + dotAt(9));
    EXPECT_EQ(workFor(beginning + dotAt(9)), 0);
    scanner.store(100000, {1, 2, 3});
    EXPECT_EQ(workFor(beginning + dotAt(9)), 0) << "other memory was written";
}

TEST_F(Kept, AnotherEndCostsNoMoreThanTheEnd) {
    for (int x = 10; x < 100; ++x) {
        ASSERT_LT(workFor(beginning + dotAt(x)), 10000) << x;
        ASSERT_EQ(scanner.scan(sceneWidth, sceneHeight, beginning + dotAt(x)).picture.at(x, 50),
                  0xFFFF0000)
            << x;
    }
}

TEST_F(Kept, WorkIsCountedAsIfAllWereDrawn) {
    const std::int64_t kept = scan(beginning + dotAt(50)).work;
    Scanner other;
    EXPECT_EQ(other.scan(sceneWidth, sceneHeight, beginning + dotAt(50)).work, kept);
}

TEST_F(Kept, AnotherBeginningIsDrawn) {
    List other = beginning;
    other.front() = clearAll - 1;
    expectAllAnew(other + dotAt(3));
}

TEST_F(Kept, MemoryThatTheBeginningReadIsReadAgain) {
    scanner.store(5000, {255});
    const List list = beginning + dotAt(1);
    EXPECT_EQ(scan(list).picture.at(7, 7), 0xFF00FF00);
    scanner.store(5000, {0});
    EXPECT_EQ(scan(list).picture.at(7, 7), 0xFFFFFFFF);
}

TEST_F(Kept, AnotherMacroMakesAnotherBeginning) {
    scanner.macros()[0] = 1;
    expectAllAnew(beginning + dotAt(3));
}

TEST_F(Kept, AnotherSizeMakesAnotherBeginning) {
    const std::int64_t before = scanner.engine().workDone();
    const Frame& frame = scanner.scan(sceneWidth, sceneHeight - 1, beginning + dotAt(3));
    EXPECT_EQ(scanner.engine().workDone() - before, frame.work);
}

TEST_F(Kept, HandlesAsOtherListsLeaveThemMakeAnotherBeginning) {
    const List usesHandle5 = {clearAll, begin(primitive::Bitmaps), dl::vertex2ii(0, 0, 5, 0)};
    scanner.store(0, {255});
    for (int i = 0; i < 3; ++i) {
        scan(usesHandle5 + dotAt(i));
    }
    EXPECT_EQ(scan(usesHandle5 + dotAt(3)).picture.at(0, 0), 0xFF000000);
    scan({bitmapHandle(5), dl::bitmapLayout(format::L8, 1, 1), bitmapSize(nearest, 1, 1)});
    EXPECT_EQ(scan(usesHandle5 + dotAt(3)).picture.at(0, 0), 0xFFFFFFFF);
}

TEST_F(Kept, AlphaOfTheBeginningIsThereForWhatFollows) {
    const List translucent = {word(opcode::ClearColorA, 100), clearAll,
                              dl::blendFunc(blend::DstAlpha, blend::Zero)};
    for (int x = 0; x < 5; ++x) {
        const List list = translucent + beginning + dotAt(20 + x);
        EXPECT_TRUE(areSame(scan(list), Scanner().scan(sceneWidth, sceneHeight, list))) << x;
    }
}

TEST(KeptBeginnings, CannotBeSeenInAnyList) {
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        RandomLists random(seed);
        Scanner keeping;
        storeRandom(keeping, random);
        Scanner forgetting;
        RandomLists again(seed);
        storeRandom(forgetting, again);
        List list;
        random.append(list, 40, sceneWidth, sceneHeight);
        for (int frame = 0; frame < 12; ++frame) {
            const std::uint32_t most = random.below(3) == 0 ? 40 : 12;
            list.resize(list.size() - std::min<std::size_t>(random.below(most), list.size()));
            random.append(list, 4, sceneWidth, sceneHeight);
            if (random.below(4) == 0) {
                const std::uint32_t place = random.below(70000);
                const int value = static_cast<int>(random.below(256));
                keeping.store(place, {value});
                forgetting.store(place, {value});
            }
            forgetting.engine().forget();
            ASSERT_TRUE(areSame(keeping.scan(sceneWidth, sceneHeight, list),
                                forgetting.scan(sceneWidth, sceneHeight, list)))
                << "seed " << seed << ", frame " << frame;
        }
    }
}
