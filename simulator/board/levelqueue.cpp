#include "levelqueue.h"

#include "testbed.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/inotify.h>
#include <system_error>
#include <unistd.h>

namespace board {
namespace {

[[noreturn]] void fail(const std::string& what, const std::string& mend = {}) {
    throw BoardError(what + ": " + std::generic_category().message(errno) + mend);
}

int watchWrites(int inotify, const std::string& path) {
    const int watch = inotify_add_watch(inotify, path.c_str(), IN_MODIFY);
    if (watch < 0) {
        fail("cannot watch " + path, " (if none are left, raise fs.inotify.max_user_watches)");
    }
    return watch;
}

} // namespace

LevelQueue::LevelQueue() : m_inotify(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (m_inotify < 0) {
        fail("cannot watch the lines", " (if none are left, raise fs.inotify.max_user_instances)");
    }
}

LevelQueue::~LevelQueue() {
    for (const Line& line : m_lines) {
        close(line.fifo);
    }
    close(m_inotify);
}

void LevelQueue::add(const std::string& path) {
    // Read-write: so the FIFO has a reader from now on, and no end when its writer closes it.
    const int fifo = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (fifo < 0) {
        fail("cannot open " + path);
    }
    m_lines.push_back({fifo, -1});
    m_lines.back().watch = watchWrites(m_inotify, path);
    // inotify merges equal events that follow one another. With the directory watched too, each
    // write is one event of the file and one of the directory, so no two neighbours are equal.
    watchWrites(m_inotify, std::filesystem::path(path).parent_path());
}

void LevelQueue::drain(const Sink& sink) {
    takeEvents(sink);
    // What is left is a write whose event is still on its way, or the rest of a write of several
    // characters.
    for (std::size_t line = 0; line < m_lines.size(); ++line) {
        while (takeLevel(line, sink)) {
        }
    }
}

void LevelQueue::takeEvents(const Sink& sink) {
    alignas(inotify_event) std::array<char, 4096> buffer;
    ssize_t length = 0;
    while ((length = ::read(m_inotify, buffer.data(), buffer.size())) > 0) {
        for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
            inotify_event event{};
            std::memcpy(&event, &buffer[at], sizeof event);
            at += sizeof event + event.len;
            for (std::size_t line = 0; line < m_lines.size(); ++line) {
                if (m_lines[line].watch == event.wd) {
                    takeLevel(line, sink);
                }
            }
        }
    }
}

// False when nothing waits. Like the kernel's value file, which reads a number: other characters,
// such as an end of line, are passed over.
bool LevelQueue::takeLevel(std::size_t line, const Sink& sink) {
    char character = 0;
    if (::read(m_lines[line].fifo, &character, 1) != 1) {
        return false;
    }
    if (character == '0' || character == '1') {
        sink(line, character == '1');
    }
    return true;
}

} // namespace board
