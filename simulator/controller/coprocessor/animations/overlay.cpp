#include "overlay.h"

#include "commandfault.h"
#include "dlwords.h"

#include <algorithm>
#include <utility>

namespace controller {

Overlay::Overlay(Machine& machine, std::shared_ptr<Drawing> drawing)
    : m_machine(machine), m_drawing(std::move(drawing)), m_length(machine.list.length()) {
    machine.budget.spend(displayListBytes);
    for (std::size_t i = 0; i < m_length; ++i) {
        m_list[i] = machine.memory.listWord(i);
    }
    Words words;
    m_drawing->draw(words, 0);
    if (m_length + words.size() >= displayListWords) {
        fault("display list overflow");
    }
}

void Overlay::frameEnded() {
    m_drawing->frameEnded();
    Words words;
    m_drawing->draw(words, m_frame++);
    words.push_back(dl::display());
    const std::size_t room = displayListWords - m_length;
    std::copy_n(words.begin(), std::min(words.size(), room),
                m_list.begin() + static_cast<std::ptrdiff_t>(m_length));
    m_machine.port.showList(m_list);
}

} // namespace controller
