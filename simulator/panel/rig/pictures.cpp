#include "pictures.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>

#include <cstring>

namespace panel {

namespace {

constexpr QRgb differenceColour = 0xFFFF0000;

QString fileIn(const QString& directory, const QString& name, const char* suffix) {
    return QDir(directory).filePath(name + QString::fromLatin1(suffix));
}

// Whether the whole of it has reached the file.
bool write(const QImage& image, const QString& directory, const QString& path) {
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    QFile file(path);
    return QDir().mkpath(directory) && image.save(&png, "PNG") &&
           file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
           file.write(png.data()) == png.size();
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

QString readError(const QString& file) {
    QImageReader reader(file);
    reader.read();
    return reader.errorString();
}

// "3 pixels, in the box 10 20 5 1 (X Y WIDTH HEIGHT), where the panel shows "Ok""
QString whereTheyDiffer(const PictureDifference& difference, const std::vector<PanelText>& texts) {
    const QRect& box = difference.box;
    QString where = QStringLiteral("%1 pixels, in the box %2 %3 %4 %5 (X Y WIDTH HEIGHT)")
                        .arg(difference.pixels)
                        .arg(box.x())
                        .arg(box.y())
                        .arg(box.width())
                        .arg(box.height());
    QStringList there;
    for (const PanelText& text : texts) {
        if (text.box.intersects(box)) {
            there += '"' + text.text + '"';
        }
    }
    if (!there.isEmpty()) {
        where += QStringLiteral(", where the panel shows ") + there.join(QStringLiteral(", "));
    }
    return where;
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

PictureDifference differenceOf(const QImage& expected, const QImage& actual) {
    PictureDifference difference;
    difference.image = QImage(expected.size().expandedTo(actual.size()), QImage::Format_RGB32);
    for (int y = 0; y < difference.image.height(); ++y) {
        for (int x = 0; x < difference.image.width(); ++x) {
            const bool inBoth = expected.valid(x, y) && actual.valid(x, y);
            if (inBoth && expected.pixel(x, y) == actual.pixel(x, y)) {
                difference.image.setPixel(x, y, paled(expected.pixel(x, y)));
                continue;
            }
            difference.image.setPixel(x, y, differenceColour);
            difference.box |= QRect(x, y, 1, 1);
            ++difference.pixels;
        }
    }
    return difference;
}

void PictureStore::compareWith(const QString& directory, bool renew) {
    m_stored = directory;
    m_renew = renew;
}

PictureStore::Outcome PictureStore::take(const QString& name, const QImage& image,
                                         const std::vector<PanelText>& texts) const {
    if (m_stored.isEmpty()) {
        return written(image, m_directory, fileIn(m_directory, name, ".png"), Result::Kept);
    }
    if (m_renew) {
        forgetDifference(name);
        return written(image, m_stored, fileIn(m_stored, name, ".png"), Result::Renewed);
    }
    return compare(name, image, texts);
}

PictureStore::Outcome PictureStore::takeNumbered(const QImage& image) const {
    const QString file = freeFile(QStringLiteral("screenshot"), QStringLiteral(".png"));
    return written(image, m_directory, file, Result::Kept);
}

QString PictureStore::freeFile(const QString& name, const QString& suffix) const {
    QDir().mkpath(m_directory);
    int number = 1;
    QString file;
    do {
        file = QDir(m_directory)
                   .filePath(QStringLiteral("%1-%2%3").arg(name).arg(number++).arg(suffix));
    } while (QFileInfo::exists(file));
    return file;
}

PictureStore::Outcome PictureStore::takeFailed(const QString& name, const QImage& image) const {
    return written(image, m_directory, fileIn(m_directory, name, ".failed.png"), Result::Kept);
}

void PictureStore::forgetFailed(const QString& pattern) const {
    QDir directory(m_directory);
    for (const QString& file :
         directory.entryList({pattern + QStringLiteral(".failed.png")}, QDir::Files)) {
        directory.remove(file);
    }
}

void PictureStore::forgetDifference(const QString& name) const {
    QFile::remove(fileIn(m_directory, name, ".actual.png"));
    QFile::remove(fileIn(m_directory, name, ".difference.png"));
}

PictureStore::Outcome PictureStore::compare(const QString& name, const QImage& image,
                                            const std::vector<PanelText>& texts) const {
    const QString storedFile = fileIn(m_stored, name, ".png");
    const QImage stored = QImage(storedFile).convertToFormat(QImage::Format_RGB32);
    forgetDifference(name);
    if (stored.isNull()) {
        return withoutStored(name, image, storedFile);
    }
    if (stored == image) {
        return {Result::Equal, storedFile};
    }
    const QString actualFile = fileIn(m_directory, name, ".actual.png");
    Outcome actual = written(image, m_directory, actualFile, Result::Different);
    if (actual.result == Result::NotWritten) {
        return actual;
    }
    const PictureDifference difference = differenceOf(stored, image);
    const QString differenceFile = fileIn(m_directory, name, ".difference.png");
    Outcome outcome = written(difference.image, m_directory, differenceFile, Result::Different);
    if (outcome.result != Result::NotWritten) {
        outcome.text =
            QStringLiteral("the picture differs from %1 in %2; see %3 and %4 (--renew "
                           "stores it)")
                .arg(storedFile, whereTheyDiffer(difference, texts), actualFile, differenceFile);
    }
    return outcome;
}

PictureStore::Outcome PictureStore::withoutStored(const QString& name, const QImage& image,
                                                  const QString& stored) const {
    const QString actualFile = fileIn(m_directory, name, ".actual.png");
    const bool exists = QFileInfo::exists(stored);
    Outcome outcome =
        written(image, m_directory, actualFile, exists ? Result::Unreadable : Result::Missing);
    if (outcome.result != Result::NotWritten) {
        outcome.text = (exists ? QStringLiteral("the stored picture %1 is damaged (%2)")
                                     .arg(stored, readError(stored))
                               : QStringLiteral("there is no stored picture %1").arg(stored)) +
                       QStringLiteral("; the actual one is %1 (--renew stores it)").arg(actualFile);
    }
    return outcome;
}

} // namespace panel
