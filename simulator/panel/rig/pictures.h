#pragma once

#include "panelcontent.h"
#include "picture.h"

#include <QImage>
#include <QString>

#include <optional>

namespace panel {

// A copy of the panel's picture, pixel for pixel.
QImage toImage(const controller::Picture& picture);

// Where two pictures differ.
struct PictureDifference {
    QImage image;   // red where they differ, `expected` paled elsewhere; as large as both together
    int pixels = 0; // that differ
    QRect box;      // around these
};
PictureDifference differenceOf(const QImage& expected, const QImage& actual);

// Where screenshots go and what they are compared with. Files are NAME.png, 480 x 272.
class PictureStore {
public:
    enum class Result { Kept, Equal, Renewed, Different, Missing, Unreadable, NotWritten };
    struct Outcome {
        Result result = Result::Kept;
        QString text; // for the user: which files, what is wrong and where
    };

    // Pictures are written into `directory`, which is created when the first one is.
    explicit PictureStore(QString directory) : m_directory(std::move(directory)) {}

    // From now on pictures are compared with the stored ones in `directory`, exactly. One that
    // differs leaves NAME.actual.png and NAME.difference.png in the screenshots' directory, one
    // without stored picture (or with one that is damaged) NAME.actual.png; those of an earlier
    // time go when the picture is equal. `renew`: stored pictures are written instead.
    void compareWith(const QString& directory, bool renew);

    // `texts` are those on it, to tell which of them are where the pictures differ.
    Outcome take(const QString& name, const QImage& image,
                 const std::vector<PanelText>& texts = {}) const;
    // A file in the same directory, which is made if need be: NAME-N with the first N that is free.
    QString freeFile(const QString& name, const QString& suffix) const;
    // Keeps it as NAME.failed.png, and compares nothing.
    Outcome takeFailed(const QString& name, const QImage& image) const;
    // Removes pictures that were kept with names like this, in which '*' stands for anything.
    void forgetFailed(const QString& pattern) const;
    // Keeps it as screenshot-N.png with the first N that is free, and compares nothing.
    Outcome takeNumbered(const QImage& image) const;

private:
    Outcome compare(const QString& name, const QImage& image,
                    const std::vector<PanelText>& texts) const;
    Outcome withoutStored(const QString& name, const QImage& image, const QString& stored) const;
    void forgetDifference(const QString& name) const;

    QString m_directory;
    QString m_stored; // empty: nothing is compared
    bool m_renew = false;
};

} // namespace panel
