#include "cplatform.h"

#include "openfailure.h"

#include <QDebug>

#include <algorithm>
#include <cstdlib>
#include <unistd.h>

namespace {

const char* const spiPath = "/dev/spidev2.0";

// The controller's lines: the first line of their GPIO controller and their offsets there.
constexpr unsigned int gpioBase = 745;
constexpr unsigned int pinPD = 54;
constexpr unsigned int pinINT = 55;
constexpr unsigned int pinCS = 56;

constexpr unsigned int bitsPerWord = 8;
constexpr unsigned int microsecondsPerMillisecond = 1000;

} // namespace

Platform* Platform::p_instance = nullptr;
PlatformDestroyer Platform::destroyer;

PlatformDestroyer::~PlatformDestroyer() {
    delete m_platform;
}

Platform* Platform::getInstance() {
    if (p_instance == nullptr) {
        p_instance = new Platform;
        destroyer.initialize(p_instance);
    }
    return p_instance;
}

Platform::Platform()
    : m_spi(new SpiDevice(QString::fromLatin1(spiPath))), m_gpioPD(new cGPIO(gpioBase, pinPD)),
      m_gpioINT(new cGPIO(gpioBase, pinINT)), m_gpioCS(new cGPIO(gpioBase, pinCS)) {
    m_gpioPD->setDirections(cGPIO::Out);
    m_gpioINT->setDirections(cGPIO::In);
    m_gpioCS->setDirections(cGPIO::Out);
    m_gpioCS->write(true);
}

int Platform::platform_init() {
    return 0;
}

void Platform::spi_init() {
    m_spi->setBitsPerWord(bitsPerWord);
    if (!m_spi->open()) {
        qDebug("can't open device");
        explainOpenFailure(m_spi->file(), "the kernel's spidev driver must be bound to device 0 of "
                                          "SPI bus 2, for example by the device tree");
        std::exit(EXIT_FAILURE);
    }
}

void Platform::spi_deinit() {
    m_spi->close();
}

int platform_init() {
    return Platform::getInstance()->platform_init();
}

void platform_sleep_ms(unsigned int ms) {
    usleep(ms * microsecondsPerMillisecond);
}

void platform_spi_init() {
    Platform::getInstance()->spi_init();
}

void platform_spi_deinit() {
    Platform::getInstance()->spi_deinit();
}

unsigned char platform_spi_send_recv_byte(unsigned char b) {
    const QByteArray received =
        Platform::getInstance()->spi()->readWrite(QByteArray(1, static_cast<char>(b)));
    return received.isEmpty() ? 0 : static_cast<unsigned char>(received.at(0));
}

void platform_spi_send_data(unsigned char* data, unsigned short len) {
    Platform::getInstance()->spi()->write(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(len)));
}

void platform_spi_recv_data(unsigned char* data, unsigned short len) {
    // A failed transfer reads as zeros.
    const QByteArray received = Platform::getInstance()->spi()->read(len).leftJustified(len, '\0');
    std::copy_n(received.constData(), len, data);
}

void platform_gpio_value(gpio_name name, gpio_val val) {
    const Platform* board = Platform::getInstance();
    const bool high = val == GPIO_HIGH;
    switch (name) {
    case GPIO_CS:
        board->gpioCS()->write(high);
        break;
    case GPIO_PD:
        board->gpioPD()->write(high);
        break;
    default:
        break;
    }
}
