#include "program.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

bool names(const std::string& setting, const std::string& variable) {
    return setting.find('=') == variable.size() && setting.find(variable) == 0;
}

std::vector<std::string> settings(const Program::Environment& added) {
    std::vector<std::string> all;
    for (char** setting = environ; *setting != nullptr; ++setting) {
        if (std::none_of(added.begin(), added.end(),
                         [&](const auto& variable) { return names(*setting, variable.first); })) {
            all.emplace_back(*setting);
        }
    }
    std::transform(added.begin(), added.end(), std::back_inserter(all), [](const auto& variable) {
        return std::string(variable.first).append("=").append(variable.second);
    });
    return all;
}

// As the system's calls take them: valid as long as `strings` is.
std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> result(strings.size() + 1); // the last one stays null
    std::transform(strings.begin(), strings.end(), result.begin(),
                   [](std::string& string) { return string.data(); });
    return result;
}

} // namespace

Program::Program(const std::string& path, const std::vector<std::string>& arguments,
                 const Environment& environment) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    m_output = ends[0];

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = settings(environment);
    // Not fork(): this process may have threads.
    const int error = posix_spawn(&m_process, path.c_str(), &actions, nullptr,
                                  pointers(words).data(), pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (error != 0) {
        close(m_output);
        throw std::runtime_error(path + ": " + std::generic_category().message(error));
    }
}

Program::~Program() {
    kill();
    close(m_output);
}

std::string Program::output() const {
    std::string text;
    std::array<char, 256> part{};
    ssize_t length = 0;
    while ((length = read(m_output, part.data(), part.size())) > 0) {
        text.append(part.data(), static_cast<std::size_t>(length));
    }
    return text;
}

int Program::wait() {
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void Program::kill() {
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        wait();
    }
}

std::string runOnBoard(const Program::Environment& board, const std::vector<std::string>& steps) {
    Program program(BOARD_PROGRAM, steps, board);
    const std::string output = program.output();
    const int status = program.wait();
    return status == 0 ? output : output + "status " + std::to_string(status);
}
