#pragma once

// umockdev's testbed for C++: a directory that stands for "/" below "/dev" and "/sys" in programs
// started with environment(). The process that owns the testbed needs no preloaded library itself
// and may own one testbed at a time. What a process leaves that is killed, the next testbed of the
// same user clears away.

#include "board.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace board {

class OwnersMark;

// A stretch of the memory of the program that waits in an ioctl. Valid until the ioctl is answered.
// What cannot be read or written there throws std::runtime_error.
class CallerMemory {
public:
    explicit CallerMemory(void* umockdevData);
    CallerMemory(const CallerMemory&) = delete;
    CallerMemory& operator=(const CallerMemory&) = delete;
    ~CallerMemory();

    const std::uint8_t* bytes() const;
    std::size_t size() const;

    // The `length` bytes, at least one, that the pointer stored at `offset` points to. umockdev
    // ends a program that has nothing there.
    std::unique_ptr<CallerMemory> follow(std::size_t offset, std::size_t length) const;

    // Overwrites the stretch's first `length` bytes, at once.
    void write(const std::uint8_t* bytes, std::size_t length);

private:
    void* m_data;
};

// What an ioctl returns to its caller: a result of 0 or more, or -1 and the errno.
struct IoctlAnswer {
    int result = 0;
    int error = 0;
};

// Answers the ioctls on one node.
class IoctlHandler {
public:
    IoctlHandler() = default;
    IoctlHandler(const IoctlHandler&) = delete;
    IoctlHandler& operator=(const IoctlHandler&) = delete;
    virtual ~IoctlHandler() = default;

    // Called on a thread of umockdev's own. `argument` holds the ioctl's third argument itself: for
    // the usual pointer, follow(0, size) is what it points to. An exception becomes EFAULT.
    virtual IoctlAnswer ioctl(unsigned long request, const CallerMemory& argument) = 0;
};

class Testbed {
public:
    // Removes the directories of this user's dead testbeds, and makes its own. Throws BoardError,
    // as do the functions that add something.
    Testbed();
    Testbed(const Testbed&) = delete;
    Testbed& operator=(const Testbed&) = delete;
    // Removes the directory; ioctls that arrive from now on fail.
    ~Testbed();

    const std::string& root() const { return m_root; }

    // Paths are as the program sees them; missing directories are made.
    void addFile(const std::string& path, const std::string& content);
    void addFifo(const std::string& path);
    void addLink(const std::string& path, const std::string& target);
    // A device node below "/dev"; `handler` must outlive the testbed.
    void addNode(const std::string& path, IoctlHandler& handler);

    // Variables (name, value) to add to the environment of a program that is to see the testbed.
    std::vector<std::pair<std::string, std::string>> environment() const;

private:
    std::string makePlace(const std::string& path) const;

    class Handle;                       // umockdev's own objects
    std::unique_ptr<OwnersMark> m_mark; // until the directory is gone
    std::unique_ptr<Handle> m_handle;
    std::string m_root;
};

} // namespace board
