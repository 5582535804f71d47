#pragma once

// The whole face of the board: what platform.h declares, the classes that stand behind it, and the
// one object that puts them together.

#include "cgpio.h"
#include "platform.h"
#include "spidevice.h"

class Platform;

// Deletes the board at program exit.
class PlatformDestroyer {
public:
    ~PlatformDestroyer();
    void initialize(Platform* platform) { m_platform = platform; }

private:
    Platform* m_platform = nullptr;
};

// The instrument's board: the SPI device and the three lines of the display controller. The wiring
// is fixed here and nowhere else. Main thread only. The plain functions of platform.h forward to
// the one instance.
class Platform {
public:
    // Built at the first call: exports the lines, sets their directions, deselects the controller.
    // Ends the process with status 1 when a line cannot be opened.
    static Platform* getInstance();

    // Owned by the board and never deleted: the lines stay as they are when the process ends.
    SpiDevice* spi() const { return m_spi; }
    cGPIO* gpioCS() const { return m_gpioCS; }   // chip select, low selects
    cGPIO* gpioINT() const { return m_gpioINT; } // interrupt, configured but not used
    cGPIO* gpioPD() const { return m_gpioPD; }   // power-down, low holds the controller down

    // Nothing is left to do once the board is built; returns 0.
    int platform_init();

    // Opens the SPI device with 8 bits per word; ends the process with status 1 when that fails.
    void spi_init();
    void spi_deinit();

private:
    Platform();

    SpiDevice* m_spi;
    cGPIO* m_gpioPD;
    cGPIO* m_gpioINT;
    cGPIO* m_gpioCS;

    static Platform* p_instance;
    static PlatformDestroyer destroyer;
};
