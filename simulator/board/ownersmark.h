#pragma once

#include <string>

namespace board {

// Says of a directory that the process that made it still runs: a locked file in it. The kernel
// takes the lock away when the process ends, however it does.
class OwnersMark {
public:
    // Throws BoardError.
    explicit OwnersMark(const std::string& directory);
    OwnersMark(const OwnersMark&) = delete;
    OwnersMark& operator=(const OwnersMark&) = delete;
    ~OwnersMark();

private:
    int m_file = -1;
};

// Removes every directory below `parent` that bears the mark of a process of this user that no
// longer runs. What cannot be removed stays.
void removeOrphans(const std::string& parent);

} // namespace board
