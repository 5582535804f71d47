#include "fingercommands.h"

#include "heldtouch.h"
#include "rig.h"

namespace panel::script {

namespace {

constexpr int panelWidth = 480;
constexpr int panelHeight = 272;

ActionPtr parseFinger(ScriptLine& line, Finger::Kind kind) {
    int x = 0;
    int y = 0;
    if (kind != Finger::Kind::Release) {
        x = line.integer(QStringLiteral("X"), 0, panelWidth - 1);
        y = line.integer(QStringLiteral("Y"), 0, panelHeight - 1);
    }
    const bool now = kind != Finger::Kind::Tap && line.optional(QStringLiteral("now"));
    return make<Finger>(kind, x, y, now);
}

} // namespace

const CommandTable& fingerCommands() {
    static const CommandTable table{
        {"press", [](ScriptLine& l) { return parseFinger(l, Finger::Kind::Press); }, "X Y [now]",
         "finger down, until the application has noticed"},
        {"move", [](ScriptLine& l) { return parseFinger(l, Finger::Kind::Move); }, "X Y [now]",
         "slide it; \"now\": do not wait for the application"},
        {"release", [](ScriptLine& l) { return parseFinger(l, Finger::Kind::Release); }, "[now]",
         "finger up, until the application has noticed and drawn"},
        {"tap", [](ScriptLine& l) { return parseFinger(l, Finger::Kind::Tap); }, "X Y",
         "press and release"},
    };
    return table;
}

void Finger::begin(Stage& stage) const {
    if (kind == Kind::Release) {
        stage.finger().release();
    } else {
        stage.finger().touch(x, y);
    }
}

QString Finger::instead(Stage& stage) const {
    return stage.rig().application().isRunning()
               ? QStringLiteral("the application has not noticed: it does not read the touched tag "
                                "(with \"now\", press, move and release do not wait for it)")
               : QStringLiteral("no application is running that could notice");
}

Progress Finger::play(Stage& stage) const {
    if (stage.isFirstCall()) {
        begin(stage);
    }
    if (now) {
        return Progress::Done;
    }
    HeldTouch& finger = stage.finger();
    if (kind == Kind::Tap && finger.isDown()) {
        if (finger.isTagRead()) {
            finger.release();
        }
        return Progress::Waiting;
    }
    return finger.isNoticed() ? Progress::Done : Progress::Waiting;
}

} // namespace panel::script
