#include "pictures.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace panel {
namespace {

QImage picture(QRgb colour) {
    QImage image(480, 272, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

class Pictures : public testing::Test {
protected:
    QString path(const char* name) const { return m_directory.filePath(name); }
    QStringList filesIn(const char* directory) const {
        return QDir(path(directory)).entryList(QDir::Files, QDir::Name);
    }

    QTemporaryDir m_directory;
    PictureStore m_store{m_directory.filePath("shots")};
};

TEST_F(Pictures, ImageHasThePicturesPixels) {
    const QImage image = toImage({2, 2, {0xFF000001, 0xFF000002, 0xFF000003, 0xFFABCDEF}});
    EXPECT_EQ(image.size(), QSize(2, 2));
    EXPECT_EQ(image.pixel(1, 0), 0xFF000002);
    EXPECT_EQ(image.pixel(0, 1), 0xFF000003);
    EXPECT_EQ(image.pixel(1, 1), 0xFFABCDEF);
}

TEST_F(Pictures, KeepsAPictureAsPngInADirectoryThatItMakes) {
    EXPECT_EQ(m_store.take("counter", picture(0xFF123456)).result, PictureStore::Result::Kept);
    EXPECT_EQ(filesIn("shots"), QStringList({"counter.png"}));
    const QImage kept(path("shots/counter.png"));
    EXPECT_EQ(kept.size(), QSize(480, 272));
    EXPECT_EQ(kept.pixel(479, 271), 0xFF123456);
}

TEST_F(Pictures, NumbersPicturesWithoutOverwritingAny) {
    m_store.takeNumbered(picture(0xFF000000));
    m_store.takeNumbered(picture(0xFF000000));
    EXPECT_EQ(filesIn("shots"), QStringList({"screenshot-1.png", "screenshot-2.png"}));
}

TEST_F(Pictures, EqualPicturesLeaveNothing) {
    m_store.compareWith(path("stored"), true);
    EXPECT_EQ(m_store.take("a", picture(0xFF010203)).result, PictureStore::Result::Renewed);
    EXPECT_EQ(filesIn("stored"), QStringList({"a.png"}));
    m_store.compareWith(path("stored"), false);
    EXPECT_EQ(m_store.take("a", picture(0xFF010203)).result, PictureStore::Result::Equal);
    EXPECT_FALSE(QDir(path("shots")).exists());
}

TEST_F(Pictures, OneOtherPixelIsADifferenceThatIsShown) {
    m_store.compareWith(path("stored"), true);
    m_store.take("a", picture(0xFF808080));
    m_store.compareWith(path("stored"), false);
    QImage other = picture(0xFF808080);
    other.setPixel(7, 9, 0xFF808081);

    const PictureStore::Outcome outcome = m_store.take("a", other);

    EXPECT_EQ(outcome.result, PictureStore::Result::Different);
    EXPECT_TRUE(outcome.text.contains("a.difference.png")) << outcome.text.toStdString();
    EXPECT_EQ(filesIn("shots"), QStringList({"a.actual.png", "a.difference.png"}));
    EXPECT_EQ(QImage(path("shots/a.actual.png")).pixel(7, 9), 0xFF808081);
    const QImage difference(path("shots/a.difference.png"));
    EXPECT_EQ(difference.pixel(7, 9), 0xFFFF0000);
    EXPECT_NE(difference.pixel(8, 9), 0xFFFF0000);
}

TEST_F(Pictures, AMissingStoredPictureIsAFailure) {
    m_store.compareWith(path("stored"), false);
    const PictureStore::Outcome outcome = m_store.take("a", picture(0xFF808080));
    EXPECT_EQ(outcome.result, PictureStore::Result::Missing);
    EXPECT_TRUE(outcome.text.contains("no stored picture")) << outcome.text.toStdString();
    EXPECT_EQ(filesIn("shots"), QStringList({"a.actual.png"}));
}

TEST_F(Pictures, PicturesOfOtherSizesDiffer) {
    m_store.compareWith(path("stored"), true);
    m_store.take("a", QImage(10, 10, QImage::Format_RGB32));
    m_store.compareWith(path("stored"), false);
    EXPECT_EQ(m_store.take("a", picture(0xFF000000)).result, PictureStore::Result::Different);
    EXPECT_EQ(QImage(path("shots/a.difference.png")).size(), QSize(480, 272));
}

TEST_F(Pictures, SaysWhenAPictureCannotBeWritten) {
    const PictureStore store(QStringLiteral("/proc/no-such-place"));
    const PictureStore::Outcome outcome = store.take("a", picture(0xFF000000));
    EXPECT_EQ(outcome.result, PictureStore::Result::NotWritten);
    EXPECT_TRUE(outcome.text.contains("cannot write")) << outcome.text.toStdString();
}

TEST_F(Pictures, ADifferenceSaysHowManyPixelsWhereAndInWhichTexts) {
    m_store.compareWith(path("stored"), true);
    m_store.take("a", picture(0xFF808080));
    m_store.compareWith(path("stored"), false);
    QImage other = picture(0xFF808080);
    other.setPixel(7, 9, 0xFF808081);
    other.setPixel(11, 12, 0xFF808081);

    const PictureStore::Outcome outcome =
        m_store.take("a", other, {{"1234", {10, 10, 40, 20}}, {"Ok", {100, 10, 40, 20}}});

    EXPECT_TRUE(outcome.text.contains("in 2 pixels, in the box 7 9 5 4 (X Y WIDTH HEIGHT), where "
                                      "the panel shows \"1234\"; see "))
        << outcome.text.toStdString();
}

TEST_F(Pictures, OldDifferencesGoWhenThePictureIsEqualOrRenewed) {
    m_store.compareWith(path("stored"), true);
    m_store.take("a", picture(0xFF808080));
    for (const bool renewed : {false, true}) {
        m_store.compareWith(path("stored"), false);
        m_store.take("a", picture(0xFF000000));
        ASSERT_EQ(filesIn("shots").size(), 2);
        m_store.compareWith(path("stored"), renewed);
        m_store.take("a", picture(0xFF808080));
        EXPECT_EQ(filesIn("shots"), QStringList()) << renewed;
    }
}

TEST_F(Pictures, ADamagedStoredPictureIsCalledDamaged) {
    QDir().mkpath(path("stored"));
    QFile file(path("stored/a.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no picture");
    file.close();
    m_store.compareWith(path("stored"), false);
    const PictureStore::Outcome outcome = m_store.take("a", picture(0xFF808080));
    EXPECT_EQ(outcome.result, PictureStore::Result::Unreadable);
    EXPECT_TRUE(outcome.text.contains("a.png is damaged (")) << outcome.text.toStdString();
    EXPECT_EQ(filesIn("shots"), QStringList({"a.actual.png"}));
}

TEST_F(Pictures, APictureThatDoesNotFitOnTheDiskIsNotWritten) {
    QDir().mkpath(path("shots"));
    ASSERT_TRUE(QFile::link("/dev/full", path("shots/a.png")));
    EXPECT_EQ(m_store.take("a", picture(0xFF808080)).result, PictureStore::Result::NotWritten);
}

TEST_F(Pictures, ThoseOfFailuresAreKeptUntilForgotten) {
    m_store.takeFailed("tour-line-3", picture(0xFF808080));
    m_store.takeFailed("other-line-3", picture(0xFF808080));
    m_store.take("tour-line-3", picture(0xFF808080));
    m_store.forgetFailed("tour-line-*");
    EXPECT_EQ(filesIn("shots"), QStringList({"other-line-3.failed.png", "tour-line-3.png"}));
}

} // namespace
} // namespace panel
