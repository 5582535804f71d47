#include "counterwidget.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "Gpu.h"
#include "buttonrow.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "palette.h"
#include "shapes.h"
#include "text.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

// The top left corner of each channel's box.
constexpr std::array<Point, 4> boxes{{{10, 58}, {245, 58}, {10, 165}, {245, 165}}};
constexpr std::array<const char*, 4> channelNumbers{"0", "1", "2", "3"};

// Positions within a box. The badge is the corner that a diagonal cuts off.
constexpr Point boxSize{225, 97};
constexpr Point badgeTop{50, 0};
constexpr Point badgeBottom{0, 50};
constexpr Point badgeFill{2, 2}; // inside the frame
constexpr Point channelNumberCentre{13, 16};
constexpr Point valueRightEnd{209, 54};

void drawHistogramIcon(Gpu_Hal_Context_t* host) {
    drawShape(host, EVE_REG("__LINES"), {{377, 45}, {411, 45}});

    beginShape(host, EVE_REG("__RECTS"));
    addVertices(host, {{379, 44}, {387, 27}, {390, 44}, {398, 13}, {401, 44}, {409, 19}});
    setColor(host, palette::orange);
    addVertices(host, {{381, 43}, {385, 29}, {392, 43}, {396, 15}, {403, 43}, {407, 21}});
    endShape(host);
}

void drawButtonRow(Gpu_Hal_Context_t* host) {
    Gpu_CoCmd_FgColor(host, palette::buttonFace);
    setTagging(host, true);
    drawTaggedButton(host, optionsButton);
    drawTaggedButton(host, otherScreenButton);
    drawTaggedButton(host, runButton);
    setTagging(host, false);

    drawOptionsIcon(host);
    drawHistogramIcon(host);
    drawStartIcon(host, palette::buttonFace);
}

void drawBoxes(Gpu_Hal_Context_t* host) {
    for (const Point box : boxes) {
        drawOutline(host, box, box + boxSize);
    }
}

void fillBadge(Gpu_Hal_Context_t* host, Point box) {
    drawShape(host, EVE_REG("__EDGE_STRIP_A"), {box + badgeTop, box + badgeBottom});
}

void moveScissor(Gpu_Hal_Context_t* host, Point topLeft) {
    App_WrCoCmd_Buffer(host, SCISSOR_XY(topLeft.x, topLeft.y));
}

void drawBadges(Gpu_Hal_Context_t* host) {
    setColor(host, palette::buttonFace);
    for (const Point& box : boxes) {
        moveScissor(host, box + badgeFill);
        if (&box == &boxes.back()) {
            setColor(host, palette::buttonFace);
        }
        fillBadge(host, box);
    }

    setColor(host, palette::ink);
    moveScissor(host, {0, 0});
    beginShape(host, EVE_REG("__LINES"));
    for (const Point box : boxes) {
        addVertices(host, {box + badgeTop, box + badgeBottom});
    }
    endShape(host);
}

void drawChannelNumbers(Gpu_Hal_Context_t* host) {
    for (std::size_t channel = 0; channel < boxes.size(); ++channel) {
        drawCentredText(host, boxes.at(channel) + channelNumberCentre, 28,
                        channelNumbers.at(channel));
    }
}

void drawHeldHistogramButton(Gpu_Hal_Context_t* host) {
    drawButtonFace(host, otherScreenButton, palette::pressedFace);
    drawHistogramIcon(host);
}

} // namespace

CounterWidget::CounterWidget(Gpu_Hal_Context_t* host) : FTWidget(host) {
    setKeyProcessEnabled(true);
}

void CounterWidget::updateData(DataReaderData data) {
    std::copy(std::begin(data.channel), std::end(data.channel), m_values.begin());
    update();
}

void CounterWidget::setup() {
    drawBackground(host());
    setColor(host(), palette::ink);
    drawCentredText(host(), {160, 28}, 30, "COUNTER MODE");
    drawButtonRow(host());
    drawBoxes(host());
    drawBadges(host());
    drawChannelNumbers(host());
}

void CounterWidget::updateGUI() {
    for (std::size_t channel = 0; channel < boxes.size(); ++channel) {
        drawRightAlignedText(host(), boxes.at(channel) + valueRightEnd, 31,
                             formatValue(m_values.at(channel)));
    }

    const bool runHeld = isButtonPressed(runButton.tag);
    if (runHeld) {
        drawHeldRunButton(host(), m_started);
    }
    if (isButtonPressed(optionsButton.tag)) {
        drawHeldOptionsButton(host());
    }
    if (isButtonPressed(otherScreenButton.tag)) {
        drawHeldHistogramButton(host());
    }
    if (m_started) {
        drawStopIcon(host(), runHeld);
    }
}

void CounterWidget::buttonReleased(int tag) {
    switch (tag) {
    case otherScreenButton.tag:
        emit gotoHistogram();
        terminate();
        break;
    case optionsButton.tag:
        emit gotoOptions();
        terminate();
        break;
    case runButton.tag:
        m_started = !m_started;
        if (m_started) {
            emit start();
        } else {
            emit stop();
        }
        FTWidget::buttonReleased(tag);
        break;
    default:
        FTWidget::buttonReleased(tag);
    }
}
