#include "kernelboard.h"

#include "panelboard.h"
#include "wakeup.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace board {
namespace {

// The lines of the display controller by their numbers on the chip, whose first one is line 745.
constexpr std::uint32_t chipsPowerDown = 54;
constexpr std::uint32_t chipsChipSelect = 56;

int openDevice(const std::string& path) {
    const int device = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (device < 0) {
        throw BoardError("cannot open " + path + ": " + std::generic_category().message(errno) +
                         " (it is the device of the kernel module panelboard, and takes one "
                         "board at a time)");
    }
    return device;
}

// Locks out the other callers of the wires.
using Guard = std::lock_guard<std::mutex>;

} // namespace

// Events are taken from the device by a thread of our own, or by who waits for them in sync().
class KernelBoard::Private {
public:
    Private(Wires& wires, int device);
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;
    ~Private();

    void setTransfersFail(bool fail);
    Traffic traffic();
    void sync();

private:
    void takeEvents();
    void take(const panelboard_event& event, const std::uint8_t* sent);
    void transfer(const panelboard_event& event, const std::uint8_t* sent);
    void watchEvents();

    Wires& m_wires;
    const int m_device;
    WakeUp m_end;
    std::mutex m_mutex; // guards what follows, reading from the device and the calls of m_wires
    bool m_transfersFail = false;
    Traffic m_traffic;
    std::thread m_watcher;
};

KernelBoard::Private::Private(Wires& wires, int device)
    : m_wires(wires), m_device(device), m_watcher(&Private::watchEvents, this) {}

KernelBoard::Private::~Private() {
    m_end.wake();
    m_watcher.join();
    close(m_device);
}

void KernelBoard::Private::setTransfersFail(bool fail) {
    const Guard guard(m_mutex);
    m_transfersFail = fail;
}

Traffic KernelBoard::Private::traffic() {
    const Guard guard(m_mutex);
    return m_traffic;
}

void KernelBoard::Private::sync() {
    const Guard guard(m_mutex);
    takeEvents();
}

void KernelBoard::Private::takeEvents() {
    std::array<std::uint8_t, sizeof(panelboard_event) + longestMessage> buffer{};
    while (read(m_device, buffer.data(), buffer.size()) > 0) {
        panelboard_event event{};
        std::memcpy(&event, buffer.data(), sizeof event);
        take(event, buffer.data() + sizeof event);
    }
}

void KernelBoard::Private::take(const panelboard_event& event, const std::uint8_t* sent) {
    if (event.kind == PANELBOARD_TRANSFER) {
        transfer(event, sent);
    } else if (event.number == chipsPowerDown) {
        m_wires.powerDown(event.level != 0);
    } else if (event.number == chipsChipSelect) {
        m_wires.chipSelect(event.level != 0);
    }
}

void KernelBoard::Private::transfer(const panelboard_event& event, const std::uint8_t* sent) {
    ++m_traffic.messages;
    m_traffic.bytes += event.length;
    std::array<std::uint8_t, sizeof(panelboard_answer) + longestMessage> buffer{};
    std::size_t length = sizeof(panelboard_answer);
    panelboard_answer answer{event.number, 0};
    try {
        if (m_transfersFail) {
            throw TransferFailed("messages fail");
        }
        const bool receives = event.wants_data != 0;
        m_wires.transfer(event.has_data != 0 ? sent : nullptr,
                         receives ? buffer.data() + length : nullptr, event.length);
        length += receives ? event.length : 0;
    } catch (const TransferFailed&) {
        answer.result = -EIO;
    }
    std::memcpy(buffer.data(), &answer, sizeof answer);
    // Refused only where the program has ended meanwhile.
    [[maybe_unused]] const ssize_t written = write(m_device, buffer.data(), length);
}

void KernelBoard::Private::watchEvents() {
    std::array<pollfd, 2> sources{{{m_end.fileDescriptor(), POLLIN, 0}, {m_device, POLLIN, 0}}};
    while (poll(sources.data(), sources.size(), -1) < 0 || sources[0].revents == 0) {
        sync();
    }
}

KernelBoard::KernelBoard(Wires& wires, const std::string& device)
    : KernelBoard(wires, openDevice(device)) {}

KernelBoard::KernelBoard(Wires& wires, int device) : d(std::make_unique<Private>(wires, device)) {}

KernelBoard::~KernelBoard() = default;

std::vector<std::pair<std::string, std::string>> KernelBoard::environment() const {
    return {};
}

void KernelBoard::setTransfersFail(bool fail) {
    d->setTransfersFail(fail);
}

Traffic KernelBoard::traffic() const {
    return d->traffic();
}

void KernelBoard::sync() {
    d->sync();
}

} // namespace board
