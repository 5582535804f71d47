#pragma once

#include "picture.h"

#include <QImage>
#include <QString>

#include <optional>

namespace panel {

// A copy of the panel's picture, pixel for pixel.
QImage toImage(const controller::Picture& picture);

// Red where the two differ, `expected` paled elsewhere; as large as both together.
QImage differenceOf(const QImage& expected, const QImage& actual);

// Where screenshots go and what they are compared with. Files are NAME.png, 480 x 272.
class PictureStore {
public:
    enum class Result { Kept, Equal, Renewed, Different, Missing, NotWritten };
    struct Outcome {
        Result result = Result::Kept;
        QString text; // for the user: which files, what is wrong
    };

    // Pictures are written into `directory`, which is created when the first one is.
    explicit PictureStore(QString directory) : m_directory(std::move(directory)) {}

    // From now on pictures are compared with the stored ones in `directory`, exactly. One that
    // differs leaves NAME.actual.png and NAME.difference.png in the screenshots' directory, one
    // without stored picture NAME.actual.png. `renew`: stored pictures are written instead.
    void compareWith(const QString& directory, bool renew);

    Outcome take(const QString& name, const QImage& image) const;
    // Keeps it as screenshot-N.png with the first N that is free, and compares nothing.
    Outcome takeNumbered(const QImage& image) const;

private:
    Outcome compare(const QString& name, const QImage& image) const;

    QString m_directory;
    QString m_stored; // empty: nothing is compared
    bool m_renew = false;
};

} // namespace panel
