#include "fault.h"
#include "qtprinting.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

using server::Fault;
using server::faultFromName;
using server::faultNames;
using server::spoiled;

const QByteArray data = R"({"TimeConst":0.5,"Channel0":1,"Channel1":2,"Channel2":3,"Channel3":4})"
                        "\n";

QJsonDocument parsed(const QByteArray& reply) {
    return QJsonDocument::fromJson(reply);
}

TEST(FaultTest, EveryNameNamesAFaultOfItsOwn) {
    ASSERT_EQ(faultNames().size(), 10);
    for (int i = 0; i < faultNames().size(); ++i)
        EXPECT_EQ(faultFromName(faultNames()[i]), static_cast<Fault>(i));
}

TEST(FaultTest, NamesMeanWhatTheySay) {
    EXPECT_EQ(faultFromName("none"), Fault::None);
    EXPECT_EQ(faultFromName("cut"), Fault::Cut);
    EXPECT_EQ(faultFromName("missing-members"), Fault::MissingMembers);
    EXPECT_EQ(faultFromName("close-connection"), Fault::CloseConnection);
}

TEST(FaultTest, UnknownNameNamesNothing) {
    EXPECT_EQ(faultFromName("Cut"), std::nullopt);
    EXPECT_EQ(faultFromName(""), std::nullopt);
}

TEST(FaultTest, FaultsOfTimeLeaveTheReplyAsItIs) {
    for (const Fault fault : {Fault::None, Fault::Silent, Fault::Late, Fault::CloseConnection})
        EXPECT_EQ(spoiled(data, fault), data);
}

TEST(FaultTest, CutReplyIsTheFirstHalf) {
    EXPECT_EQ(spoiled("abcdef", Fault::Cut), "abc");
    EXPECT_TRUE(parsed(spoiled(data, Fault::Cut)).isNull());
}

TEST(FaultTest, NotJsonDoesNotParse) {
    EXPECT_TRUE(parsed(spoiled(data, Fault::NotJson)).isNull());
}

TEST(FaultTest, NotObjectIsAnArray) {
    EXPECT_TRUE(parsed(spoiled(data, Fault::NotObject)).isArray());
}

TEST(FaultTest, MissingMembersLeaveTheOthers) {
    EXPECT_EQ(spoiled(data, Fault::MissingMembers), R"({"Channel0":1,"Channel1":2,"Channel2":3})"
                                                    "\n");
    EXPECT_EQ(spoiled("Ok\n", Fault::MissingMembers), "Ok\n");
}

TEST(FaultTest, NulByteIsInTheMiddle) {
    EXPECT_EQ(spoiled("abcd", Fault::NulByte), QByteArray("ab\0cd", 5));
}

TEST(FaultTest, HugeReplyIsOneMegabyteAndStillGood) {
    const QByteArray huge = spoiled(data, Fault::Huge);
    EXPECT_EQ(huge.size(), 1048576);
    EXPECT_EQ(parsed(huge), parsed(data));
}

} // namespace
