#pragma once

#include "host.h"
#include "input.h"

#include <cstdint>
#include <vector>

namespace fuzz {

controllertest::Generation generation(std::uint8_t choice);

// A host whose controller runs a panel so small that drawing a frame is cheap, and lasts 10 ms.
class SmallPanel : public controllertest::Host {
public:
    explicit SmallPanel(controllertest::Generation generation,
                        const controller::Options& options = {});

    // Whether the panel still is, whatever has been written into the registers.
    bool isSmall() const;
    // Draws the frame, if that is cheap.
    void look() const;
    // Puts words into the ring, as many at a time as it can take, and gives the coprocessor time.
    void feed(const std::vector<std::uint32_t>& words);
    // Takes the chip through power-down; it must then work as ever.
    void requireWorking();

private:
    bool hasTakenAll() const;
};

// A word for the coprocessor: one byte says of what kind it is, so that commands, small numbers,
// pairs of coordinates and addresses are likely.
std::uint32_t commandWord(Input& input);

} // namespace fuzz
