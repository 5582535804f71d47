#include "ownersmark.h"
#include "testbed.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class OwnersMarkTest : public testing::Test {
protected:
    OwnersMarkTest() {
        std::string name = testing::TempDir() + "ownersmark.XXXXXX";
        parent = mkdtemp(name.data());
    }
    ~OwnersMarkTest() override { fs::remove_all(parent); }

    // A directory below `parent` with something in it.
    std::string addDirectory(const std::string& name) const {
        fs::path directory = fs::path(parent) / name;
        fs::create_directories(directory / "sys/class");
        std::ofstream(directory / "sys/class/file") << "text";
        return directory.string();
    }

    std::string parent;
};

// Marks the directory in a process that is then killed.
void markAndDie(const std::string& directory) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const board::OwnersMark mark(directory);
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
}

TEST_F(OwnersMarkTest, TheDirectoryOfALivingOwnerStays) {
    const std::string directory = addDirectory("living");
    const board::OwnersMark mark(directory);
    board::removeOrphans(parent);
    EXPECT_TRUE(fs::exists(directory + "/sys/class/file"));
}

TEST_F(OwnersMarkTest, TheDirectoryOfAKilledOwnerGoes) {
    const std::string directory = addDirectory("orphan");
    markAndDie(directory);
    EXPECT_TRUE(fs::exists(directory));
    board::removeOrphans(parent);
    EXPECT_FALSE(fs::exists(directory));
}

TEST_F(OwnersMarkTest, WhatBearsNoMarkStays) {
    const std::string directory = addDirectory("other");
    std::ofstream(parent + "/file") << "text";
    board::removeOrphans(parent);
    EXPECT_TRUE(fs::exists(directory));
    EXPECT_TRUE(fs::exists(parent + "/file"));
}

TEST_F(OwnersMarkTest, LinksAreNotFollowed) {
    const std::string target = addDirectory("target/orphan");
    markAndDie(target);
    fs::create_directory_symlink(target, parent + "/link");
    board::removeOrphans(parent);
    EXPECT_TRUE(fs::exists(target));
}

TEST_F(OwnersMarkTest, AMissingParentDoesNoHarm) {
    board::removeOrphans(parent + "/nowhere");
}

TEST_F(OwnersMarkTest, ADirectoryThatCannotBeMarkedIsNamed) {
    try {
        const board::OwnersMark mark("/nowhere/at-all");
        FAIL() << "no error";
    } catch (const board::BoardError& error) {
        EXPECT_STREQ(error.what(),
                     "cannot mark the directory /nowhere/at-all: No such file or directory");
    }
}

} // namespace
