#include "pnrwidget.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "buttonrow.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "images.h"
#include "palette.h"
#include "shapes.h"
#include "streams.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr Button modeButton = iconButton(5, {10, 8});

// An icon kept as a bitmap in the controller's general memory; `topLeft` is its place on the mode
// button.
struct Icon {
    uint32_t handle;
    uint32_t address;
    int16_t width;
    uint32_t height;
    Point topLeft;
};
constexpr Icon latestIcon{0, 0, 18, 28, {23, 14}};
constexpr Icon accumulateIcon{1, 2000, 24, 36, {19, 10}};

constexpr uint32_t binPitch = 110;
constexpr double fullBarHeight = 175;

// The four tiles of the counter icon, clockwise from the top left.
struct Tile {
    Point topLeft;
    Point bottomRight;
    bool recoloured; // the outlines' colour is set before this one
};
constexpr std::array<Tile, 4> tiles{{{{378, 15}, {392, 27}, true},
                                     {{396, 15}, {410, 27}, false},
                                     {{396, 31}, {410, 43}, true},
                                     {{378, 31}, {392, 43}, false}}};

void defineIcon(Gpu_Hal_Context_t* host, const Icon& icon) {
    App_WrCoCmd_Buffer(host, BITMAP_HANDLE(icon.handle));
    Gpu_CoCmd_SetBitmap(host, icon.address, static_cast<uint16_t>(EVE_REG("__ARGB4")), icon.width,
                        icon.height);
}

void loadIcons(Gpu_Hal_Context_t* host) {
    inflateImage(host, latestIcon.address, assets::derivativeIcon);
    inflateImage(host, accumulateIcon.address, assets::integralIcon);
    defineIcon(host, latestIcon);
    defineIcon(host, accumulateIcon);
}

void drawCounterIcon(Gpu_Hal_Context_t* host) {
    setColor(host, palette::tileGrey);
    beginShape(host, EVE_REG("__RECTS"));
    for (const Tile& tile : tiles) {
        addVertices(host, {tile.topLeft, tile.bottomRight});
    }
    endShape(host);

    for (const Tile& tile : tiles) {
        if (tile.recoloured) {
            setColor(host, palette::barOutline);
        }
        drawOutline(host, tile.topLeft, tile.bottomRight);
    }
}

void drawHistogramButtons(Gpu_Hal_Context_t* host) {
    Gpu_CoCmd_FgColor(host, palette::buttonFace);
    setTagging(host, true);
    drawTaggedButton(host, optionsButton);
    drawTaggedButton(host, otherScreenButton);
    drawTaggedButton(host, runButton);
    drawTaggedButton(host, modeButton);
    setTagging(host, false);

    drawOptionsIcon(host);
    drawCounterIcon(host);
    drawStartIcon(host, palette::buttonFace);
}

void drawHeldCounterButton(Gpu_Hal_Context_t* host) {
    drawButtonFace(host, otherScreenButton, palette::pressedFace);
    drawCounterIcon(host);
}

// The height of the bar of `bin` where `largest`, which no bin exceeds, has a full one. That of an
// infinite bin, or of one that is not a number, is not above zero.
double heightOf(double bin, double largest) {
    const double scaled = bin * fullBarHeight;
    return std::isfinite(scaled) ? scaled / largest : bin / largest * fullBarHeight;
}

// A bar standing on `bottomLeft`; none if it has no height.
void drawBar(Gpu_Hal_Context_t* host, Point bottomLeft, uint32_t width, double height) {
    if (height > 0) {
        const auto top = static_cast<uint32_t>(bottomLeft.y - height);
        addVertices(host, {bottomLeft, {bottomLeft.x + width, top}});
    }
}

} // namespace

PNRWidget::PNRWidget(Gpu_Hal_Context_t* host) : FTWidget(host) {
    setKeyProcessEnabled(true);
}

void PNRWidget::updateData(DataReaderData data) {
    const auto& channel = data.channel;
    const std::array<double, 4> sample{channel[0] - channel[1], channel[1] - channel[2],
                                       channel[2] - channel[3], channel[3]};
    for (std::size_t bin = 0; bin < m_bins.size(); ++bin) {
        m_bins.at(bin) = m_accumulate ? m_bins.at(bin) + sample.at(bin) : sample.at(bin);
    }
    update();
}

void PNRWidget::clear() {
    m_bins.fill(0.0);
}

void PNRWidget::setup() {
    loadIcons(host());
    drawBackground(host());
    setColor(host(), palette::ink);
    drawCentredText(host(), {183, 28}, 30, "PNR MODE");
    drawHistogramButtons(host());
    drawOutline(host(), {10, 58}, {470, 260});
}

void PNRWidget::updateGUI() {
    drawBars();
    drawLabels();

    const bool runHeld = isButtonPressed(runButton.tag);
    if (runHeld) {
        drawHeldRunButton(host(), m_started);
    }
    if (isButtonPressed(optionsButton.tag)) {
        drawHeldOptionsButton(host());
    }
    if (isButtonPressed(otherScreenButton.tag)) {
        drawHeldCounterButton(host());
    }
    if (isButtonPressed(modeButton.tag)) {
        drawButtonFace(host(), modeButton, palette::pressedFace);
    }
    drawModeIcon();
    if (m_started) {
        drawStopIcon(host(), runHeld);
    }
}

// Each bar is a body with a fill 2 pixels inside it. The largest bin has the full height, unless
// all are below 1.
void PNRWidget::drawBars() const {
    double largest = 1.0;
    for (const double bin : m_bins) {
        largest = std::max(largest, bin);
    }
    const auto barHeight = [&](std::size_t bin) { return heightOf(m_bins.at(bin), largest); };

    setColor(host(), palette::barOutline);
    beginShape(host(), EVE_REG("__RECTS"));
    for (uint32_t bin = 0; bin < m_bins.size(); ++bin) {
        drawBar(host(), {30 + binPitch * bin, 259}, 90, barHeight(bin));
    }
    endShape(host());

    setColor(host(), palette::buttonFace);
    beginShape(host(), EVE_REG("__RECTS"));
    for (uint32_t bin = 0; bin < m_bins.size(); ++bin) {
        drawBar(host(), {32 + binPitch * bin, 257}, 86, barHeight(bin) - 4);
    }
    endShape(host());
}

void PNRWidget::drawLabels() const {
    setColor(host(), palette::barOutline);
    for (uint32_t bin = 0; bin < m_bins.size(); ++bin) {
        drawCentredText(host(), {75 + binPitch * bin, 70}, 27, formatValue(m_bins.at(bin)));
    }
}

void PNRWidget::drawModeIcon() const {
    const Icon& icon = m_accumulate ? accumulateIcon : latestIcon;
    beginShape(host(), EVE_REG("__BITMAPS"));
    App_WrCoCmd_Buffer(host(), VERTEX2II(icon.topLeft.x, icon.topLeft.y, icon.handle, 0));
    endShape(host());
}

void PNRWidget::buttonReleased(int tag) {
    switch (tag) {
    case runButton.tag:
        m_started = !m_started;
        if (m_started) {
            clear();
            emit start();
        } else {
            emit stop();
        }
        break;
    case otherScreenButton.tag:
        emit gotoCounts();
        terminate();
        break;
    case optionsButton.tag:
        emit gotoOptions();
        terminate();
        break;
    case modeButton.tag:
        m_accumulate = !m_accumulate;
        break;
    }
    FTWidget::buttonReleased(tag);
}
