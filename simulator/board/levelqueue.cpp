#include "levelqueue.h"

#include "testbed.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace board {
namespace {

[[noreturn]] void fail(const std::string& what, const std::string& mend = {}) {
    throw BoardError(what + ": " + std::generic_category().message(errno) + mend);
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
    const int watch = inotify_add_watch(m_inotify, path.c_str(), IN_MODIFY);
    m_lines.push_back({fifo, watch});
    if (watch < 0) {
        fail("cannot watch " + path, " (if none are left, raise fs.inotify.max_user_watches)");
    }
}

int LevelQueue::waiting() const {
    int bytes = 0;
    ioctl(m_inotify, FIONREAD, &bytes);
    return bytes;
}

void LevelQueue::drain(const Sink& sink) {
    const std::vector<std::size_t> runs = takeRuns();
    for (auto run = runs.begin(); run != runs.end(); ++run) {
        takeLevel(*run, sink);
        const bool isLinesLast = std::find(run + 1, runs.end(), *run) == runs.end();
        while (isLinesLast && takeLevel(*run, sink)) {
        }
    }
}

// The lines written, each as often as other lines were written in between.
std::vector<std::size_t> LevelQueue::takeRuns() const {
    std::vector<std::size_t> runs;
    alignas(inotify_event) std::array<char, 4096> buffer;
    ssize_t length = 0;
    while ((length = ::read(m_inotify, buffer.data(), buffer.size())) > 0) {
        for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
            inotify_event event{};
            std::memcpy(&event, &buffer[at], sizeof event);
            at += sizeof event + event.len;
            for (std::size_t line = 0; line < m_lines.size(); ++line) {
                // After an overflow of inotify's queue any line may have been written.
                if (m_lines[line].watch == event.wd || (event.mask & IN_Q_OVERFLOW) != 0) {
                    runs.push_back(line);
                }
            }
        }
    }
    return runs;
}

// False when nothing waits. Like the kernel's value file, which reads a number: other characters,
// such as an end of line, are passed over.
bool LevelQueue::takeLevel(std::size_t line, const Sink& sink) const {
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
