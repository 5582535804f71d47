#pragma once

#include "commandset.h"
#include "imageloader.h"
#include "machine.h"
#include "mediafifo.h"

#include <cstdint>

namespace controller {

// Data that are unpacked into memory, and what is known about them afterwards.
class StreamCommands {
public:
    explicit StreamCommands(Machine& machine)
        : m_machine(machine), m_mediaFifo(machine), m_images(machine) {}
    void addTo(CommandSet& set);
    void reset();

private:
    Outcome inflate(const Call& call);
    Outcome inflate2(const Call& call);
    Outcome loadImage(const Call& call);
    Outcome playVideo(const Call& call);
    void mediaFifo(const Call& call);
    void getPtr(const Call& call);
    void getProps(const Call& call);
    void flashSource(const Call& call);
    DataSink inflateSink(std::uint32_t destination);
    DataSink imageSink(std::uint32_t address, std::uint32_t options);

    Machine& m_machine;
    MediaFifo m_mediaFifo;
    ImageLoader m_images;
    std::uint32_t m_pointer = 0; // behind the last data unpacked
    std::uint32_t m_flashSource = 0;
};

} // namespace controller
