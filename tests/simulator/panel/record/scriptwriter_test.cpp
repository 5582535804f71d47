#include "scriptline.h"
#include "scriptwriter.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace panel {
namespace {

TEST(ScriptWriter, QuotesWordsThatNeedIt) {
    EXPECT_EQ(ScriptWriter::word("STOP"), "STOP");
    EXPECT_EQ(ScriptWriter::word("START 0.2"), "\"START 0.2\"");
    EXPECT_EQ(ScriptWriter::word(""), "\"\"");
    EXPECT_EQ(ScriptWriter::word("a\\b"), "a\\b");
    EXPECT_EQ(ScriptWriter::quoted("Ok"), "\"Ok\"");
}

TEST(ScriptWriter, WordsAreReadAsTheyWere) {
    for (const char* text : {"plain", "two words", "#", "say \"so\"", "back\\slash", "\\ \"", ""}) {
        script::ScriptLine line(ScriptWriter::word(text) + " end");
        EXPECT_EQ(line.word("a text"), text);
        EXPECT_EQ(line.word("the end"), "end") << text;
    }
}

TEST(ScriptWriter, WritesLineByLine) {
    const QTemporaryDir directory;
    ScriptWriter writer;
    ASSERT_TRUE(writer.open(directory.filePath("a.session")));
    writer.comment("A comment");
    writer.line("wait text", {"Ok", "at 1 2"});
    QFile file(directory.filePath("a.session"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "# A comment\nwait text Ok at 1 2\n") << "before it is closed";
    EXPECT_TRUE(writer.close());
}

TEST(ScriptWriter, TellsWhatCannotBeWritten) {
    ScriptWriter writer;
    EXPECT_FALSE(writer.open("/no/such/file"));
    EXPECT_FALSE(writer.isOpen());
    EXPECT_NE(writer.error(), "");
    ASSERT_TRUE(writer.open("/dev/full"));
    writer.line("end");
    EXPECT_FALSE(writer.close());
    EXPECT_NE(writer.error(), "");
}

} // namespace
} // namespace panel
