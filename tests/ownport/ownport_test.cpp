#include "program.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>
#include <unistd.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

struct Outcome {
    int status;
    std::string output; // with what ownport itself says
};

Outcome ownport(const std::vector<std::string>& arguments) {
    Program program(OWNPORT, arguments, {});
    std::string output = program.output();
    return {program.wait(), output};
}

// A name that nobody else waits for.
std::string freshName() {
    static int count = 0;
    return "ownport-test-" + std::to_string(getpid()) + "-" + std::to_string(++count);
}

// Whether the kernel comes to list so many sockets of that name: the holder's, and one for each
// process that waits.
bool comesToHaveSockets(const std::string& name, std::ptrdiff_t count) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (std::chrono::steady_clock::now() < end) {
        std::ifstream sockets("/proc/net/unix");
        using Word = std::istream_iterator<std::string>;
        if (std::count(Word(sockets), Word(), "@" + name) == count) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
}

TEST(OwnPort, TheProgramsStatusAndOutputAreItsOwn) {
    const Outcome ended = ownport({"sh", "-c", "echo \"$1 and $2\"; exit 7", "-", "one", "two"});
    EXPECT_EQ(ended.status, 7);
    EXPECT_THAT(ended.output, EndsWith("one and two\n"));
    EXPECT_EQ(ownport({"true"}).status, 0);
    EXPECT_EQ(ownport({"sh", "-c", "kill -KILL $$"}).status, -1);
}

TEST(OwnPort, TheProgramIsWhoItWasBefore) {
    EXPECT_THAT(ownport({"id", "-u"}).output, EndsWith("\n" + std::to_string(getuid()) + "\n"));
    EXPECT_THAT(ownport({"id", "-g"}).output, EndsWith("\n" + std::to_string(getgid()) + "\n"));
}

TEST(OwnPort, TheProgramLeavesNoCoreFiles) {
    EXPECT_THAT(ownport({"sh", "-c", "ulimit -c"}).output, EndsWith("\n0\n"));
}

TEST(OwnPort, SaysHowItCameByThePort) {
    const Outcome check = ownport({"--check"});
    const Outcome ended = ownport({"true"});
    if (check.status == 0) {
        EXPECT_EQ(check.output, "");
        EXPECT_EQ(ended.output, "ownport: has the port in a network namespace\n");
    } else {
        EXPECT_EQ(check.status, 1);
        EXPECT_THAT(ended.output, StartsWith("ownport: there are no network namespaces here (" +
                                             check.output + ")\n"));
        EXPECT_THAT(ended.output, EndsWith("ownport: holds the port\n"));
    }
}

TEST(OwnPort, ANamespaceHasItsLoopbackInterfaceOnly) {
    if (ownport({"--check"}).status != 0) {
        GTEST_SKIP() << "no network namespaces here";
    }
    const Outcome ended = ownport({"sh", "-c",
                                   "tail -n +3 /proc/net/dev | cut -d : -f 1 | xargs; "
                                   "cut -f 1-2 /proc/net/route | tail -n +2"});
    EXPECT_THAT(ended.output, EndsWith("namespace\nlo\n"));
}

TEST(OwnPort, WhatItCannotRunIsAFailure) {
    EXPECT_EQ(ownport({"/no/such/program"}).status, 125);
    EXPECT_THAT(ownport({"/no/such/program"}).output,
                EndsWith("ownport: /no/such/program: No such file or directory\n"));
    EXPECT_EQ(ownport({}).status, 125);
    EXPECT_EQ(ownport({"--unknown"}).status, 125);
}

TEST(OwnPort, AHolderMakesOthersWaitUntilItEnds) {
    const std::string name = freshName();
    Program holder(OWNPORT, {"--hold", name, "sleep", "1000"}, {});
    ASSERT_TRUE(comesToHaveSockets(name, 1));
    Program other(OWNPORT, {"--hold", name, "echo", "there"}, {});
    ASSERT_TRUE(comesToHaveSockets(name, 2));
    holder.kill();
    EXPECT_EQ(other.output(), "ownport: waits for another program's end\n"
                              "ownport: holds the port\nthere\n");
    EXPECT_EQ(other.wait(), 0);
}

TEST(OwnPort, HoldersOfDifferentNamesDoNotWait) {
    const Program holder(OWNPORT, {"--hold", freshName(), "sleep", "1000"}, {});
    EXPECT_THAT(ownport({"--hold", freshName(), "true"}).output, testing::Not(HasSubstr("waits")));
}

TEST(OwnPort, OnlyOneOfManyHasThePortAtATime) {
    const std::string name = freshName();
    const std::string directory = testing::TempDir() + name;
    // Fails if another one is in between its two commands.
    const std::string commands = "mkdir " + directory + " && rmdir " + directory;
    std::vector<std::unique_ptr<Program>> programs;
    std::generate_n(std::back_inserter(programs), 20, [&] {
        return std::make_unique<Program>(
            OWNPORT, std::vector<std::string>{"--hold", name, "sh", "-c", commands},
            Program::Environment{});
    });
    for (const auto& program : programs) {
        EXPECT_EQ(program->wait(), 0) << program->output();
    }
}

} // namespace
