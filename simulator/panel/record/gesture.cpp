#include "gesture.h"

#include "panelcontent.h"
#include "scriptwriter.h"

#include <QStringList>

#include <algorithm>

namespace panel {

namespace {

constexpr int untouchable = 255; // what is drawn without a tag

bool isUnique(const PanelText& text, const std::vector<PanelText>& texts) {
    return 1 == std::count_if(texts.begin(), texts.end(),
                              [&text](const PanelText& other) { return other.text == text.text; });
}

} // namespace

QString placeName(const controller::Controller& controller, QPoint pixel) {
    QString here = QStringLiteral("%1 %2").arg(pixel.x()).arg(pixel.y());
    const int tag = tagAt(controller, pixel);
    if (tag == 0 || tag == untouchable || placesOfTag(controller, tag).count != 1) {
        return here;
    }
    const std::vector<PanelText> texts = textsOn(controller);
    for (const PanelText& text : texts) {
        if (tagAt(controller, text.box.center()) == tag && isUnique(text, texts) &&
            !text.text.contains('*')) {
            return ScriptWriter::quoted(text.text);
        }
    }
    return QStringLiteral("tag %1").arg(tag);
}

void Gesture::put(const controller::Controller& controller, QPoint pixel) {
    m_under = tagAt(controller, pixel);
    m_places[m_under] = placeName(controller, pixel);
}

void Gesture::press(const controller::Controller& controller, QPoint pixel) {
    *this = {};
    m_down = true;
    put(controller, pixel);
    m_placeOfPress = m_places.at(m_under);
}

void Gesture::move(const controller::Controller& controller, QPoint pixel) {
    if (m_down) {
        put(controller, pixel);
    }
}

void Gesture::tagRead(int tag) {
    // What was read where the finger has not been is of a frame before it came.
    const bool isEarlier = m_places.count(tag) == 0 || (tag == 0 && m_under != 0);
    if (m_down && !isEarlier && (m_read.empty() || m_read.back() != tag)) {
        m_read.push_back(tag);
    }
}

QStringList Gesture::takeLines() {
    QStringList lines;
    if (m_down && m_read.empty() && !m_toldUnread) {
        lines += QStringLiteral("press %1 now").arg(m_placeOfPress);
        m_toldUnread = true;
    }
    for (; m_told < m_read.size(); ++m_told) {
        const bool isPress = m_told == 0 && !m_toldUnread;
        lines += (isPress ? QStringLiteral("press ") : QStringLiteral("move ")) +
                 m_places.at(m_read[m_told]);
    }
    return lines;
}

QStringList Gesture::release() {
    QStringList lines;
    if (m_told == 0 && m_read.size() == 1 && !m_toldUnread) {
        lines += QStringLiteral("tap ") + m_places.at(m_read.front());
    } else {
        lines = takeLines();
        lines += m_read.empty() ? QStringLiteral("release now") : QStringLiteral("release");
    }
    *this = {};
    return lines;
}

} // namespace panel
