#include "inputwidget.h"

#include "App_Common.h"
#include "CoPro_Cmds.h"
#include "Gpu_Hal.h"
#include "backbutton.h"
#include "buttons.h"
#include "displaylistwords.h"
#include "displaysettings.h"
#include "frames.h"
#include "palette.h"
#include "shapes.h"
#include "text.h"
#include "touch.h"

#include <limits>
#include <optional>
#include <utility>

namespace {

// Not where the screens keep their static picture: the calling screen's must survive.
constexpr uint32_t keypadCopyAddress = 110000;
constexpr unsigned int pollPeriodMs = 50;
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

constexpr Button okButton{2, {288, 217}, 182, 40, 29, "Ok"};

// A row of keys. The controller tags each key with its character.
void drawKeys(Gpu_Hal_Context_t* host, Point topLeft, uint32_t width, int heldKey,
              const char* keys) {
    const uint32_t options = EVE_REG("__OPT_FLAT") | static_cast<uint32_t>(heldKey);
    Gpu_CoCmd_Keys(host, static_cast<int16_t>(topLeft.x), static_cast<int16_t>(topLeft.y),
                   static_cast<int16_t>(width), 40, 29, static_cast<uint16_t>(options), keys);
}

// The number being typed.
class EditText {
public:
    const QString& text() const { return m_text; }

    void press(int key) {
        if (key >= '0' && key <= '9') {
            m_text.append(QLatin1Char(static_cast<char>(key)));
        } else if (key == '.') {
            appendPoint();
        } else if (key == '<') {
            m_text.chop(1);
        } else if (key == '-') {
            toggleSign();
        }
    }

    double value() const {
        bool ok = false;
        const double value = m_text.toDouble(&ok);
        return ok ? value : noNumber;
    }

private:
    void appendPoint() {
        if (!m_text.contains(QLatin1Char('.'))) {
            m_text.append(QLatin1Char('.'));
        }
    }

    void toggleSign() {
        if (m_text.startsWith(QLatin1Char('-'))) {
            m_text.remove(0, 1);
        } else if (!m_text.isEmpty()) {
            m_text.prepend(QLatin1Char('-'));
        }
    }

    QString m_text;
};

// One call of InputWidget::getDouble().
class Keypad {
public:
    explicit Keypad(Gpu_Hal_Context_t* host) : m_host(host) {}

    double run(const QString& title) {
        drawStaticPicture(title);

        bool frameDue = true; // the first one, before any touch
        for (;;) {
            const int tag = readTouchTag(m_host);
            const TouchChange change = touchChange(m_heldKey, tag);
            const int lastKey = std::exchange(m_heldKey, tag);
            if (change == TouchChange::Release) {
                if (const std::optional<double> result = enter(lastKey)) {
                    return *result;
                }
            }
            if (frameDue || change != TouchChange::None) {
                drawFrame();
                frameDue = false;
            }
            Gpu_Hal_Sleep(pollPeriodMs);
        }
    }

private:
    // Acts on a key that has been released. A value when that leaves the keypad.
    std::optional<double> enter(int key) {
        if (key == backButton.tag) {
            return noNumber;
        }
        if (key == okButton.tag) {
            return m_edit.value();
        }
        m_edit.press(key);
        return std::nullopt;
    }

    void drawStaticPicture(const QString& title) {
        Gpu_CoCmd_Dlstart(m_host);
        drawBackground(m_host);
        setColor(m_host, palette::ink);
        drawCentredText(m_host, {240, 28}, 30, title.toLocal8Bit());

        setTagging(m_host, true);
        Gpu_CoCmd_FgColor(m_host, palette::okFace);
        drawTaggedButton(m_host, okButton);
        Gpu_CoCmd_FgColor(m_host, palette::buttonFace);
        drawTaggedButton(m_host, backButton);
        setTagging(m_host, false);

        drawBackArrow(m_host);
        App_WrCoCmd_Buffer(m_host, LINE_WIDTH(defaultLineWidth));
        drawOutline(m_host, {10, 60}, {470, 110});

        m_staticDlSize = saveStaticPicture(m_host, keypadCopyAddress);
        showFrame(m_host);
    }

    // A key is only held in a frame drawn at the moment of its press.
    void drawFrame() {
        startFrame(m_host, keypadCopyAddress, m_staticDlSize);
        if (m_heldKey == backButton.tag) {
            drawHeldBackButton(m_host);
        } else if (m_heldKey == okButton.tag) {
            drawButtonFace(m_host, okButton, palette::okPressedFace);
        }

        Gpu_CoCmd_FgColor(m_host, palette::buttonFace);
        Gpu_CoCmd_BgColor(m_host, palette::keyShade);
        drawKeys(m_host, {10, 122}, 460, m_heldKey, "12345");
        drawKeys(m_host, {10, 170}, 460, m_heldKey, "67890");
        drawKeys(m_host, {10, 217}, 274, m_heldKey, "<.-");

        drawCentredText(m_host, {240, 85}, 30, m_edit.text().toLocal8Bit());
        showFrame(m_host);
    }

    Gpu_Hal_Context_t* m_host;
    EditText m_edit;
    int m_heldKey = noTouch;
    uint16_t m_staticDlSize = 0;
};

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): a title is most often a temporary.
double InputWidget::getDouble(Gpu_Hal_Context_t* host, QString title) {
    return host ? Keypad(host).run(title) : 0.0;
}
