// Linked into every test program: tests end programs on purpose, and their memory is of no
// interest.

#include <sys/resource.h>

namespace {

struct NoCoreFiles {
    NoCoreFiles() {
        rlimit limit{};
        getrlimit(RLIMIT_CORE, &limit);
        limit.rlim_cur = 0;
        setrlimit(RLIMIT_CORE, &limit);
    }
};

const NoCoreFiles noCoreFiles;

} // namespace
