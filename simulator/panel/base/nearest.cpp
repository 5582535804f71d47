#include "nearest.h"

#include <algorithm>

namespace panel {

namespace {

constexpr int whole = 2;
constexpr int half = 1;
constexpr int mostListed = 20;

int costOf(QChar wanted, QChar there) {
    if (wanted == there) {
        return 0;
    }
    return wanted.toCaseFolded() == there.toCaseFolded() ? half : whole;
}

struct Entry {
    QString text;
    int count = 0;
    int distance = 0;
};

std::vector<Entry> counted(const QString& pattern, const QStringList& texts) {
    std::vector<Entry> entries;
    for (const QString& text : texts) {
        const auto known = std::find_if(entries.begin(), entries.end(),
                                        [&text](const Entry& entry) { return entry.text == text; });
        if (known == entries.end()) {
            entries.push_back({text, 1, distanceTo(pattern, text)});
        } else {
            ++known->count;
        }
    }
    return entries;
}

QString described(const Entry& entry) {
    const QString text = '"' + entry.text + '"';
    return entry.count == 1 ? text : text + QStringLiteral(" (%1 times)").arg(entry.count);
}

} // namespace

// Row by row over the pattern: row[i] is the distance of what has been seen of the pattern to the
// first i characters of the text.
int distanceTo(const QString& pattern, const QString& text) {
    std::vector<int> row(static_cast<std::size_t>(text.size()) + 1);
    for (std::size_t i = 0; i < row.size(); ++i) {
        row[i] = whole * static_cast<int>(i);
    }
    for (const QChar wanted : pattern) {
        const bool anything = wanted == '*';
        int diagonal = row[0];
        row[0] += anything ? 0 : whole;
        for (std::size_t i = 1; i < row.size(); ++i) {
            const int above = row[i];
            const int left = row[i - 1];
            if (anything) {
                row[i] = std::min(above, left);
            } else {
                const int replaced = diagonal + costOf(wanted, text[static_cast<int>(i) - 1]);
                row[i] = std::min({replaced, above + whole, left + whole});
            }
            diagonal = above;
        }
    }
    return row.back();
}

QString listNearestFirst(const QString& pattern, const QStringList& texts) {
    std::vector<Entry> entries = counted(pattern, texts);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.distance < b.distance; });
    QStringList list;
    for (const Entry& entry : entries) {
        if (list.size() == mostListed) {
            list += QStringLiteral("and %1 more").arg(entries.size() - mostListed);
            break;
        }
        list += described(entry);
    }
    return list.isEmpty() ? QStringLiteral("nothing") : list.join(QStringLiteral(", "));
}

} // namespace panel
