#include "virtualboard.h"

#include "levelqueue.h"
#include "testbed.h"
#include "wakeup.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <linux/spi/spidev.h>
#include <mutex>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace board {
namespace {

const char* const spiNode = "/dev/spidev2.0";
const char* const gpioDirectory = "/sys/class/gpio/";
const char* const unwritableFile = "/proc/sys/kernel/ostype";

// The lines of the display controller by their sysfs numbers.
constexpr int linePowerDown = 799;
constexpr int lineInterrupt = 800;
constexpr int lineChipSelect = 801;

// In the order in which they are added to the level queue.
enum WatchedLine : std::size_t { powerDownLine, chipSelectLine };

// For so long a program must have written no level before one is shown that no message follows.
// Well below the 20 ms for which the power-down line is held.
constexpr int quietMs = 4;

std::string linePath(int number, const char* file) {
    return gpioDirectory + ("gpio" + std::to_string(number) + "/" + file);
}

// The preloaded library sleeps for zero seconds after each ioctl, which takes as long as the timer
// slack of its thread: 50 us by default, about a third of an SPI message. Programs inherit it from
// the thread that starts them.
void makeSleepsShort() {
    prctl(PR_SET_TIMERSLACK, 1UL);
}

// Locks out the other callers of the wires.
using Guard = std::lock_guard<std::mutex>;

} // namespace

// Two threads reach the wires, one at a time: umockdev's with SPI messages, bringing along the
// levels written before them, and one of our own for levels that no message follows.
class VirtualBoard::Private : public IoctlHandler {
public:
    Private(Wires& wires, const Options& options);
    ~Private() override;

    IoctlAnswer ioctl(unsigned long request, const CallerMemory& argument) override;

    std::vector<std::pair<std::string, std::string>> environment() const {
        return m_testbed->environment();
    }
    std::string root() const { return m_testbed->root(); }
    void setTransfersFail(bool fail);
    void setLinesForbidden(bool forbidden);
    Traffic traffic();
    void sync();

private:
    void addExport(const Options& options);
    void addLine(int number);
    void addWatchedLine(int number);
    IoctlAnswer message(const CallerMemory& argument, std::size_t length);
    void transfer(const CallerMemory& records, std::size_t offset, const spi_ioc_transfer& record);
    void drain();
    void watchLevels();

    Wires& m_wires;
    LevelQueue m_levels;
    WakeUp m_end;
    std::mutex m_mutex; // guards what follows, the level queue and the calls of m_wires
    bool m_transfersFail = false;
    Traffic m_traffic;
    std::unique_ptr<Testbed> m_testbed; // after all that its thread uses
    std::thread m_watcher;
};

VirtualBoard::Private::Private(Wires& wires, const Options& options)
    : m_wires(wires), m_testbed(std::make_unique<Testbed>()) {
    addExport(options);
    addWatchedLine(linePowerDown);
    addWatchedLine(lineChipSelect);
    addLine(lineInterrupt);
    m_testbed->addFile(linePath(lineInterrupt, "value"), "1\n"); // nothing to report
    if (options.spiNode) {
        m_testbed->addNode(spiNode, *this);
    }
    m_watcher = std::thread(&Private::watchLevels, this);
    makeSleepsShort();
}

VirtualBoard::Private::~Private() {
    m_testbed.reset();
    m_end.wake();
    m_watcher.join();
}

void VirtualBoard::Private::addExport(const Options& options) {
    const std::string path = std::string(gpioDirectory) + "export";
    if (options.linesAlreadyExported) {
        m_testbed->addLink(path, "/dev/full"); // it opens, and every write to it fails
    } else if (options.gpioExport) {
        m_testbed->addFile(path, {});
    }
}

void VirtualBoard::Private::addLine(int number) {
    m_testbed->addFile(linePath(number, "direction"), "in\n");
}

void VirtualBoard::Private::addWatchedLine(int number) {
    addLine(number);
    m_testbed->addFifo(linePath(number, "value"));
    m_levels.add(m_testbed->root() + linePath(number, "value"));
}

IoctlAnswer VirtualBoard::Private::ioctl(unsigned long request, const CallerMemory& argument) {
    const Guard guard(m_mutex);
    drain();
    switch (request) {
    case SPI_IOC_WR_MODE:
    case SPI_IOC_WR_MODE32:
    case SPI_IOC_WR_BITS_PER_WORD:
    case SPI_IOC_WR_MAX_SPEED_HZ:
        return {}; // any setting will do
    default:
        break;
    }
    const bool isMessage = _IOC_TYPE(request) == SPI_IOC_MAGIC && _IOC_NR(request) == 0 &&
                           _IOC_DIR(request) == _IOC_WRITE &&
                           _IOC_SIZE(request) % sizeof(spi_ioc_transfer) == 0;
    return isMessage ? message(argument, _IOC_SIZE(request)) : IoctlAnswer{-1, ENOTTY};
}

// `length` is that of the transfer records that `argument` points to.
IoctlAnswer VirtualBoard::Private::message(const CallerMemory& argument, std::size_t length) {
    const auto memory = argument.follow(0, length);
    std::vector<spi_ioc_transfer> records(length / sizeof(spi_ioc_transfer));
    std::memcpy(records.data(), memory->bytes(), length);

    std::size_t total = 0;
    for (const spi_ioc_transfer& record : records) {
        total += record.len;
    }
    ++m_traffic.messages;
    m_traffic.bytes += total;
    if (total > longestMessage) {
        return {-1, EMSGSIZE};
    }
    if (m_transfersFail) {
        return {-1, EIO};
    }
    try {
        for (std::size_t i = 0; i < records.size(); ++i) {
            transfer(*memory, i * sizeof(spi_ioc_transfer), records[i]);
        }
    } catch (const TransferFailed&) {
        return {-1, EIO};
    }
    return {static_cast<int>(total), 0};
}

// `record` is the one at `offset` of the caller's `records`.
void VirtualBoard::Private::transfer(const CallerMemory& records, std::size_t offset,
                                     const spi_ioc_transfer& record) {
    std::array<std::uint8_t, longestMessage> received{};
    std::uint8_t* const rx = record.rx_buf != 0 ? received.data() : nullptr;
    if (record.tx_buf == 0) {
        m_wires.transfer(nullptr, rx, record.len);
    } else if (record.len == 0) {
        m_wires.transfer(received.data(), rx, 0); // there is nothing to follow
    } else {
        const auto sent = records.follow(offset + offsetof(spi_ioc_transfer, tx_buf), record.len);
        m_wires.transfer(sent->bytes(), rx, record.len);
    }
    if (rx != nullptr && record.len != 0) {
        records.follow(offset + offsetof(spi_ioc_transfer, rx_buf), record.len)
            ->write(rx, record.len);
    }
}

void VirtualBoard::Private::setTransfersFail(bool fail) {
    const Guard guard(m_mutex);
    m_transfersFail = fail;
}

// Permissions do not keep the superuser out, so the file becomes a link to one of the kernel's that
// nobody at all may write.
void VirtualBoard::Private::setLinesForbidden(bool forbidden) {
    const Guard guard(m_mutex);
    for (const int line : {linePowerDown, lineInterrupt, lineChipSelect}) {
        const std::filesystem::path file = m_testbed->root() + linePath(line, "value");
        const std::filesystem::path aside = file.string() + ".aside";
        std::error_code error;
        if (forbidden && !std::filesystem::exists(aside)) {
            std::filesystem::rename(file, aside, error);
            std::filesystem::create_symlink(unwritableFile, file, error);
        } else if (!forbidden && std::filesystem::exists(aside)) {
            std::filesystem::rename(aside, file, error);
        }
    }
}

Traffic VirtualBoard::Private::traffic() {
    const Guard guard(m_mutex);
    return m_traffic;
}

void VirtualBoard::Private::sync() {
    const Guard guard(m_mutex);
    drain();
}

void VirtualBoard::Private::drain() {
    m_levels.drain([this](std::size_t line, bool high) {
        if (line == powerDownLine) {
            m_wires.powerDown(high);
        } else {
            m_wires.chipSelect(high);
        }
    });
}

// Levels that a message follows are left to it.
void VirtualBoard::Private::watchLevels() {
    pollfd end{m_end.fileDescriptor(), POLLIN, 0};
    std::array<pollfd, 2> sources{{end, {m_levels.fileDescriptor(), POLLIN, 0}}};
    while (poll(sources.data(), sources.size(), -1) < 0 || sources[0].revents == 0) {
        const int waiting = m_levels.waiting();
        if (poll(&end, 1, quietMs) == 1) {
            return;
        }
        if (m_levels.waiting() == waiting) {
            sync();
        }
    }
}

VirtualBoard::VirtualBoard(Wires& wires, const Options& options)
    : d(std::make_unique<Private>(wires, options)) {}

VirtualBoard::~VirtualBoard() = default;

std::vector<std::pair<std::string, std::string>> VirtualBoard::environment() const {
    return d->environment();
}

std::string VirtualBoard::root() const {
    return d->root();
}

void VirtualBoard::setTransfersFail(bool fail) {
    d->setTransfersFail(fail);
}

bool VirtualBoard::setLinesForbidden(bool forbidden) {
    d->setLinesForbidden(forbidden);
    return true;
}

Traffic VirtualBoard::traffic() const {
    return d->traffic();
}

void VirtualBoard::sync() {
    d->sync();
}

} // namespace board
