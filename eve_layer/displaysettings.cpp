#include "displaysettings.h"

#include "Gpu_Hal.h"
#include "eveassert.h"
#include "generationinforce.h"
#include "generationtable.h"
#include "paneltimings.h"
#include "wakeup.h"

namespace {

// The chip's identification word; it lies at the same place in all generations, so that it can be
// read before the generation is known.
constexpr uint32_t chipIdAddress = 0xC0000;
constexpr uint32_t chipIdEve1 = 0x00010108;
constexpr uint32_t chipIdEve3 = 0x00011508;
constexpr int chipIdReads = 10;
constexpr uint32_t detectionBootMs = 100;

// Assigns all values of one variant; does nothing for a variant that the table does not have.
template<typename Row, typename Map>
void assignVariant(const RegistryTable<Row>& table, std::size_t variant, Map& values) {
    for (const Row& row : table) {
        if (variant < row.values.size() && row.values[variant]) {
            // The name is static, so the key shares its characters.
            const QString key =
                QString::fromRawData(row.name.data(), static_cast<int>(row.name.size()));
            values[key] = *row.values[variant];
        }
    }
}

} // namespace

DisplaySettings* DisplaySettings::getInstance() {
    static DisplaySettings instance;
    return &instance;
}

DisplaySettings::DisplaySettings() {
    setDisplaySize(Size_43);
    setDisplayGeneration(EVE_1);
}

QString DisplaySettings::displaySizeToString(DisplaySize size) {
    switch (size) {
    case Size_35:
        return QStringLiteral("Size_35");
    case Size_43:
        return QStringLiteral("Size_43");
    case Size_50:
        return QStringLiteral("Size_50");
    case Size_70:
        return QStringLiteral("Size_70");
    }
    return {};
}

QString DisplaySettings::displayGenerationToString(DisplayGeneration generation) {
    switch (generation) {
    case EVE_1:
        return QStringLiteral("EVE_1");
    case EVE_2:
        return QStringLiteral("EVE_2");
    case EVE_3:
        break;
    }
    return QStringLiteral("EVE_3");
}

void DisplaySettings::setDisplayGeneration(const DisplayGeneration& generation) {
    m_displayGeneration = generation;
    assignVariant(generationTable(), generation, m_uintValues);
}

void DisplaySettings::setDisplaySize(const DisplaySize& size) {
    m_displaySize = size;
    m_ushortValues.clear();
    assignVariant(panelTimings(), size, m_ushortValues);
}

bool DisplaySettings::autoDetectDisplayGeneration() {
    Gpu_Hal_Context_t host; // not closed: the display bring-up opens the board again
    wakeController(&host, m_displayGeneration == EVE_1, detectionBootMs);
    for (int read = 0; read < chipIdReads; ++read) {
        switch (Gpu_Hal_Rd32(&host, chipIdAddress)) {
        case chipIdEve3:
            setDisplayGeneration(EVE_3);
            return true;
        case chipIdEve1:
            setDisplayGeneration(EVE_1);
            return true;
        default:
            break;
        }
    }
    return false;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature stands in the message below.
uint32_t DisplaySettings::operator[](QString name) {
    const auto timing = m_ushortValues.constFind(name);
    if (timing != m_ushortValues.constEnd()) {
        return *timing;
    }
    const auto value = m_uintValues.constFind(name);
    EVE_ASSERT(value != m_uintValues.constEnd(), "false", "eve_layer/displaysettings.cpp", 1119,
               "uint32_t DisplaySettings::operator[](QString)");
    return *value;
}

bool isEve1() {
    return DisplaySettings::getInstance()->getDisplayGeneration() == DisplaySettings::EVE_1;
}

bool isEve3() {
    return DisplaySettings::getInstance()->getDisplayGeneration() == DisplaySettings::EVE_3;
}
