#include "openfailure.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <unistd.h>

namespace {

using testing::AllOf;
using testing::HasSubstr;

// Root may do everything, so it becomes somebody else.
class OrdinaryUser {
public:
    OrdinaryUser() {
        if (m_before == 0) {
            EXPECT_EQ(seteuid(nobody), 0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() { EXPECT_EQ(seteuid(m_before), 0); }

private:
    static constexpr uid_t nobody = 65534;
    const uid_t m_before = geteuid();
};

std::string explanationOf(QFile& file) {
    EXPECT_FALSE(file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly));
    testing::internal::CaptureStderr();
    explainOpenFailure(file, "plug it in");
    return testing::internal::GetCapturedStderr();
}

TEST(OpenFailure, MissingFileIsMendedAsTheCallerSays) {
    QFile file("/no/such/device");
    EXPECT_THAT(explanationOf(file), AllOf(HasSubstr("/no/such/device: No such file or directory"),
                                           HasSubstr("plug it in")));
}

TEST(OpenFailure, ForbiddenFileIsMendedByTheRulesForUsers) {
    const QTemporaryDir directory;
    QFile file(directory.filePath("device"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    ASSERT_TRUE(file.setPermissions({}));
    const OrdinaryUser user;
    EXPECT_THAT(explanationOf(file),
                AllOf(HasSubstr("device: Permission denied"),
                      HasSubstr("let this user read and write it"), Not(HasSubstr("plug it in"))));
}

} // namespace
