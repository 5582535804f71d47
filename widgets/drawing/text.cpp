#include "text.h"

#include "CoPro_Cmds.h"
#include "displaysettings.h"

#include <QString>

namespace {

void drawText(Gpu_Hal_Context_t* host, Point at, uint32_t font, uint32_t options,
              const char* text) {
    Gpu_CoCmd_Text(host, static_cast<int16_t>(at.x), static_cast<int16_t>(at.y),
                   static_cast<int16_t>(font), static_cast<uint16_t>(options), text);
}

} // namespace

void drawCentredText(Gpu_Hal_Context_t* host, Point at, uint32_t font, const char* text) {
    drawText(host, at, font, EVE_REG("__OPT_CENTER"), text);
}

void drawLeftAlignedText(Gpu_Hal_Context_t* host, Point at, uint32_t font, const char* text) {
    drawText(host, at, font, EVE_REG("__OPT_CENTERY"), text);
}

void drawRightAlignedText(Gpu_Hal_Context_t* host, Point at, uint32_t font, const char* text) {
    drawText(host, at, font, EVE_REG("__OPT_CENTERY") | EVE_REG("__OPT_RIGHTX"), text);
}

QByteArray formatValue(double value) {
    return QStringLiteral("%1")
        .arg(value, 6, 'g', 4)
        .replace(QLatin1String("e+0"), QLatin1String("e"))
        .toLocal8Bit();
}
