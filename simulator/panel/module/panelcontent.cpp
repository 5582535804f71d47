#include "panelcontent.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace panel {

namespace {

// The frame's tags, in which places are found and wiped out.
class TagMap {
public:
    explicit TagMap(const controller::Frame& frame)
        : m_width(frame.picture.width), m_height(frame.picture.height), m_tags(frame.tags) {}

    int width() const { return m_width; }
    int height() const { return m_height; }
    bool has(QPoint pixel, int tag) const {
        return pixel.x() >= 0 && pixel.x() < m_width && pixel.y() >= 0 && pixel.y() < m_height &&
               m_tags[index(pixel)] == tag;
    }
    int at(QPoint pixel) const { return m_tags[index(pixel)]; }

    // Takes out the place that `pixel` is in: its pixels, line by line.
    std::vector<QPoint> take(QPoint pixel, int tag) {
        std::vector<QPoint> place;
        std::vector<QPoint> edge{pixel};
        m_tags[index(pixel)] = 0;
        while (!edge.empty()) {
            const QPoint next = edge.back();
            edge.pop_back();
            place.push_back(next);
            for (const QPoint step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
                if (has(next + step, tag)) {
                    m_tags[index(next + step)] = 0;
                    edge.push_back(next + step);
                }
            }
        }
        return place;
    }

private:
    std::size_t index(QPoint pixel) const {
        return static_cast<std::size_t>(pixel.y()) * static_cast<std::size_t>(m_width) +
               static_cast<std::size_t>(pixel.x());
    }

    const int m_width;
    const int m_height;
    std::vector<std::uint8_t> m_tags;
};

// The pixel of the place that is nearest to its middle.
QPoint middleOf(const std::vector<QPoint>& place) {
    QPoint topLeft = place.front();
    QPoint bottomRight = place.front();
    for (const QPoint pixel : place) {
        topLeft = {std::min(topLeft.x(), pixel.x()), std::min(topLeft.y(), pixel.y())};
        bottomRight = {std::max(bottomRight.x(), pixel.x()), std::max(bottomRight.y(), pixel.y())};
    }
    const QPoint sum = topLeft + bottomRight;
    const auto distance = [sum](QPoint pixel) { return (2 * pixel - sum).manhattanLength(); };
    return *std::min_element(place.begin(), place.end(), [&distance](QPoint a, QPoint b) {
        return std::make_tuple(distance(a), a.y(), a.x()) <
               std::make_tuple(distance(b), b.y(), b.x());
    });
}

} // namespace

std::vector<PanelText> textsOn(const controller::Controller& controller) {
    std::vector<PanelText> texts;
    for (const controller::PlacedText& placed : controller.placedTextOnPanel()) {
        const QString text =
            QString::fromLatin1(placed.text.data(), static_cast<int>(placed.text.size())).trimmed();
        if (!text.isEmpty()) {
            texts.push_back({text, {placed.x, placed.y, placed.width, placed.height}});
        }
    }
    return texts;
}

int tagAt(const controller::Controller& controller, QPoint pixel) {
    const TagMap map(controller.frame());
    const bool inside = QRect(0, 0, map.width(), map.height()).contains(pixel);
    return inside ? map.at(pixel) : 0;
}

std::vector<int> tagsOn(const controller::Controller& controller) {
    const std::vector<std::uint8_t>& all = controller.frame().tags;
    const std::set<int> tags(all.begin(), all.end());
    return {tags.upper_bound(0), tags.end()};
}

TaggedPlaces placesOfTag(const controller::Controller& controller, int tag) {
    TagMap map(controller.frame());
    TaggedPlaces places;
    for (int y = 0; y < map.height(); ++y) {
        for (int x = 0; x < map.width(); ++x) {
            if (!map.has({x, y}, tag)) {
                continue;
            }
            const std::vector<QPoint> place = map.take({x, y}, tag);
            if (++places.count == 1) {
                places.first = middleOf(place);
            }
        }
    }
    return places;
}

} // namespace panel
