#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace board {

// The levels that a program writes to the value files of some lines, in the order in which it
// wrote them, over all lines. The files are FIFOs; which of them was written when is read from
// inotify, as each FIFO alone knows nothing of the others. Not thread-safe.
class LevelQueue {
public:
    // Throws BoardError, as does add().
    LevelQueue();
    LevelQueue(const LevelQueue&) = delete;
    LevelQueue& operator=(const LevelQueue&) = delete;
    ~LevelQueue();

    // Watches the FIFO at `path`, which must have a directory of its own. Lines count from 0.
    void add(const std::string& path);

    // Readable while levels wait.
    int fileDescriptor() const { return m_inotify; }

    using Sink = std::function<void(std::size_t line, bool high)>;
    // Hands every level that waits to `sink`. Never blocks.
    void drain(const Sink& sink);

private:
    struct Line {
        int fifo;
        int watch;
    };

    void takeEvents(const Sink& sink);
    bool takeLevel(std::size_t line, const Sink& sink);

    int m_inotify;
    std::vector<Line> m_lines;
};

} // namespace board
