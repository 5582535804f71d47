#include "fingercommands.h"

#include "heldtouch.h"
#include "rig.h"

namespace panel::script {

namespace {

constexpr int highestTag = 255;

// Where the finger goes, or why it cannot.
struct Place {
    QPoint pixel;
    QString problem;
};

Place placeOf(const SoughtText& text, const controller::Controller& controller) {
    const std::vector<PanelText> texts = textsOn(controller);
    const std::vector<PanelText> found = text.among(texts);
    if (found.empty()) {
        return {{}, QStringLiteral("there is no such text; ") + text.listOf(texts)};
    }
    if (found.size() > 1) {
        return {{},
                QStringLiteral("there are %1 such texts: %2; say which with \"at X Y\" or \"in X Y "
                               "WIDTH HEIGHT\"")
                    .arg(found.size())
                    .arg(placesOf(found))};
    }
    return {found.front().box.center(), {}};
}

Place placeOf(int tag, const controller::Controller& controller) {
    const TaggedPlaces places = placesOfTag(controller, tag);
    if (places.count == 1) {
        return {places.first, {}};
    }
    const QString count = places.count == 0 ? QStringLiteral("nothing carries")
                                            : QStringLiteral("%1 places carry").arg(places.count);
    QStringList tags;
    for (const int there : tagsOn(controller)) {
        tags += QString::number(there);
    }
    return {
        {},
        QStringLiteral("%1 this tag; the tags on the panel are %2")
            .arg(count, tags.isEmpty() ? QStringLiteral("none") : tags.join(QStringLiteral(", ")))};
}

Place placeOf(QPoint pixel, const controller::Controller& /*controller*/) {
    return {pixel, {}};
}

Place placeOf(std::monostate /*nowhere*/, const controller::Controller& /*controller*/) {
    return {};
}

Finger::Target takeTarget(ScriptLine& line) {
    if (line.isQuoted()) {
        return takeSoughtText(line);
    }
    if (line.optional(QStringLiteral("tag"))) {
        return line.integer(QStringLiteral("the tag"), 1, highestTag);
    }
    return takePixel(line);
}

ActionPtr parseFinger(ScriptLine& line, Finger::Kind kind) {
    Finger::Target target;
    if (kind != Finger::Kind::Release) {
        target = takeTarget(line);
    }
    const bool now = kind != Finger::Kind::Tap && line.optional(QStringLiteral("now"));
    return make<Finger>(kind, target, now);
}

} // namespace

const CommandTable& fingerCommands() {
    static const CommandTable table{
        {"press", [](ScriptLine& l) { return parseFinger(l, Finger::Kind::Press); }, "WHERE [now]",
         "finger down, until the application has noticed"},
        {"move", [](ScriptLine& l) { return parseFinger(l, Finger::Kind::Move); }, "WHERE [now]",
         "slide it; \"now\": do not wait for the application"},
        {"release", [](ScriptLine& l) { return parseFinger(l, Finger::Kind::Release); }, "[now]",
         "finger up, until the application has noticed and drawn"},
        {"tap", [](ScriptLine& l) { return parseFinger(l, Finger::Kind::Tap); }, "WHERE",
         "press and release"},
    };
    return table;
}

// False when there is no such place.
bool Finger::begin(Stage& stage) const {
    if (kind == Kind::Release) {
        stage.finger().release();
        return true;
    }
    const Place place = stage.rig().module().locked([this](const controller::Controller& chip) {
        return std::visit([&chip](const auto& where) { return placeOf(where, chip); }, target);
    });
    if (!place.problem.isEmpty()) {
        stage.fail(place.problem);
        return false;
    }
    stage.finger().touch(place.pixel.x(), place.pixel.y());
    return true;
}

QString Finger::instead(Stage& stage) const {
    return stage.rig().application().isRunning()
               ? QStringLiteral("the application has not noticed: it does not read the touched tag "
                                "(with \"now\", press, move and release do not wait for it)")
               : QStringLiteral("no application is running that could notice");
}

Progress Finger::play(Stage& stage) const {
    if (stage.isFirstCall() && !begin(stage)) {
        return Progress::Waiting;
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
