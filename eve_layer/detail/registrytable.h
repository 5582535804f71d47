#pragma once

#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>

// A registry name with its value for each variant (controller generation, panel size), in the order
// of the variants' enumeration; empty where the variant does not define the name.
template<typename Value, std::size_t Variants>
struct RegistryRow {
    QStringView name; // a string literal
    std::array<std::optional<Value>, Variants> values;
};

// In a table: the variant lacks the name.
inline constexpr std::nullopt_t absent = std::nullopt;

// All rows of one table, which is an array of static storage.
template<typename Row>
class RegistryTable {
public:
    template<std::size_t Size>
    constexpr explicit RegistryTable(const Row (&rows)[Size]) : m_rows(rows), m_size(Size) {}

    constexpr const Row* begin() const { return m_rows; }
    constexpr const Row* end() const { return m_rows + m_size; }

private:
    const Row* m_rows;
    std::size_t m_size;
};
