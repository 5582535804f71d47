#pragma once

// The board as the layers above see it: plain functions over the display controller's SPI bus and
// the lines wired to it. Implemented on the instrument by cplatform.cpp. Main thread only.

// Lines that platform_gpio_value() acts on; any other number is ignored.
enum gpio_name : int {
    GPIO_CS = 21, // the controller's chip select, low selects
    GPIO_PD = 24, // the controller's power-down line, low holds it in power-down
};

enum gpio_val : int {
    GPIO_LOW = 0,
    GPIO_HIGH = 1,
};

// Builds the board on first use: exports the lines, sets their directions, deselects the
// controller. Ends the process with status 1 when a line cannot be opened. Returns 0.
int platform_init();

// Blocks for `ms` milliseconds.
void platform_sleep_ms(unsigned int ms);

// Opens the SPI device; ends the process with status 1 when that fails.
void platform_spi_init();
void platform_spi_deinit();

// One full-duplex byte in one SPI message. Returns the byte received, 0 if the transfer failed.
unsigned char platform_spi_send_recv_byte(unsigned char b);

// Sends `len` bytes in one SPI message. `data` is only read.
void platform_spi_send_data(unsigned char* data, unsigned short len);

// Receives `len` bytes (at most 256) in one SPI message. After a failed transfer the content of
// `data` is unspecified.
void platform_spi_recv_data(unsigned char* data, unsigned short len);

// Drives a line high when `val` is GPIO_HIGH, low for any other value.
void platform_gpio_value(gpio_name name, gpio_val val);
