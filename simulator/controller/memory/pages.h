#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace controller {

// Memory is looked after page by page: who has made something of it asks whether the pages that
// were read are as they were.
constexpr std::size_t pageBytes = 1024;

constexpr std::size_t pagesOf(std::size_t bytes) {
    return (bytes + pageBytes - 1) / pageBytes;
}

// A set of pages of one memory of at most 1.125 MiB, the largest there is.
class PageSet {
public:
    void clear() { m_words.fill(0); }

    // The pages of `length` bytes at `offset`, which lie in the memory.
    void add(std::size_t offset, std::size_t length) {
        if (length == 0) {
            return;
        }
        const std::size_t last = (offset + length - 1) / pageBytes;
        for (std::size_t page = offset / pageBytes; page <= last;) {
            const std::size_t count = std::size_t{64} - page % 64;
            const std::size_t wanted = last - page + 1;
            const std::uint64_t from = ~std::uint64_t{0} << page % 64;
            const std::uint64_t cut =
                wanted < count ? ~(~std::uint64_t{0} << (page % 64 + wanted)) : ~std::uint64_t{0};
            m_words[page / 64] |= from & cut;
            page += count;
        }
    }

    // Whether the set has a page for which `condition` (its number) holds.
    template<typename Condition>
    bool hasAny(Condition condition) const {
        for (std::size_t i = 0; i < m_words.size(); ++i) {
            std::size_t page = i * 64;
            for (std::uint64_t rest = m_words[i]; rest != 0; rest >>= 1, ++page) {
                if ((rest & 1) != 0 && condition(page)) {
                    return true;
                }
            }
        }
        return false;
    }

private:
    std::array<std::uint64_t, 18> m_words{};
};

} // namespace controller
