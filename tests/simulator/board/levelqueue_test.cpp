#include "levelqueue.h"
#include "testbed.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class LevelQueueTest : public testing::Test {
protected:
    LevelQueueTest() : a(addLine("a")), b(addLine("b")) {}

    ~LevelQueueTest() override {
        close(a);
        close(b);
    }

    static void write(int line, const std::string& text) {
        ASSERT_EQ(::write(line, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    // What waits, as "a1" for a high level of the first line.
    std::vector<std::string> drained() {
        std::vector<std::string> levels;
        queue.drain([&](std::size_t line, bool high) {
            levels.push_back(std::string(line == 0 ? "a" : "b") + (high ? "1" : "0"));
        });
        return levels;
    }

    bool readable() const {
        pollfd source{queue.fileDescriptor(), POLLIN, 0};
        return poll(&source, 1, 0) == 1;
    }

    board::Testbed testbed;
    board::LevelQueue queue;
    int a; // the writer's ends
    int b;

private:
    int addLine(const std::string& name) {
        const std::string path = "/sys/" + name + "/value";
        testbed.addFifo(path);
        queue.add(testbed.root() + path);
        return open((testbed.root() + path).c_str(), O_WRONLY | O_NONBLOCK);
    }
};

TEST_F(LevelQueueTest, IsEmptyWhenFresh) {
    EXPECT_FALSE(readable());
    EXPECT_THAT(drained(), IsEmpty());
}

TEST_F(LevelQueueTest, KeepsTheOrderOverAllLines) {
    for (const auto& [line, text] : std::vector<std::pair<int, std::string>>{
             {a, "1"}, {b, "1"}, {a, "1"}, {b, "0"}, {a, "0"}, {b, "1"}}) {
        write(line, text);
    }
    EXPECT_TRUE(readable());
    EXPECT_THAT(drained(), ElementsAre("a1", "b1", "a1", "b0", "a0", "b1"));
    EXPECT_FALSE(readable());
    EXPECT_THAT(drained(), IsEmpty());
}

TEST_F(LevelQueueTest, KeepsARunOfOneLineTogether) {
    for (const auto& [line, text] :
         std::vector<std::pair<int, std::string>>{{a, "1"}, {b, "0"}, {b, "1"}, {a, "0"}}) {
        write(line, text);
    }
    EXPECT_THAT(drained(), ElementsAre("a1", "b0", "b1", "a0"));
}

TEST_F(LevelQueueTest, TakesTheLastOfSeveralRunsToBeTheLongOne) {
    for (const auto& [line, text] :
         std::vector<std::pair<int, std::string>>{{a, "1"}, {b, "0"}, {a, "0"}, {a, "1"}}) {
        write(line, text);
    }
    EXPECT_THAT(drained(), ElementsAre("a1", "b0", "a0", "a1"));
}

TEST_F(LevelQueueTest, KeepsEveryLevelOfALongRun) {
    for (int i = 0; i < 3000; ++i) {
        write(a, i % 2 == 0 ? "1" : "0");
    }
    EXPECT_EQ(drained().size(), 3000U);
}

TEST_F(LevelQueueTest, TakesWritesOfSeveralCharacters) {
    write(a, "1\n");
    write(a, "01");
    EXPECT_THAT(drained(), ElementsAre("a1", "a0", "a1"));
}

TEST_F(LevelQueueTest, PassesOverWhatIsNoLevel) {
    write(a, "2x\n");
    EXPECT_THAT(drained(), IsEmpty());
    EXPECT_FALSE(readable());
}

TEST_F(LevelQueueTest, StaysUsableWhenItsWriterGoesAndComes) {
    write(a, "1");
    close(a);
    EXPECT_THAT(drained(), ElementsAre("a1"));
    EXPECT_FALSE(readable());
    a = open((testbed.root() + "/sys/a/value").c_str(), O_WRONLY | O_NONBLOCK);
    write(a, "0");
    EXPECT_THAT(drained(), ElementsAre("a0"));
}

TEST_F(LevelQueueTest, NamesAFifoThatIsMissing) {
    try {
        queue.add("/nowhere/value");
        FAIL() << "no error";
    } catch (const board::BoardError& error) {
        EXPECT_STREQ(error.what(), "cannot open /nowhere/value: No such file or directory");
    }
}

} // namespace
