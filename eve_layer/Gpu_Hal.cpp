#include "Gpu_Hal.h"

#include "displaysettings.h"
#include "generationguard.h"
#include "word.h"

#include <algorithm>
#include <array>

namespace {

constexpr const char* gpuHalFile = "eve_layer/Gpu_Hal.cpp";

constexpr uint8_t writeFlag = 0x80;
constexpr uint8_t coreResetCommand = 0x68;

// Second byte in bits 8..15.
constexpr uint32_t powerOffCommand = 0x49;
constexpr uint32_t padDriveCommand = 0x70;
constexpr uint32_t resetActiveCommand = 0x0268;
constexpr uint32_t resetRemovalCommand = 0x2068;

constexpr uint32_t powerSettleMs = 20;
constexpr uint32_t swapPollMs = 1;

constexpr uint8_t spiWidthTwoDummies = 4; // beside the number of channels in __REG_SPI_WIDTH

constexpr uint32_t fifoMask = 0xFFF;        // offsets in the command FIFO
constexpr uint32_t fifoWordMask = 0xFFC;    // the same, of whole words
constexpr uint32_t fifoCapacity = 4096 - 4; // full and empty must differ

enum class Drain : uint8_t { Wait, DontWait };

// The eight bits of `value` from bit `shift` on.
constexpr uint8_t byteOf(uint32_t value, unsigned shift) {
    return static_cast<uint8_t>(value >> shift);
}

template<std::size_t Size>
void send(std::array<uint8_t, Size> bytes) {
    platform_spi_send_data(bytes.data(), static_cast<unsigned short>(bytes.size()));
}

void sendHostCommand(const std::array<uint8_t, 3>& bytes) {
    platform_gpio_value(GPIO_CS, GPIO_LOW);
    send(bytes);
    platform_gpio_value(GPIO_CS, GPIO_HIGH);
}

uint16_t commandReadOffset(Gpu_Hal_Context_t* host) {
    return Gpu_Hal_Rd16(host, EVE_REG("__REG_CMD_READ"));
}

uint16_t commandWriteOffset(Gpu_Hal_Context_t* host) {
    return Gpu_Hal_Rd16(host, EVE_REG("__REG_CMD_WRITE"));
}

// One piece of a command buffer, once there is room for it.
void sendPiece(Gpu_Hal_Context_t* host, const uint8_t* piece, uint32_t count, Drain drain) {
    Gpu_Hal_CheckCmdBuffer(host, count);
    Gpu_Hal_StartCmdTransfer(host, GPU_WRITE);
    // The data is only read.
    platform_spi_send_data(const_cast<uint8_t*>(piece), static_cast<unsigned short>(count));
    Gpu_Hal_EndTransfer(host);
    Gpu_Hal_Updatecmdfifo(host, count);
    if (drain == Drain::Wait) {
        Gpu_Hal_WaitCmdfifo_empty(host);
    }
}

void sendCommands(Gpu_Hal_Context_t* host, const uint8_t* buffer, uint32_t count, Drain drain) {
    uint32_t space = Gpu_Cmdfifo_Freespace(host);
    while (count > space) {
        sendPiece(host, buffer, space, drain);
        buffer += space;
        count -= space;
        space = Gpu_Cmdfifo_Freespace(host);
    }
    sendPiece(host, buffer, count, drain);
}

} // namespace

// ---- Lifecycle ----

void Gpu_Hal_Init() {
    platform_init();
}

void Gpu_Hal_DeInit() {}

void Gpu_Hal_Open(Gpu_Hal_Context_t* host) {
    platform_gpio_value(GPIO_PD, GPIO_HIGH);
    platform_gpio_value(GPIO_CS, GPIO_HIGH);
    platform_spi_init();
    host->spi_dummy_count = GPU_SPI_ONE_DUMMY;
    host->cmd_write_offset = 0;
    host->dl_write_index = 0;
    host->transfer_state = GPU_TRANSFER_IDLE;
}

void Gpu_Hal_Close(Gpu_Hal_Context_t* host) {
    platform_spi_deinit();
    host->transfer_state = GPU_TRANSFER_CLOSED;
}

// ---- Transfers ----

void Gpu_Hal_StartTransfer(Gpu_Hal_Context_t* host, GPU_TRANSFERDIR_T dir, uint32_t addr) {
    platform_gpio_value(GPIO_CS, GPIO_LOW);
    if (dir == GPU_WRITE) {
        const auto top = static_cast<uint8_t>(writeFlag | (byteOf(addr, 16) & 0x3F));
        send<3>({top, byteOf(addr, 8), byteOf(addr, 0)});
        host->transfer_state = GPU_TRANSFER_WRITING;
    } else {
        send<4>({byteOf(addr, 16), byteOf(addr, 8), byteOf(addr, 0), 0});
        host->transfer_state = GPU_TRANSFER_READING;
    }
}

void Gpu_Hal_StartCmdTransfer(Gpu_Hal_Context_t* host, GPU_TRANSFERDIR_T dir) {
    Gpu_Hal_StartTransfer(host, dir, EVE_REG("__RAM_CMD") + host->cmd_write_offset);
}

uint8_t Gpu_Hal_Transfer8(uint8_t value) {
    return platform_spi_send_recv_byte(value);
}

uint16_t Gpu_Hal_Transfer16(Gpu_Hal_Context_t* host, uint16_t value) {
    if (host->transfer_state == GPU_TRANSFER_WRITING) {
        Gpu_Hal_Transfer8(byteOf(value, 0));
        Gpu_Hal_Transfer8(byteOf(value, 8));
        return 0;
    }
    const uint8_t low = Gpu_Hal_Transfer8(0);
    const uint8_t high = Gpu_Hal_Transfer8(0);
    return static_cast<uint16_t>(low | high << 8);
}

uint32_t Gpu_Hal_Transfer32(Gpu_Hal_Context_t* host, uint32_t value) {
    const uint32_t low = Gpu_Hal_Transfer16(host, static_cast<uint16_t>(value));
    const uint32_t high = Gpu_Hal_Transfer16(host, static_cast<uint16_t>(value >> 16));
    return low | high << 16;
}

uint8_t Gpu_Hal_TransferString(const char* string) {
    for (; *string != '\0'; ++string) {
        Gpu_Hal_Transfer8(static_cast<uint8_t>(*string));
    }
    return Gpu_Hal_Transfer8(0);
}

void Gpu_Hal_EndTransfer(Gpu_Hal_Context_t* host) {
    platform_gpio_value(GPIO_CS, GPIO_HIGH);
    host->transfer_state = GPU_TRANSFER_IDLE;
}

uint8_t Gpu_Hal_Rd8(Gpu_Hal_Context_t* host, uint32_t addr) {
    Gpu_Hal_StartTransfer(host, GPU_READ, addr);
    const uint8_t value = Gpu_Hal_Transfer8(0);
    Gpu_Hal_EndTransfer(host);
    return value;
}

uint16_t Gpu_Hal_Rd16(Gpu_Hal_Context_t* host, uint32_t addr) {
    Gpu_Hal_StartTransfer(host, GPU_READ, addr);
    const uint16_t value = Gpu_Hal_Transfer16(host, 0);
    Gpu_Hal_EndTransfer(host);
    return value;
}

uint32_t Gpu_Hal_Rd32(Gpu_Hal_Context_t* host, uint32_t addr) {
    Gpu_Hal_StartTransfer(host, GPU_READ, addr);
    const uint32_t value = Gpu_Hal_Transfer32(host, 0);
    Gpu_Hal_EndTransfer(host);
    return value;
}

void Gpu_Hal_Wr8(Gpu_Hal_Context_t* host, uint32_t addr, uint8_t value) {
    Gpu_Hal_StartTransfer(host, GPU_WRITE, addr);
    Gpu_Hal_Transfer8(value);
    Gpu_Hal_EndTransfer(host);
}

void Gpu_Hal_Wr16(Gpu_Hal_Context_t* host, uint32_t addr, uint16_t value) {
    Gpu_Hal_StartTransfer(host, GPU_WRITE, addr);
    Gpu_Hal_Transfer16(host, value);
    Gpu_Hal_EndTransfer(host);
}

void Gpu_Hal_Wr32(Gpu_Hal_Context_t* host, uint32_t addr, uint32_t value) {
    Gpu_Hal_StartTransfer(host, GPU_WRITE, addr);
    Gpu_Hal_Transfer32(host, value);
    Gpu_Hal_EndTransfer(host);
}

void Gpu_Hal_WrMem(Gpu_Hal_Context_t* host, uint32_t addr, const uint8_t* buffer, uint32_t length) {
    Gpu_Hal_StartTransfer(host, GPU_WRITE, addr);
    for (uint32_t i = 0; i < length; ++i) {
        Gpu_Hal_Transfer8(buffer[i]);
    }
    Gpu_Hal_EndTransfer(host);
}

void Gpu_Hal_RdMem(Gpu_Hal_Context_t* host, uint32_t addr, uint8_t* buffer, uint32_t length) {
    Gpu_Hal_StartTransfer(host, GPU_READ, addr);
    for (uint32_t i = 0; i < length; ++i) {
        buffer[i] = Gpu_Hal_Transfer8(0);
    }
    Gpu_Hal_EndTransfer(host);
}

void Gpu_Hal_Sleep(uint32_t ms) {
    platform_sleep_ms(ms);
}

void Gpu_Hal_ResetDLBuffer(Gpu_Hal_Context_t* host) {
    host->dl_write_index = 0;
}

// ---- Host commands ----

void Gpu_HostCommand(uint8_t cmd) {
    sendHostCommand({cmd, 0, 0});
}

void Gpu_HostCommand_Ext3(uint32_t cmd) {
    sendHostCommand({byteOf(cmd, 0), byteOf(cmd, 8), byteOf(cmd, 16)});
}

void Gpu_ClockSelect(GPU_PLL_SOURCE_T source) {
    Gpu_HostCommand(byteOf(source, 0));
}

void Gpu_PLL_FreqSelect(GPU_PLL_FREQ_T frequency) {
    Gpu_HostCommand(byteOf(frequency, 0));
}

void Gpu_PowerModeSwitch(GPU_POWER_MODE_T mode) {
    Gpu_HostCommand(byteOf(mode, 0));
}

void Gpu_CoreReset() {
    Gpu_HostCommand(coreResetCommand);
}

void Gpu_81X_SelectSysCLK(GPU_81X_PLL_FREQ_T frequency) {
    NEEDS_EVE2_OR_EVE3(gpuHalFile, 510, ONLY_EVE2_OR_EVE3);
    switch (frequency) {
    case GPU_81X_PLL_72MHZ:
        return Gpu_HostCommand_Ext3(0x4661);
    case GPU_81X_PLL_60MHZ:
        return Gpu_HostCommand_Ext3(0x4561);
    case GPU_81X_PLL_48MHZ:
        return Gpu_HostCommand_Ext3(0x4461);
    case GPU_81X_PLL_36MHZ:
        return Gpu_HostCommand_Ext3(0x0361);
    case GPU_81X_PLL_24MHZ:
        return Gpu_HostCommand_Ext3(0x0261);
    case GPU_81X_PLL_DEFAULT:
        return Gpu_HostCommand_Ext3(0x0061);
    }
}

void Gpu_81X_PowerOffComponents(Gpu_Hal_Context_t* /*host*/, uint8_t mask) {
    NEEDS_EVE2_OR_EVE3(gpuHalFile, 538, ONLY_EVE2_OR_EVE3);
    Gpu_HostCommand_Ext3(static_cast<uint32_t>(mask) << 8 | powerOffCommand);
}

void Gpu_81X_PadDriveStrength(Gpu_Hal_Context_t* /*host*/, GPU_81X_GPIO_DRIVE_STRENGTH_T strength,
                              GPU_81X_GPIO_GROUP_T group) {
    NEEDS_EVE2_OR_EVE3(gpuHalFile, 553, ONLY_EVE2_OR_EVE3);
    Gpu_HostCommand_Ext3(strength << 8 | group << 8 | padDriveCommand);
}

void Gpu_81X_ResetActive() {
    NEEDS_EVE2_OR_EVE3(gpuHalFile, 566, ONLY_EVE2_OR_EVE3);
    Gpu_HostCommand_Ext3(resetActiveCommand);
}

void Gpu_81X_ResetRemoval() {
    NEEDS_EVE2_OR_EVE3(gpuHalFile, 579, ONLY_EVE2_OR_EVE3);
    Gpu_HostCommand_Ext3(resetRemovalCommand);
}

// ---- Power and SPI width ----

void Gpu_Hal_Powercycle(bool up) {
    platform_gpio_value(GPIO_PD, up ? GPIO_LOW : GPIO_HIGH);
    Gpu_Hal_Sleep(powerSettleMs);
    platform_gpio_value(GPIO_PD, up ? GPIO_HIGH : GPIO_LOW);
    Gpu_Hal_Sleep(powerSettleMs);
}

int Gpu_Hal_SetSPI(Gpu_Hal_Context_t* host, GPU_SPI_NUMCHANNELS_T channels,
                   GPU_SPI_NUMDUMMYBYTES dummies) {
    if (isEve1()) {
        return 0;
    }
    if ((dummies != GPU_SPI_ONE_DUMMY && dummies != GPU_SPI_TWO_DUMMY) ||
        channels > GPU_SPI_QUAD_CHANNEL) {
        return -1;
    }
    const uint8_t dummyBit = dummies == GPU_SPI_TWO_DUMMY ? spiWidthTwoDummies : 0;
    Gpu_Hal_Wr8(host, EVE_REG("__REG_SPI_WIDTH"), static_cast<uint8_t>(channels | dummyBit));
    host->spi_lanes = static_cast<uint8_t>(channels);
    host->spi_dummy_count = static_cast<uint8_t>(dummies);
    return 0;
}

// ---- Command FIFO ----

void Gpu_Hal_Updatecmdfifo(Gpu_Hal_Context_t* host, uint32_t count) {
    host->cmd_write_offset =
        static_cast<uint16_t>((host->cmd_write_offset + count + wordSize - 1) & fifoWordMask);
    Gpu_Hal_Wr16(host, EVE_REG("__REG_CMD_WRITE"), host->cmd_write_offset);
}

uint16_t Gpu_Cmdfifo_Freespace(Gpu_Hal_Context_t* host) {
    const uint32_t pending =
        (host->cmd_write_offset - uint32_t{commandReadOffset(host)}) & fifoMask;
    return static_cast<uint16_t>(fifoCapacity - pending);
}

void Gpu_Hal_CheckCmdBuffer(Gpu_Hal_Context_t* host, uint32_t count) {
    while (Gpu_Cmdfifo_Freespace(host) < count) {
    }
}

void Gpu_Hal_WrCmd32(Gpu_Hal_Context_t* host, uint32_t word) {
    Gpu_Hal_CheckCmdBuffer(host, sizeof word);
    Gpu_Hal_Wr32(host, EVE_REG("__RAM_CMD") + host->cmd_write_offset, word);
    Gpu_Hal_Updatecmdfifo(host, sizeof word);
}

void Gpu_Hal_WrCmdBuf(Gpu_Hal_Context_t* host, const uint8_t* buffer, uint32_t count) {
    sendCommands(host, buffer, count, Drain::Wait);
}

void Gpu_Hal_WrCmdBuf_nowait(Gpu_Hal_Context_t* host, const uint8_t* buffer, uint32_t count) {
    sendCommands(host, buffer, count, Drain::DontWait);
}

void Gpu_Hal_WaitCmdfifo_empty(Gpu_Hal_Context_t* host) {
    uint16_t read = 0;
    uint16_t write = 0;
    do {
        read = commandReadOffset(host);
        write = commandWriteOffset(host);
    } while (read != write);
    host->cmd_write_offset = write;
}

uint32_t Gpu_Hal_WaitCmdfifo_empty_status(Gpu_Hal_Context_t* host) {
    const uint16_t read = commandReadOffset(host);
    const uint16_t write = commandWriteOffset(host);
    if (read != write) {
        return 0;
    }
    host->cmd_write_offset = commandWriteOffset(host);
    return 1;
}

void Gpu_Hal_WaitLogo_Finish(Gpu_Hal_Context_t* host) {
    uint16_t read = 0;
    uint16_t write = 0;
    do {
        read = commandReadOffset(host);
        write = commandWriteOffset(host);
    } while (read != 0 || write != 0);
    host->cmd_write_offset = 0;
}

void Gpu_Hal_ResetCmdFifo(Gpu_Hal_Context_t* host) {
    host->cmd_write_offset = 0;
}

void Gpu_Hal_DLSwap(Gpu_Hal_Context_t* host, uint8_t type) {
    const uint32_t line = EVE_REG("__DLSWAP_LINE");
    const uint32_t swap = type == line ? line : EVE_REG("__DLSWAP_FRAME");
    Gpu_Hal_Wr8(host, EVE_REG("__REG_DLSWAP"), static_cast<uint8_t>(swap));
    const uint32_t done = EVE_REG("__DLSWAP_DONE");
    while (Gpu_Hal_Rd8(host, EVE_REG("__REG_DLSWAP")) != done) {
        Gpu_Hal_Sleep(swapPollMs);
    }
}

// ---- Other rings in controller memory ----

void Fifo_Init(Fifo_t* fifo, uint32_t start, uint32_t length, uint32_t read_register,
               uint32_t write_register) {
    *fifo = Fifo_t{start, length, 0, 0, read_register, write_register};
}

void Fifo_Update(Gpu_Hal_Context_t* host, Fifo_t* fifo) {
    fifo->read_offset = Gpu_Hal_Rd32(host, fifo->read_register);
}

uint32_t Fifo_GetFreeSpace(Gpu_Hal_Context_t* host, Fifo_t* fifo) {
    Fifo_Update(host, fifo);
    uint32_t space = fifo->read_offset - fifo->write_offset;
    if (static_cast<int32_t>(fifo->write_offset) >= static_cast<int32_t>(fifo->read_offset)) {
        space += fifo->ring_length;
    }
    return space >= wordSize ? space - wordSize : space; // one word stays free
}

uint32_t Fifo_Write(Gpu_Hal_Context_t* host, Fifo_t* fifo, uint8_t* data, uint32_t count) {
    if (Fifo_GetFreeSpace(host, fifo) < count) {
        count = std::min(count, Fifo_GetFreeSpace(host, fifo));
    }
    if (count == 0) {
        return 0;
    }
    const uint32_t untilEnd = fifo->ring_length - fifo->write_offset;
    const uint32_t address = fifo->base_address + fifo->write_offset;
    if (fifo->write_offset + count >= fifo->ring_length) {
        const uint32_t wrapped = count - untilEnd;
        Gpu_Hal_WrMem(host, address, data, untilEnd);
        if (wrapped > 0) {
            Gpu_Hal_WrMem(host, fifo->base_address, data + untilEnd, wrapped);
        }
        fifo->write_offset = wrapped;
    } else {
        Gpu_Hal_WrMem(host, address, data, count);
        fifo->write_offset += count;
    }
    Gpu_Hal_Wr32(host, fifo->write_register, fifo->write_offset);
    return count;
}

void Fifo_WriteWait(Gpu_Hal_Context_t* host, Fifo_t* fifo, uint8_t* data, uint32_t count) {
    while (count > 0) {
        const uint32_t piece = std::min(Fifo_GetFreeSpace(host, fifo), count);
        const uint32_t written = Fifo_Write(host, fifo, data, piece);
        data += written;
        count -= written;
    }
}

void Fifo_Write32(Gpu_Hal_Context_t* host, Fifo_t* fifo, uint32_t word) {
    std::array<uint8_t, wordSize> bytes = {byteOf(word, 0), byteOf(word, 8), byteOf(word, 16),
                                           byteOf(word, 24)};
    Fifo_WriteWait(host, fifo, bytes.data(), wordSize);
}
