#pragma once

#include "command.h"
#include "registers.h"

namespace panel::script {

// What looks into the controller.
const CommandTable& inspectionCommands();

struct ExpectPixel : FrameStep { // of the frame at hand
    ExpectPixel(int column, int row, std::uint32_t rgb) : x(column), y(row), colour(rgb) {}
    FrameOutcome look(const FrameView& view) const override;

    const int x;
    const int y;
    const std::uint32_t colour; // 0xRRGGBB
};

struct ExpectDrawnBy : FrameStep { // what lies uppermost there
    ExpectDrawnBy(int column, int row, QString by) : x(column), y(row), pattern(std::move(by)) {}
    FrameOutcome look(const FrameView& view) const override;

    const int x;
    const int y;
    const QString pattern; // comesFrom()
};

struct DumpList : FrameStep { // of the frame at hand, as text
    explicit DumpList(QString path) : file(std::move(path)) {}
    FrameOutcome look(const FrameView& view) const override;

    const QString file;
};

struct DumpRegisters : FrameStep {
    explicit DumpRegisters(QString path) : file(std::move(path)) {}
    FrameOutcome look(const FrameView& view) const override;

    const QString file;
};

struct ExpectRegister : Action { // taken as a signed number
    ExpectRegister(controller::Register name, std::int32_t held) : id(name), value(held) {}
    Progress play(Stage& stage) const override;

    const controller::Register id;
    const std::int32_t value;
};

} // namespace panel::script
