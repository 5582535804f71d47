#pragma once

#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

// A program in a process of its own, killed if it still runs when this is destroyed.
class Program {
public:
    using Environment = std::vector<std::pair<std::string, std::string>>;

    // Starts the program at `path` with this process's environment and `environment` added. Throws
    // std::runtime_error.
    Program(const std::string& path, const std::vector<std::string>& arguments,
            const Environment& environment);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    // What it writes to its standard output and error until it has closed both.
    std::string output() const;

    // Waits for it to end: its exit status, -1 if a signal ended it.
    int wait();

    void kill();

private:
    pid_t m_process = -1;
    int m_output = -1;
};

// Runs tests/support/boardprogram.cpp (see there for its steps) to its end: its output, and
// "status N" behind it if that is not 0.
std::string runOnBoard(const Program::Environment& board, const std::vector<std::string>& steps);
