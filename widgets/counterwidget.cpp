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

// The box of each channel.
struct Box {
    Point topLeft;
    const char* channel;
    bool recoloured; // the badges' colour is set once more before this one
};
constexpr std::array<Box, 4> boxes{{{{10, 58}, "0", false},
                                    {{245, 58}, "1", false},
                                    {{10, 165}, "2", false},
                                    {{245, 165}, "3", true}}};

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

void drawCounterButtons(Gpu_Hal_Context_t* host) {
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

void drawFrames(Gpu_Hal_Context_t* host) {
    for (const Box& box : boxes) {
        drawOutline(host, box.topLeft, box.topLeft + boxSize);
    }
}

void moveScissor(Gpu_Hal_Context_t* host, Point topLeft) {
    App_WrCoCmd_Buffer(host, SCISSOR_XY(topLeft.x, topLeft.y));
}

void fillBadges(Gpu_Hal_Context_t* host) {
    setColor(host, palette::buttonFace);
    for (const Box& box : boxes) {
        moveScissor(host, box.topLeft + badgeFill);
        if (box.recoloured) {
            setColor(host, palette::buttonFace);
        }
        drawShape(host, EVE_REG("__EDGE_STRIP_A"),
                  {box.topLeft + badgeTop, box.topLeft + badgeBottom});
    }
}

void outlineBadges(Gpu_Hal_Context_t* host) {
    setColor(host, palette::ink);
    moveScissor(host, {0, 0});
    beginShape(host, EVE_REG("__LINES"));
    for (const Box& box : boxes) {
        addVertices(host, {box.topLeft + badgeTop, box.topLeft + badgeBottom});
    }
    endShape(host);
}

void drawChannelNumbers(Gpu_Hal_Context_t* host) {
    for (const Box& box : boxes) {
        drawCentredText(host, box.topLeft + channelNumberCentre, 28, box.channel);
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
    drawCounterButtons(host());
    drawFrames(host());
    fillBadges(host());
    outlineBadges(host());
    drawChannelNumbers(host());
}

void CounterWidget::updateGUI() {
    for (std::size_t channel = 0; channel < boxes.size(); ++channel) {
        drawRightAlignedText(host(), boxes.at(channel).topLeft + valueRightEnd, 31,
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
        break;
    }
    FTWidget::buttonReleased(tag);
}
