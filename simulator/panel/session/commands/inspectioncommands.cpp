#include "inspectioncommands.h"

#include "inspector.h"
#include "rig.h"

#include <QFile>

namespace panel::script {

namespace {

ActionPtr parseExpectRegister(ScriptLine& line) {
    const QString name = line.word(QStringLiteral("the register"));
    const auto id = controller::registerNamed(name.toStdString());
    if (!id) {
        line.fail(QStringLiteral("the controller has no register \"%1\"").arg(name));
    }
    const int value = line.integer(QStringLiteral("its value"), INT32_MIN, INT32_MAX);
    return make<ExpectRegister>(id.value_or(controller::Register{}), value);
}

constexpr int panelWidth = 480;
constexpr int panelHeight = 272;
constexpr std::uint32_t brightest = 0xFFFFFF;

std::pair<int, int> takePlace(ScriptLine& line) {
    const int x = line.integer(QStringLiteral("X"), 0, panelWidth - 1);
    const int y = line.integer(QStringLiteral("Y"), 0, panelHeight - 1);
    return {x, y};
}

ActionPtr parseExpectPixel(ScriptLine& line) {
    const auto [x, y] = takePlace(line);
    const std::uint32_t colour = line.hexadecimal(QStringLiteral("the colour"));
    if (colour > brightest) {
        line.fail(QStringLiteral("a colour is from 0x000000 to 0xFFFFFF"));
    }
    return make<ExpectPixel>(x, y, colour);
}

ActionPtr parseExpectDrawnBy(ScriptLine& line) {
    const auto [x, y] = takePlace(line);
    return make<ExpectDrawnBy>(x, y, line.word(QStringLiteral("the command")));
}

// Why a pixel is as it is, in a line.
QString reasonFor(const PixelReport& pixel) {
    const StepReport* top = pixel.top();
    if (top == nullptr) {
        return QStringLiteral("nothing has drawn it");
    }
    QStringList by{top->words.front().text};
    for (const Cause& cause : top->drawing().causes) {
        by += cause.text;
    }
    return QStringLiteral("it was drawn by ") + by.join(QStringLiteral(", by "));
}

FrameOutcome written(const QString& path, const QStringList& lines) {
    const QByteArray text = lines.join('\n').toUtf8() + '\n';
    return {true, {}, [path, text](Stage& stage) {
                QFile file(path);
                const bool isWhole = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                                     file.write(text) == text.size() && file.flush();
                if (!isWhole) {
                    stage.fail(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()),
                               ExitStatus::FileNotWritten);
                }
            }};
}

} // namespace

const CommandTable& inspectionCommands() {
    static const CommandTable table{
        {"expect register", parseExpectRegister, "NAME VALUE",
         "the controller's register holds VALUE, signed"},
        {"expect pixel", parseExpectPixel, "X Y COLOUR",
         "the frame at hand has this colour there, 0xRRGGBB"},
        {"expect drawn-by", parseExpectDrawnBy, "X Y TEXT",
         "what is uppermost there comes from this command or\n"
         "word: CMD_BUTTON, \"CMD_TEXT * \\\"Ok\\\"\", \"BEGIN RECTS\""},
        {"dump list",
         [](ScriptLine& l) { return make<DumpList>(l.word(QStringLiteral("the file"))); }, "FILE",
         "write the display list, by command"},
        {"dump registers",
         [](ScriptLine& l) { return make<DumpRegisters>(l.word(QStringLiteral("the file"))); },
         "FILE", "write the values of all registers"},
    };
    return table;
}

FrameOutcome ExpectPixel::look(const FrameView& view) const {
    const PixelReport pixel = view.inspector->pixel(view.controller, x, y);
    if (pixel.isOnPanel && pixel.colour == colour) {
        return {true};
    }
    return {true, QStringLiteral("it is %1; %2").arg(colourText(pixel.colour), reasonFor(pixel))};
}

FrameOutcome ExpectDrawnBy::look(const FrameView& view) const {
    const PixelReport pixel = view.inspector->pixel(view.controller, x, y);
    const StepReport* top = pixel.top();
    if (top != nullptr && comesFrom(*top, pattern)) {
        return {true};
    }
    return {true, reasonFor(pixel)};
}

FrameOutcome DumpList::look(const FrameView& view) const {
    return written(file, linesOf(view.inspector->list(view.controller)));
}

FrameOutcome DumpRegisters::look(const FrameView& view) const {
    return written(file, linesOf(view.inspector->registers(view.controller)));
}

Progress ExpectRegister::play(Stage& stage) const {
    const std::int32_t held = stage.rig().module().registerValue(id);
    if (held != value) {
        stage.fail(QStringLiteral("it holds %1").arg(held));
    }
    return Progress::Done;
}

} // namespace panel::script
