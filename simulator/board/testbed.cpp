#include "testbed.h"

#include "ownersmark.h"

#include <umockdev-1.0/umockdev.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace board {
namespace {

const char* const preloadLibrary = "libumockdev-preload.so.0";
const char* const preloadVariable = "LD_PRELOAD";
const char* const rootVariable = "UMOCKDEV_DIR";

std::string describe(int error) {
    return std::generic_category().message(error);
}

// The message of a GError, which is freed.
std::string take(GError* error) {
    std::string message = error != nullptr ? error->message : "umockdev gives no reason";
    g_clear_error(&error);
    return message;
}

UMockdevIoctlData* asIoctlData(void* data) {
    return static_cast<UMockdevIoctlData*>(data);
}

// The loader passes over a library that it cannot preload, and the program would look for a real
// board.
void requirePreloadLibrary() {
    void* library = dlopen(preloadLibrary, RTLD_LAZY | RTLD_LOCAL);
    if (library == nullptr) {
        throw BoardError(std::string(dlerror()) + " (install the package umockdev)");
    }
    dlclose(library);
}

// umockdev ends the process when it cannot make its directory, so this is found out first.
void requireTemporaryDirectory() {
    const std::string parent = g_get_tmp_dir();
    const std::string mend = " (make room there, or set TMPDIR to another directory)";

    // What umockdev appends: "/umockdev.XXXXXX/ioctl" and the node.
    constexpr std::size_t longestSocketName = 60;
    if (parent.size() + longestSocketName > sizeof(sockaddr_un::sun_path)) {
        throw BoardError("the path of " + parent + " is too long for sockets below it" + mend);
    }
    std::string trial = parent + "/panel-board.XXXXXX";
    if (mkdtemp(trial.data()) == nullptr) {
        throw BoardError("cannot make a directory in " + parent + ": " + describe(errno) + mend);
    }
    rmdir(trial.c_str());
}

void answer(IoctlHandler& handler, UMockdevIoctlClient* client) {
    IoctlAnswer result;
    try {
        const CallerMemory argument(g_object_ref(umockdev_ioctl_client_get_arg(client)));
        result = handler.ioctl(umockdev_ioctl_client_get_request(client), argument);
    } catch (const std::exception&) {
        result = {-1, EFAULT};
    }
    umockdev_ioctl_client_complete(client, result.result, result.error);
}

gboolean onIoctl(UMockdevIoctlBase* /*base*/, UMockdevIoctlClient* client, gpointer handler) {
    answer(*static_cast<IoctlHandler*>(handler), client);
    return TRUE;
}

// umockdev calls it critical when a program on the board is killed in the middle of an ioctl.
void passOnOtherMessages(const gchar* domain, GLogLevelFlags level, const gchar* message,
                         gpointer data) {
    if (std::strstr(message, "Destroying IoctlClient with open stream") == nullptr) {
        g_log_default_handler(domain, level, message, data);
    }
}

} // namespace

CallerMemory::CallerMemory(void* umockdevData) : m_data(umockdevData) {}

CallerMemory::~CallerMemory() {
    g_object_unref(m_data);
}

const std::uint8_t* CallerMemory::bytes() const {
    return asIoctlData(m_data)->data;
}

std::size_t CallerMemory::size() const {
    return static_cast<std::size_t>(asIoctlData(m_data)->data_len);
}

std::unique_ptr<CallerMemory> CallerMemory::follow(std::size_t offset, std::size_t length) const {
    GError* error = nullptr;
    UMockdevIoctlData* data =
        umockdev_ioctl_data_resolve(asIoctlData(m_data), offset, length, &error);
    if (data == nullptr) {
        throw std::runtime_error("cannot read the caller's memory: " + take(error));
    }
    return std::make_unique<CallerMemory>(data);
}

void CallerMemory::write(const std::uint8_t* bytes, std::size_t length) {
    umockdev_ioctl_data_update(asIoctlData(m_data), 0, const_cast<guint8*>(bytes),
                               static_cast<gint>(length));
}

class Testbed::Handle {
public:
    Handle()
        : m_logHandler(
              g_log_set_handler(nullptr, G_LOG_LEVEL_CRITICAL, passOnOtherMessages, nullptr)),
          m_testbed(umockdev_testbed_new()) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    ~Handle() {
        for (const std::string& node : m_nodes) {
            umockdev_testbed_detach_ioctl(m_testbed, node.c_str(), nullptr);
        }
        g_object_unref(m_testbed);
        g_log_remove_handler(nullptr, m_logHandler);
    }

    std::string root() const {
        gchar* directory = umockdev_testbed_get_root_dir(m_testbed);
        std::string root = directory;
        g_free(directory);
        return root;
    }

    void attach(const std::string& node, IoctlHandler& handler) {
        UMockdevIoctlBase* base = umockdev_ioctl_base_new();
        g_signal_connect(base, "handle-ioctl", G_CALLBACK(onIoctl), &handler);
        GError* error = nullptr;
        const bool attached =
            umockdev_testbed_attach_ioctl(m_testbed, node.c_str(), base, &error) != FALSE;
        g_object_unref(base);
        if (!attached) {
            throw BoardError("cannot answer the ioctls of " + node + ": " + take(error));
        }
        m_nodes.push_back(node);
    }

private:
    guint m_logHandler;
    UMockdevTestbed* m_testbed;
    std::vector<std::string> m_nodes;
};

Testbed::Testbed() {
    requirePreloadLibrary();
    requireTemporaryDirectory();
    removeOrphans(g_get_tmp_dir());
    m_handle = std::make_unique<Handle>();
    m_root = m_handle->root();
    m_mark = std::make_unique<OwnersMark>(m_root);
}

Testbed::~Testbed() = default;

void Testbed::addFile(const std::string& path, const std::string& content) {
    const std::string place = makePlace(path);
    std::ofstream file(place, std::ios::binary);
    file << content << std::flush;
    if (!file) {
        throw BoardError("cannot write " + place + ": " + describe(errno));
    }
}

void Testbed::addFifo(const std::string& path) {
    const std::string place = makePlace(path);
    constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
    if (mkfifo(place.c_str(), ownerOnly) != 0) {
        throw BoardError("cannot make the FIFO " + place + ": " + describe(errno));
    }
}

void Testbed::addLink(const std::string& path, const std::string& target) {
    const std::string place = makePlace(path);
    if (symlink(target.c_str(), place.c_str()) != 0) {
        throw BoardError("cannot make the link " + place + ": " + describe(errno));
    }
}

void Testbed::addNode(const std::string& path, IoctlHandler& handler) {
    // To the preloaded library any file is a device; the terminal that umockdev itself would make
    // could become the program's controlling one.
    addFile(path, {});
    m_handle->attach(path, handler);
}

std::vector<std::pair<std::string, std::string>> Testbed::environment() const {
    const char* others = std::getenv(preloadVariable);
    std::string preload = others != nullptr ? others : "";
    if (preload.find(preloadLibrary) == std::string::npos) {
        // Last, as the sanitizers' libraries insist on being first.
        preload += (preload.empty() ? "" : ":") + std::string(preloadLibrary);
    }
    return {{preloadVariable, preload}, {rootVariable, m_root}};
}

std::string Testbed::makePlace(const std::string& path) const {
    const std::filesystem::path place = m_root + path;
    std::error_code error;
    std::filesystem::create_directories(place.parent_path(), error);
    if (error) {
        throw BoardError("cannot make the directory " + place.parent_path().string() + ": " +
                         error.message());
    }
    return place.string();
}

} // namespace board
