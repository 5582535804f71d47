#include "soughttext.h"

#include "nearest.h"
#include "textpattern.h"

#include <algorithm>
#include <iterator>

namespace panel::script {

namespace {

constexpr int panelWidth = 480;
constexpr int panelHeight = 272;

} // namespace

QString placesOf(const std::vector<PanelText>& texts) {
    QStringList places;
    for (const PanelText& text : texts) {
        const QPoint middle = text.box.center();
        places += QStringLiteral("\"%1\" at %2 %3").arg(text.text).arg(middle.x()).arg(middle.y());
    }
    return places.join(QStringLiteral(", "));
}

QPoint takePixel(ScriptLine& line) {
    const int x = line.integer(QStringLiteral("X"), 0, panelWidth - 1);
    const int y = line.integer(QStringLiteral("Y"), 0, panelHeight - 1);
    return {x, y};
}

SoughtText takeSoughtText(ScriptLine& line) {
    SoughtText sought{line.word(QStringLiteral("the text"))};
    if (line.optional(QStringLiteral("at"))) {
        sought.at = takePixel(line);
    } else if (line.optional(QStringLiteral("in"))) {
        const QPoint corner = takePixel(line);
        const int width = line.integer(QStringLiteral("WIDTH"), 1, panelWidth);
        const int height = line.integer(QStringLiteral("HEIGHT"), 1, panelHeight);
        sought.in = QRect(corner, QSize(width, height));
    }
    return sought;
}

bool SoughtText::isMetBy(const PanelText& text) const {
    return matchesPattern(pattern, text.text) && (!at || text.box.contains(*at)) &&
           (!in || in->contains(text.box));
}

std::vector<PanelText> SoughtText::among(const std::vector<PanelText>& texts) const {
    std::vector<PanelText> met;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(met),
                 [this](const PanelText& text) { return isMetBy(text); });
    return met;
}

QString SoughtText::listOf(const std::vector<PanelText>& texts) const {
    QStringList list;
    std::vector<PanelText> elsewhere;
    for (const PanelText& text : texts) {
        list += text.text;
        if (matchesPattern(pattern, text.text) && !isMetBy(text)) {
            elsewhere.push_back(text);
        }
    }
    QString shown = QStringLiteral("the panel shows ") + listNearestFirst(pattern, list);
    if (!elsewhere.empty()) {
        shown += QStringLiteral("; there is ") + placesOf(elsewhere);
    }
    return shown;
}

} // namespace panel::script
