#pragma once

#include <QMap>
#include <QString>

#include <cstdint>

// Every number the EVE layer needs to talk to the display controller, by name: register and memory
// addresses, coprocessor command codes, options and display-list constants of the controller
// generation in force ("__REG_ID", "__RAM_DL", "__CMD_TEXT", "__OPT_CENTER"), and the timings of
// the panel in force ("__DispWidth"). The memory maps of the generations differ; looking numbers up
// at each use lets one program drive them all. Main thread only.
class DisplaySettings {
    Q_DISABLE_COPY(DisplaySettings)

public:
    enum DisplayGeneration : uint32_t { EVE_1 = 0, EVE_2 = 1, EVE_3 = 2 };

    // Panel diagonals: 3.5, 4.3, 5.0 and 7.0 inch.
    enum DisplaySize : uint32_t { Size_35 = 0, Size_43 = 1, Size_50 = 2, Size_70 = 3 };

    // The program's one registry, built on the first call. Lives until process exit.
    static DisplaySettings* getInstance();

    // A registry for EVE_1 and the 4.3-inch panel. The program uses getInstance() only.
    DisplaySettings();

    // "Size_43" and the like; a null string for an unknown size.
    static QString displaySizeToString(DisplaySize size);
    // "EVE_1", "EVE_2"; every other value is "EVE_3".
    static QString displayGenerationToString(DisplayGeneration generation);

    DisplayGeneration getDisplayGeneration() const { return m_displayGeneration; }
    DisplaySize getDisplaySize() const { return m_displaySize; }

    // Assigns the names of a generation over those already known: a name that only an earlier
    // generation had keeps its value. An unknown generation is stored and assigns nothing.
    void setDisplayGeneration(const DisplayGeneration& generation);

    // Replaces all panel timings. An unknown size is stored and leaves no timings.
    void setDisplaySize(const DisplaySize& size);

    // Powers the controller up, reads its chip id and selects its generation. False, with nothing
    // changed, when ten reads give no id known here. EVE_2 controllers are never recognised. Blocks
    // for about 140 ms. Leaves the SPI device open.
    bool autoDetectDisplayGeneration();

    // The value of `name`; never adds one. Aborts the process when the generation and panel in
    // force do not define it.
    uint32_t operator[](QString name);

private:
    DisplaySize m_displaySize;
    QMap<QString, unsigned short> m_ushortValues; // panel timings
    DisplayGeneration m_displayGeneration;
    QMap<QString, unsigned int> m_uintValues; // everything else
};

// The value in force of a registry name, given as a string literal: EVE_REG("__REG_ID"). Allocates
// nothing.
#define EVE_REG(name) ((*DisplaySettings::getInstance())[QStringLiteral(name)])
