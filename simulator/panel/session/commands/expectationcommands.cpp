#include "expectationcommands.h"

#include "rig.h"
#include "textpattern.h"

#include <algorithm>

namespace panel::script {

namespace {

constexpr int mostKilobytes = 1 << 20;

QString quoted(const QStringList& texts) {
    return texts.isEmpty() ? QStringLiteral("none")
                           : '"' + texts.join(QStringLiteral("\", \"")) + '"';
}

bool sameLines(const QStringList& patterns, const QStringList& lines) {
    return std::equal(patterns.begin(), patterns.end(), lines.begin(), lines.end(), matchesPattern);
}

QStringList takeRequests(ScriptLine& line) {
    return line.rest(QStringLiteral("a request"));
}

} // namespace

const CommandTable& expectationCommands() {
    static const CommandTable table{
        {"allow complaint", [](ScriptLine& l) { return make<AllowComplaint>(takePattern(l)); },
         "TEXT", "a complaint of the controller that is no failure"},
        {"mark", [](ScriptLine& /*line*/) { return make<Mark>(); }, "",
         "requests, log and memory count from here (and from the\nstart)"},
        {"expect requests",
         [](ScriptLine& l) { return make<ExpectRequests>(takeRequests(l), false); }, "TEXT...",
         "the requests since the mark, DATA? left out, are these"},
        {"expect all-requests",
         [](ScriptLine& l) { return make<ExpectRequests>(takeRequests(l), true); }, "TEXT...",
         "the same with every DATA?"},
        {"expect no-request", [](ScriptLine& l) { return make<ExpectNoRequest>(takePattern(l)); },
         "TEXT", "no request TEXT since the mark"},
        {"expect log",
         [](ScriptLine& l) { return make<ExpectLog>(l.rest(QStringLiteral("a line"))); }, "TEXT...",
         "the lines the application wrote since the mark are these"},
        {"expect memory-growth",
         [](ScriptLine& l) {
             return make<ExpectMemoryGrowth>(
                 l.integer(QStringLiteral("KILOBYTES"), 0, mostKilobytes));
         },
         "KILOBYTES", "the application grew by at most this since the mark"},
    };
    return table;
}

Progress AllowComplaint::play(Stage& stage) const {
    stage.rig().complaints().allow(pattern);
    return Progress::Done;
}

Progress Mark::play(Stage& stage) const {
    stage.rig().mark();
    return Progress::Done;
}

Progress ExpectRequests::play(Stage& stage) const {
    const QStringList requests = stage.rig().requests().since(withData);
    if (!sameLines(patterns, requests)) {
        stage.fail(QStringLiteral("the requests were %1").arg(quoted(requests)));
    }
    return Progress::Done;
}

Progress ExpectNoRequest::play(Stage& stage) const {
    for (const QString& request : stage.rig().requests().since(true)) {
        if (matchesPattern(pattern, request)) {
            stage.fail(QStringLiteral("there was \"%1\"").arg(request));
        }
    }
    return Progress::Done;
}

Progress ExpectLog::play(Stage& stage) const {
    const QStringList lines = stage.rig().log().since();
    if (!sameLines(patterns, lines)) {
        stage.fail(QStringLiteral("the lines were %1").arg(quoted(lines)));
    }
    return Progress::Done;
}

Progress ExpectMemoryGrowth::play(Stage& stage) const {
    const int before = stage.rig().markedKilobytes();
    const int now = stage.rig().application().residentKilobytes();
    if (now - before > atMostKilobytes) {
        stage.fail(QStringLiteral("it grew from %1 kB to %2 kB").arg(before).arg(now));
    }
    return Progress::Done;
}

} // namespace panel::script
