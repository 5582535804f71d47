#pragma once

#include <QByteArray>
#include <QString>

#include <ostream>

// How GoogleTest prints Qt's texts when an expectation fails.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << text.toStdString();
}
inline void PrintTo(const QByteArray& text, std::ostream* out) {
    *out << text.toStdString();
}
