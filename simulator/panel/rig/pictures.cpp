#include "pictures.h"

#include <QDir>
#include <QFileInfo>

#include <cstring>

namespace panel {

namespace {

constexpr QRgb differenceColour = 0xFFFF0000;

QString fileIn(const QString& directory, const QString& name, const char* suffix) {
    return QDir(directory).filePath(name + QString::fromLatin1(suffix));
}

bool write(const QImage& image, const QString& directory, const QString& file) {
    return QDir().mkpath(directory) && image.save(file, "PNG");
}

PictureStore::Outcome written(const QImage& image, const QString& directory, const QString& file,
                              PictureStore::Result result) {
    if (!write(image, directory, file)) {
        return {PictureStore::Result::NotWritten,
                QStringLiteral("cannot write the picture %1; see that its directory can be "
                               "written and the disk is not full")
                    .arg(file)};
    }
    return {result, file};
}

QRgb paled(QRgb colour) {
    const int grey = 255 - (255 - qGray(colour)) / 4;
    return qRgb(grey, grey, grey);
}

} // namespace

QImage toImage(const controller::Picture& picture) {
    QImage image(picture.width, picture.height, QImage::Format_RGB32);
    const auto lineBytes = static_cast<std::size_t>(picture.width) * sizeof(QRgb);
    for (int y = 0; y < picture.height; ++y) {
        const std::size_t first =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width);
        std::memcpy(image.scanLine(y), picture.pixels.data() + first, lineBytes);
    }
    return image;
}

QImage differenceOf(const QImage& expected, const QImage& actual) {
    QImage difference(expected.size().expandedTo(actual.size()), QImage::Format_RGB32);
    for (int y = 0; y < difference.height(); ++y) {
        for (int x = 0; x < difference.width(); ++x) {
            const bool inBoth = expected.valid(x, y) && actual.valid(x, y);
            const bool same = inBoth && expected.pixel(x, y) == actual.pixel(x, y);
            difference.setPixel(x, y, same ? paled(expected.pixel(x, y)) : differenceColour);
        }
    }
    return difference;
}

void PictureStore::compareWith(const QString& directory, bool renew) {
    m_stored = directory;
    m_renew = renew;
}

PictureStore::Outcome PictureStore::take(const QString& name, const QImage& image) const {
    if (m_stored.isEmpty()) {
        return written(image, m_directory, fileIn(m_directory, name, ".png"), Result::Kept);
    }
    if (m_renew) {
        return written(image, m_stored, fileIn(m_stored, name, ".png"), Result::Renewed);
    }
    return compare(name, image);
}

PictureStore::Outcome PictureStore::takeNumbered(const QImage& image) const {
    int number = 1;
    QString file;
    do {
        file = fileIn(m_directory, QStringLiteral("screenshot-%1").arg(number++), ".png");
    } while (QFileInfo::exists(file));
    return written(image, m_directory, file, Result::Kept);
}

PictureStore::Outcome PictureStore::compare(const QString& name, const QImage& image) const {
    const QString storedFile = fileIn(m_stored, name, ".png");
    const QImage stored = QImage(storedFile).convertToFormat(QImage::Format_RGB32);
    if (!stored.isNull() && stored == image) {
        return {Result::Equal, storedFile};
    }
    const QString actualFile = fileIn(m_directory, name, ".actual.png");
    Outcome actual = written(image, m_directory, actualFile, Result::Missing);
    if (actual.result == Result::NotWritten) {
        return actual;
    }
    if (stored.isNull()) {
        return {Result::Missing, QStringLiteral("there is no stored picture %1; the actual one is "
                                                "%2 (--renew stores it)")
                                     .arg(storedFile, actualFile)};
    }
    const QString differenceFile = fileIn(m_directory, name, ".difference.png");
    Outcome difference =
        written(differenceOf(stored, image), m_directory, differenceFile, Result::Different);
    if (difference.result == Result::NotWritten) {
        return difference;
    }
    return {Result::Different,
            QStringLiteral("the picture differs from %1; see %2 and %3 (--renew stores it)")
                .arg(storedFile, actualFile, differenceFile)};
}

} // namespace panel
