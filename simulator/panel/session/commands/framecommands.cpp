#include "framecommands.h"

#include "pictures.h"
#include "registers.h"
#include "textpattern.h"

#include <QRegularExpression>

#include <algorithm>

namespace panel::script {

namespace {

std::uint32_t read(const controller::Controller& controller, controller::Register id) {
    return controller.peek32(controller::registerInfo(id).address(controller.generation()));
}

QStringList textsOnPanel(const controller::Controller& controller) {
    QStringList texts;
    for (const std::string& text : controller.textOnPanel()) {
        texts += QString::fromLatin1(text.data(), static_cast<int>(text.size())).trimmed();
    }
    return texts;
}

bool anyMatches(const QString& pattern, const QStringList& texts) {
    return std::any_of(texts.begin(), texts.end(),
                       [&pattern](const QString& text) { return matchesPattern(pattern, text); });
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
        {"wait text", [](ScriptLine& l) { return make<WaitText>(takePattern(l), true); }, "TEXT",
         "until the panel shows TEXT"},
        {"wait no-text", [](ScriptLine& l) { return make<WaitText>(takePattern(l), false); },
         "TEXT", "until the panel does not show TEXT"},
        {"wait quiet", [](ScriptLine& /*line*/) { return make<WaitQuiet>(); }, "",
         "until the coprocessor is idle and no swap is pending"},
        {"expect text", [](ScriptLine& l) { return make<ExpectText>(takePattern(l), true); },
         "TEXT", "the frame at hand shows TEXT"},
        {"expect no-text", [](ScriptLine& l) { return make<ExpectText>(takePattern(l), false); },
         "TEXT", "the frame at hand does not show TEXT"},
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

FrameOutcome WaitText::look(const FrameView& view) const {
    return {showsText(view.controller, pattern) == present};
}

FrameOutcome WaitQuiet::look(const FrameView& view) const {
    return {isQuiet(view.controller)};
}

FrameOutcome ExpectText::look(const FrameView& view) const {
    if (showsText(view.controller, pattern) == present) {
        return {true};
    }
    return {true, QStringLiteral("the panel shows: \"%1\"")
                      .arg(textsOnPanel(view.controller).join(QStringLiteral("\", \"")))};
}

FrameOutcome Screenshot::look(const FrameView& view) const {
    if (!now && !isQuiet(view.controller)) {
        return {};
    }
    const QImage picture = toImage(view.controller.frame().picture);
    return {true, {}, [picture, file = name](Stage& stage) { stage.keepPicture(file, picture); }};
}

bool showsText(const controller::Controller& controller, const QString& pattern) {
    return anyMatches(pattern, textsOnPanel(controller));
}

bool isQuiet(const controller::Controller& controller) {
    using controller::Register;
    return read(controller, Register::CmdRead) == read(controller, Register::CmdWrite) &&
           read(controller, Register::DlSwap) == 0;
}

} // namespace panel::script
