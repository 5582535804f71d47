#include "ownersmark.h"

#include "testbed.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace board {
namespace {

namespace fs = std::filesystem;

const char* const markName = "panel-board-owner";

// Only what this user has made: others' directories are theirs, and a link may lead anywhere.
bool isOwnDirectory(const fs::path& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid();
}

bool isOrphan(int mark) {
    return flock(mark, LOCK_EX | LOCK_NB) == 0;
}

void removeOrphan(const fs::path& directory) {
    const fs::path mark = directory / markName;
    const int file = open(mark.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0) {
        return;
    }
    if (isOrphan(file)) {
        std::error_code ignored; // the next process tries again
        fs::remove_all(directory, ignored);
    }
    close(file);
}

} // namespace

OwnersMark::OwnersMark(const std::string& directory) {
    // It gets its name when it is locked: before, it would look like an orphan's.
    const std::string mark = directory + "/" + markName;
    const std::string unlocked = mark + ".new";
    m_file = open(unlocked.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (m_file < 0 || flock(m_file, LOCK_EX | LOCK_NB) != 0 ||
        std::rename(unlocked.c_str(), mark.c_str()) != 0) {
        const std::string reason = std::generic_category().message(errno);
        if (m_file >= 0) {
            close(m_file);
        }
        throw BoardError("cannot mark the directory " + directory + ": " + reason);
    }
}

OwnersMark::~OwnersMark() {
    close(m_file);
}

void removeOrphans(const std::string& parent) {
    std::error_code error;
    for (fs::directory_iterator entry(parent, error), end; !error && entry != end;
         entry.increment(error)) {
        if (isOwnDirectory(entry->path())) {
            removeOrphan(entry->path());
        }
    }
}

} // namespace board
