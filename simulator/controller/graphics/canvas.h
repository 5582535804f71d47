#pragma once

#include "frame.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace controller {

// Which pixels of a picture may have changed: in each row those between the outermost two.
class ChangedPixels {
public:
    void start(int width, int height); // of a picture of this size, none
    void add(int y, int left, int right) {
        Row& row = m_rows[static_cast<std::size_t>(y)];
        row.left = left < row.left ? left : row.left;
        row.right = right > row.right ? right : row.right;
    }
    void add(const ChangedPixels& others);
    void addAll();
    void clear() { start(m_width, static_cast<int>(m_rows.size())); }

    // Calls `visit` (index of the first pixel, count) for each row that has any.
    template<typename Visit>
    void forEachRow(Visit visit) const {
        std::size_t start = 0;
        for (const Row& row : m_rows) {
            if (row.left < row.right) {
                visit(start + static_cast<std::size_t>(row.left),
                      static_cast<std::size_t>(row.right - row.left));
            }
            start += static_cast<std::size_t>(m_width);
        }
    }

private:
    struct Row {
        int left;
        int right;
    };

    int m_width = 0;
    std::vector<Row> m_rows;
};

// What a frame is drawn on: colour with its alpha, tag and stencil of each pixel.
//
// It can be kept as it stands half way through a frame and taken back to that; only what has been
// drawn since is copied.
class Canvas {
public:
    // Begins a picture, all 0. Nothing is kept.
    void start(int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
               static_cast<std::size_t>(x);
    }
    std::uint32_t* pixels() { return m_now.pixels.data(); }
    std::uint8_t* tags() { return m_now.tags.data(); }
    std::uint8_t* stencil() { return m_now.stencil.data(); }
    // To be called by whoever draws.
    void noteDrawn(int y, int left, int right) { m_sinceKept.add(y, left, right); }

    void keep();
    void takeBack();
    // What has been drawn since.
    const ChangedPixels& drawnSinceKept() const { return m_sinceKept; }

    // Brings a frame up to date that has been handed in ever since it was empty.
    void show(Frame& frame);

private:
    struct Layers {
        std::vector<std::uint32_t> pixels;
        std::vector<std::uint8_t> tags;
        std::vector<std::uint8_t> stencil;

        void copy(const Layers& from, const ChangedPixels& which);
    };

    int m_width = 0;
    int m_height = 0;
    Layers m_now;
    Layers m_kept;
    ChangedPixels m_sinceKept;  // what may differ between the two
    ChangedPixels m_sinceShown; // besides these
};

} // namespace controller
