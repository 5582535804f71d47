#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace board {

// The levels that a program writes to the value files of some lines, in the order in which it
// wrote them, over all lines. The files are FIFOs; which of them was written when is read from
// inotify, as each FIFO alone knows nothing of the others. inotify makes one event of a run of
// writes to one FIFO, so one order is a guess: if several runs of a line wait and one of them has
// several levels, the last run is taken to be that one. Not thread-safe.
//
// The program must not be writing while levels are drained: it waits in an ioctl, or has been quiet
// for a while. A level whose event has not been posted yet could otherwise come too early.
class LevelQueue {
public:
    // Throws BoardError, as does add().
    LevelQueue();
    LevelQueue(const LevelQueue&) = delete;
    LevelQueue& operator=(const LevelQueue&) = delete;
    ~LevelQueue();

    // Watches the FIFO at `path`. Lines count from 0.
    void add(const std::string& path);

    // Readable while levels wait.
    int fileDescriptor() const { return m_inotify; }

    // How much waits; the same amount twice in a row means that nothing was written in between.
    int waiting() const;

    using Sink = std::function<void(std::size_t line, bool high)>;
    // Hands every level that waits to `sink`. Never blocks.
    void drain(const Sink& sink);

private:
    struct Line {
        int fifo;
        int watch;
    };

    std::vector<std::size_t> takeRuns() const;
    bool takeLevel(std::size_t line, const Sink& sink) const;

    int m_inotify;
    std::vector<Line> m_lines;
};

} // namespace board
