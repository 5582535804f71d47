#pragma once

#include "commandset.h"
#include "machine.h"

#include <cstdint>

namespace controller {

// The flash chip beside an E3.
//
// The chip is detached, attached with basic or attached with fast transfers; REG_FLASH_STATUS says
// which. Whole operations need it attached, its own SPI commands detached; otherwise nothing
// happens but a complaint. A wrong alignment is a fault.
class FlashCommands {
public:
    explicit FlashCommands(Machine& machine) : m_machine(machine) {}
    void addTo(CommandSet& set);

private:
    void attach(const Call& call);
    void detach(const Call& call);
    void fast(const Call& call);
    Outcome erase(const Call& call);
    Outcome write(const Call& call);
    void read(const Call& call);
    void update(const Call& call);
    void spiDesel(const Call& call);
    Outcome spiTx(const Call& call);
    void spiRx(const Call& call);
    bool requireDetached(const Call& call);

    Machine& m_machine;
};

// Of flash addresses that are read from.
constexpr std::uint32_t flashReadAlignment = 64;
// Whether the flash is attached; a complaint when it is not.
bool requireAttachedFlash(Machine& machine, const Call& call);

} // namespace controller
