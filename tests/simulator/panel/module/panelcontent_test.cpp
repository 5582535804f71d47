#include "host.h"
#include "panelcontent.h"

#include <gtest/gtest.h>

namespace panel {
namespace {

using namespace controllertest; // its operator+ too

using Words = std::vector<std::uint32_t>;

constexpr std::uint32_t clearAll = 0x26000007;
constexpr std::uint32_t beginRectangles = 0x1F000009;

Words vertex(int x, int y) {
    return {0x80000000U | static_cast<std::uint32_t>(x) << 21U |
            static_cast<std::uint32_t>(y) << 12U};
}

Words tagged(std::uint32_t tag, int left, int top, int right, int bottom) {
    return Words{0x03000000U | tag, beginRectangles} + vertex(left, top) + vertex(right, bottom);
}

class PanelContentTest : public testing::Test {
protected:
    PanelContentTest() { m_host.bootWithPanel(); }

    void show(const Words& words) {
        m_host.send(Words{cmd::dlStart, 0x12000000, clearAll} + words + Words{0, cmd::swap});
        m_host.waitFrames(3);
    }

    Host m_host{controller::Generation::E3};
};

TEST_F(PanelContentTest, TextsHaveABoxAndNoBlanksAtTheirEnds) {
    show(Words{cmd::text, pair(100, 60), pair(26, 0)} + words(" Ok ") +
         Words{cmd::text, pair(100, 20), pair(26, 0)} + words("  "));
    const std::vector<PanelText> texts = textsOn(m_host.chip);
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts[0].text, "Ok");
    EXPECT_GT(texts[0].box.left(), 100);
    EXPECT_EQ(texts[0].box.top(), 60);
    EXPECT_FALSE(texts[0].box.isEmpty());
}

TEST_F(PanelContentTest, APixelHasTheTagOfWhatIsDrawnThere) {
    show(tagged(7, 10, 20, 30, 40));
    EXPECT_EQ(tagAt(m_host.chip, {20, 30}), 7);
    EXPECT_EQ(tagAt(m_host.chip, {50, 30}), 0);
    EXPECT_EQ(tagAt(m_host.chip, {480, 30}), 0);
    EXPECT_EQ(tagAt(m_host.chip, {20, -1}), 0);
}

TEST_F(PanelContentTest, ATagIsFoundInTheMiddleOfItsPlace) {
    show(tagged(7, 10, 20, 30, 40) + tagged(8, 100, 20, 120, 40));
    const TaggedPlaces places = placesOfTag(m_host.chip, 8);
    EXPECT_EQ(places.count, 1);
    EXPECT_EQ(places.first, QPoint(109, 29));
}

TEST_F(PanelContentTest, ATagInTheShapeOfAnAngleIsFoundOnIt) {
    show(tagged(7, 10, 20, 200, 30) + tagged(7, 10, 20, 20, 200));
    const TaggedPlaces places = placesOfTag(m_host.chip, 7);
    EXPECT_EQ(places.count, 1);
    EXPECT_EQ(tagAt(m_host.chip, places.first), 7);
}

TEST_F(PanelContentTest, PlacesOfATagAreCounted) {
    show(tagged(7, 10, 20, 30, 40) + tagged(7, 100, 20, 120, 40) + tagged(7, 10, 100, 30, 140));
    EXPECT_EQ(placesOfTag(m_host.chip, 7).count, 3);
    EXPECT_EQ(placesOfTag(m_host.chip, 9).count, 0);
}

TEST_F(PanelContentTest, TagsAreListedInOrder) {
    show(tagged(7, 10, 20, 30, 40) + tagged(3, 100, 20, 120, 40) + tagged(7, 10, 100, 30, 140));
    EXPECT_EQ(tagsOn(m_host.chip), (std::vector<int>{3, 7}));
}

} // namespace
} // namespace panel
