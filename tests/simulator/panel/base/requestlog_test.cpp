#include "requestlog.h"

#include <gtest/gtest.h>

namespace panel {
namespace {

RequestLog logOf(const QStringList& requests) {
    RequestLog log;
    for (const QString& request : requests) {
        log.add(request);
    }
    return log;
}

TEST(RequestLog, TakesEachRequestOnce) {
    RequestLog log = logOf({"START 1", "DATA?"});
    EXPECT_TRUE(log.take("START *"));
    EXPECT_FALSE(log.take("START *"));
    EXPECT_TRUE(log.take("DATA?"));
}

TEST(RequestLog, PassesWhatStandsBeforeTheOneTaken) {
    RequestLog log = logOf({"START 1", "STOP"});
    EXPECT_TRUE(log.take("STOP"));
    EXPECT_FALSE(log.take("START 1"));
}

TEST(RequestLog, GivesRequestsSinceTheMark) {
    RequestLog log = logOf({"PARAMS?"});
    EXPECT_EQ(log.since(true), QStringList({"PARAMS?"}));
    log.mark();
    EXPECT_TRUE(log.since(true).isEmpty());
    log.add("STOP");
    EXPECT_EQ(log.since(true), QStringList({"STOP"}));
}

TEST(RequestLog, LeavesOutPollsForDataOnRequest) {
    const RequestLog log = logOf({"START 1", "DATA?", "DATA?", "STOP"});
    EXPECT_EQ(log.since(false), QStringList({"START 1", "STOP"}));
    EXPECT_EQ(log.since(true).size(), 4);
    EXPECT_EQ(log.count(), 4);
}

TEST(RequestLog, DoesNotTakeWhatCameBeforeTheMark) {
    RequestLog log = logOf({"STOP"});
    log.mark();
    EXPECT_FALSE(log.take("STOP"));
}

} // namespace
} // namespace panel
