#pragma once

#include "command.h"

#include <QStringList>

namespace panel::script {

// What was asked, written and used since the mark.
const CommandTable& expectationCommands();

struct AllowComplaint : Action {
    explicit AllowComplaint(QString text) : pattern(std::move(text)) {}
    Progress play(Stage& stage) const override;

    const QString pattern;
};

struct Mark : Action {
    Progress play(Stage& stage) const override;
};

struct ExpectRequests : Action { // exactly these since the mark; patterns
    ExpectRequests(QStringList requests, bool countData)
        : patterns(std::move(requests)), withData(countData) {}
    Progress play(Stage& stage) const override;

    const QStringList patterns;
    const bool withData; // count DATA? too
};

struct ExpectNoRequest : Action { // none like this since the mark
    explicit ExpectNoRequest(QString text) : pattern(std::move(text)) {}
    Progress play(Stage& stage) const override;

    const QString pattern;
};

struct ExpectLog : Action { // the application has written exactly these lines since the mark
    explicit ExpectLog(QStringList lines) : patterns(std::move(lines)) {}
    Progress play(Stage& stage) const override;

    const QStringList patterns;
};

struct ExpectMemoryGrowth : Action { // of the application since the mark
    explicit ExpectMemoryGrowth(int kilobytes) : atMostKilobytes(kilobytes) {}
    Progress play(Stage& stage) const override;

    const int atMostKilobytes;
};

} // namespace panel::script
