#include "framecommands.h"

#include "pictures.h"
#include "registers.h"
#include "rig.h"

#include <QRegularExpression>

namespace panel::script {

namespace {

std::uint32_t read(const controller::Controller& controller, controller::Register id) {
    return controller.peek32(controller::registerInfo(id).address(controller.generation()));
}

// What keeps the panel from being quiet.
QString whatIsPending(Stage& stage) {
    const auto& module = stage.rig().module();
    const std::int32_t commands = module.registerValue(controller::Register::CmdRead);
    QStringList pending;
    if (commands != module.registerValue(controller::Register::CmdWrite)) {
        pending += QStringLiteral("the coprocessor has not done all commands (it is at %1 of the "
                                  "ring)")
                       .arg(commands);
    }
    if (module.registerValue(controller::Register::DlSwap) != 0) {
        pending += QStringLiteral("a display list waits to be shown");
    }
    return pending.join(QStringLiteral(", "));
}

ActionPtr parseScreenshot(ScriptLine& line) {
    const QString name = line.word(QStringLiteral("the picture's name"));
    static const QRegularExpression fileName(QStringLiteral("^[A-Za-z0-9][A-Za-z0-9_.-]*$"));
    if (!fileName.match(name).hasMatch()) {
        line.fail(QStringLiteral("a picture's name has letters, digits, '-', '_' and '.' only, "
                                 "not \"%1\"")
                      .arg(name));
    }
    const bool now = line.optional(QStringLiteral("now"));
    return make<Screenshot>(name, now);
}

} // namespace

const CommandTable& frameCommands() {
    static const CommandTable table{
        {"wait frames", [](ScriptLine& l) { return make<WaitFrames>(takeCount(l)); }, "N",
         "until N more frames have been scanned"},
        {"wait swaps", [](ScriptLine& l) { return make<WaitSwaps>(takeCount(l)); }, "N",
         "until N more display lists have been shown"},
        {"wait reads", [](ScriptLine& l) { return make<WaitReads>(takeCount(l)); }, "N",
         "until the application has read the touched tag N more\n"
         "times; with 2 it has drawn all it had to"},
        {"wait text", [](ScriptLine& l) { return make<WaitText>(takeSoughtText(l), true); },
         "TEXT [PLACE]", "until the panel shows TEXT"},
        {"wait no-text", [](ScriptLine& l) { return make<WaitText>(takeSoughtText(l), false); },
         "TEXT [PLACE]", "until the panel does not show TEXT"},
        {"wait quiet", [](ScriptLine& /*line*/) { return make<WaitQuiet>(); }, "",
         "until the coprocessor is idle and no swap is pending"},
        {"expect text", [](ScriptLine& l) { return make<ExpectText>(takeSoughtText(l), true); },
         "TEXT [PLACE]", "the frame at hand shows TEXT"},
        {"expect no-text", [](ScriptLine& l) { return make<ExpectText>(takeSoughtText(l), false); },
         "TEXT [PLACE]", "the frame at hand does not show TEXT"},
        {"screenshot", parseScreenshot, "NAME [now]",
         "keep NAME.png of the first quiet frame, or \"now\":\n"
         "of the very frame the line before ended with"},
    };
    return table;
}

FrameOutcome WaitFrames::look(const FrameView& view) const {
    return {view.frames >= count};
}

FrameOutcome WaitSwaps::look(const FrameView& view) const {
    return {view.swaps >= count};
}

FrameOutcome WaitReads::look(const FrameView& view) const {
    return {view.touchTagReads >= count};
}

QString WaitReads::instead(Stage& stage) const {
    return stage.rig().application().isRunning()
               ? QStringLiteral("the application reads the touched tag too seldom or not at all")
               : QStringLiteral("no application is running");
}

FrameOutcome WaitText::look(const FrameView& view) const {
    return {text.among(textsOn(view.controller)).empty() != present};
}

QString WaitText::instead(Stage& stage) const {
    return text.listOf(stage.rig().module().locked(textsOn));
}

FrameOutcome WaitQuiet::look(const FrameView& view) const {
    return {isQuiet(view.controller)};
}

QString WaitQuiet::instead(Stage& stage) const {
    return whatIsPending(stage);
}

FrameOutcome ExpectText::look(const FrameView& view) const {
    const std::vector<PanelText> texts = textsOn(view.controller);
    if (text.among(texts).empty() != present) {
        return {true};
    }
    return {true, text.listOf(texts)};
}

FrameOutcome Screenshot::look(const FrameView& view) const {
    if (!now && !isQuiet(view.controller)) {
        return {};
    }
    const auto keep = [picture = toImage(view.controller.frame().picture),
                       texts = textsOn(view.controller),
                       file = name](Stage& stage) { stage.keepPicture(file, picture, texts); };
    return {true, {}, keep};
}

QString Screenshot::instead(Stage& stage) const {
    return whatIsPending(stage);
}

bool isQuiet(const controller::Controller& controller) {
    using controller::Register;
    return read(controller, Register::CmdRead) == read(controller, Register::CmdWrite) &&
           read(controller, Register::DlSwap) == 0;
}

} // namespace panel::script
