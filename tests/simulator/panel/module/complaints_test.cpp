#include "complaints.h"

#include <gtest/gtest.h>

namespace panel {
namespace {

class ComplaintsTest : public testing::Test {
protected:
    // What is written to standard error while these complaints come in, in a run of its own.
    std::string writtenFor(const std::vector<std::string>& texts, const QString& allowed = {}) {
        testing::internal::CaptureStderr();
        {
            Complaints complaints([this](const QString& text) { m_failures += text; },
                                  [this](const QString& text) { m_heard += text; });
            if (!allowed.isEmpty()) {
                complaints.allow(allowed);
            }
            for (const std::string& text : texts) {
                complaints.complained(text);
            }
        }
        return testing::internal::GetCapturedStderr();
    }

    QStringList m_failures;
    QStringList m_heard;
};

TEST_F(ComplaintsTest, WritesEachOnceAndItsCountAtTheEnd) {
    EXPECT_EQ(writtenFor({"a", "b", "a", "a"}), "panelsim: controller: a\n"
                                                "panelsim: controller: b\n"
                                                "panelsim: controller, 3 times: a\n");
}

TEST_F(ComplaintsTest, TellsTheFirstAsAFailure) {
    writtenFor({"a", "b", "a"});
    EXPECT_EQ(m_failures, QStringList({"a"}));
}

TEST_F(ComplaintsTest, TellsEachThatIsNew) {
    writtenFor({"a", "b", "a"}, "b");
    EXPECT_EQ(m_heard, QStringList({"a", "b"}));
}

TEST_F(ComplaintsTest, AnAllowedOneIsWrittenButNoFailure) {
    EXPECT_EQ(writtenFor({"read of 5"}, "read of *"), "panelsim: controller: read of 5\n");
    EXPECT_TRUE(m_failures.isEmpty());
    writtenFor({"read of 5", "write to 5"}, "read of *");
    EXPECT_EQ(m_failures, QStringList({"write to 5"}));
}

TEST_F(ComplaintsTest, WritesNothingWhenThereAreNone) {
    EXPECT_EQ(writtenFor({}), "");
}

} // namespace
} // namespace panel
