#include "optionwidget.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "backbutton.h"
#include "buttons.h"
#include "datareader.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "inputwidget.h"
#include "palette.h"
#include "shapes.h"
#include "text.h"

#include <QDebug>

#include <array>
#include <cmath>
#include <optional>

namespace {

// One row for the time constant, then one for the trigger level of each channel.
constexpr std::array<const char*, 5> labels{
    "Time constant:", "Trigger[0]:", "Trigger[1]:", "Trigger[2]:", "Trigger[3]:"};
constexpr uint32_t rowCount = labels.size();
constexpr uint32_t firstRowTop = 60;
constexpr uint32_t rowHeight = 40;

constexpr uint32_t timeConstRow = 0;
constexpr uint32_t firstTriggerRow = 1;

constexpr uint32_t rowTop(uint32_t row) {
    return firstRowTop + rowHeight * row;
}

// Where the row's texts are centred.
constexpr uint32_t textLine(uint32_t row) {
    return rowTop(row) + 20;
}

constexpr Button setButton(uint32_t row) {
    const int tag = backButton.tag + 1 + static_cast<int>(row);
    return {tag, {400, rowTop(row) + 5}, 60, 30, 27, "Set"};
}

// The row whose "Set" button has the tag.
std::optional<uint32_t> rowOf(int tag) {
    for (uint32_t row = 0; row < rowCount; ++row) {
        if (setButton(row).tag == tag) {
            return row;
        }
    }
    return std::nullopt;
}

// The channel whose trigger level is in the row.
constexpr int channelOf(uint32_t row) {
    return static_cast<int>(row - firstTriggerRow);
}

void drawButtons(Gpu_Hal_Context_t* host) {
    Gpu_CoCmd_FgColor(host, palette::buttonFace);
    setTagging(host, true);
    drawTaggedButton(host, backButton);
    for (uint32_t row = 0; row < rowCount; ++row) {
        drawTaggedButton(host, setButton(row));
    }
    setTagging(host, false);

    drawBackArrow(host);
    App_WrCoCmd_Buffer(host, LINE_WIDTH(defaultLineWidth));
}

void drawSeparators(Gpu_Hal_Context_t* host) {
    App_WrCoCmd_Buffer(host, LINE_WIDTH(8));
    beginShape(host, EVE_REG("__LINES"));
    for (uint32_t row = 1; row < rowCount; ++row) {
        addVertices(host, {{20, rowTop(row)}, {460, rowTop(row)}});
    }
    endShape(host);
}

void drawLabels(Gpu_Hal_Context_t* host) {
    for (uint32_t row = 0; row < rowCount; ++row) {
        drawLeftAlignedText(host, {17, textLine(row)}, 29, labels.at(row));
    }
}

void drawValue(Gpu_Hal_Context_t* host, uint32_t row, const QString& value) {
    drawRightAlignedText(host, {379, textLine(row)}, 29, value.toLocal8Bit());
}

constexpr double millivoltsPerVolt = 1000.0;

} // namespace

OptionWidget::OptionWidget(Gpu_Hal_Context_t* host, DataReader* client)
    : FTWidget(host), m_client(client) {
    setKeyProcessEnabled(true);
}

void OptionWidget::setup() {
    drawBackground(host());
    setColor(host(), palette::ink);
    drawCentredText(host(), {240, 28}, 31, "Options");
    drawButtons(host());
    drawOutline(host(), {10, firstRowTop}, {470, rowTop(rowCount)});
    drawSeparators(host());
    drawLabels(host());
}

void OptionWidget::updateGUI() {
    if (isButtonPressed(backButton.tag)) {
        drawHeldBackButton(host());
    }
    for (uint32_t row = 0; row < rowCount; ++row) {
        if (isButtonPressed(setButton(row).tag)) {
            drawButtonFace(host(), setButton(row), palette::pressedFace);
        }
    }

    const DataReaderParams params = m_client->getParams();
    drawValue(host(), timeConstRow, QStringLiteral("%1 sec").arg(params.timeConst));
    for (uint32_t row = firstTriggerRow; row < rowCount; ++row) {
        const double millivolts = params.ref[channelOf(row)] * millivoltsPerVolt;
        drawValue(host(), row, QStringLiteral("%1 mV").arg(millivolts));
    }
}

void OptionWidget::buttonReleased(int tag) {
    if (tag == backButton.tag) {
        emit backClicked();
        terminate();
        return;
    }
    const std::optional<uint32_t> row = rowOf(tag);
    if (row == timeConstRow) {
        askTimeConst();
    } else if (row) {
        askTriggerLevel(channelOf(*row));
    }
    FTWidget::buttonReleased(tag);
}

void OptionWidget::askTimeConst() {
    const double seconds = InputWidget::getDouble(host(), QStringLiteral("Time constant, sec"));
    qDebug() << seconds;
    if (std::isfinite(seconds)) {
        m_client->setTimeConst(seconds);
    }
}

void OptionWidget::askTriggerLevel(int channel) {
    const QString title = QStringLiteral("Trigger level [%1], mV").arg(channel);
    const double volts = InputWidget::getDouble(host(), title) / millivoltsPerVolt;
    if (std::isfinite(volts)) {
        m_client->setTriggerLevel(channel, volts);
    }
}
