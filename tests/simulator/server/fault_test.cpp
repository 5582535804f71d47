#include "fault.h"
#include "qtprinting.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using server::ActiveFault;
using server::Fault;
using server::faultFromName;
using server::faultNames;
using server::FaultRule;
using server::parseFault;
using server::spoiled;

const QByteArray data = R"({"TimeConst":0.5,"Channel0":1,"Channel1":2,"Channel2":3,"Channel3":4})"
                        "\n";

QJsonDocument parsed(const QByteArray& reply) {
    return QJsonDocument::fromJson(reply);
}

TEST(FaultTest, EveryNameNamesAFaultOfItsOwn) {
    ASSERT_EQ(faultNames().size(), 13);
    for (int i = 0; i < faultNames().size(); ++i)
        EXPECT_EQ(faultFromName(faultNames()[i]), static_cast<Fault>(i));
    for (std::size_t i = 0; i < server::faultTable().size(); ++i)
        EXPECT_EQ(server::faultTable()[i].fault, static_cast<Fault>(i));
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
    for (const Fault fault : {Fault::None, Fault::Silent, Fault::Late, Fault::CloseConnection,
                              Fault::Pieces, Fault::Hang})
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

// --- rules

// What is wrong with a rule; empty if nothing is.
std::string mistakeIn(const QString& text) {
    QString error;
    return parseFault(text.split(' ', Qt::SkipEmptyParts), &error) ? "" : error.toStdString();
}

FaultRule ruleOf(const QString& text) {
    QString error;
    const auto rule = parseFault(text.split(' ', Qt::SkipEmptyParts), &error);
    EXPECT_TRUE(rule) << error.toStdString();
    return rule.value_or(FaultRule());
}

TEST(FaultRuleTest, HasTheDefaultsOfItsTable) {
    EXPECT_EQ(ruleOf("late").delay.count(), 100);
    EXPECT_EQ(ruleOf("pieces").delay.count(), 20);
    EXPECT_EQ(ruleOf("close-connection").number, 0U);
    EXPECT_TRUE(ruleOf("silent").command.isEmpty());
}

TEST(FaultRuleTest, TakesAnArgumentAndACommand) {
    const FaultRule late = ruleOf("late 1.5s for DATA?");
    EXPECT_EQ(late.fault, Fault::Late);
    EXPECT_EQ(late.delay.count(), 1500);
    EXPECT_EQ(late.command, "DATA?");
    EXPECT_EQ(ruleOf("close-connection 3").number, 3U);
    EXPECT_EQ(ruleOf("garbage 7").seed, 7U);
    EXPECT_EQ(ruleOf("silent for START").command, "START");
}

TEST(FaultRuleTest, SaysWhatIsWrong) {
    EXPECT_THAT(mistakeIn("lat"), testing::HasSubstr("there is no fault \"lat\""));
    EXPECT_THAT(mistakeIn("lat"), testing::HasSubstr("garbage"));
    EXPECT_THAT(mistakeIn("late 5"), testing::HasSubstr("\"late [TIME] [for COMMAND]\""));
    for (const char* const wrong : {"", "late 5", "late -1s", "late 1s 2s", "silent 1",
                                    "close-connection 0", "garbage x", "cut for", "for DATA?"})
        EXPECT_NE(mistakeIn(wrong), "") << wrong;
}

TEST(FaultRuleTest, StrikesOnlyItsCommand) {
    ActiveFault fault(ruleOf("cut for DATA?"));
    EXPECT_FALSE(fault.strikes("PARAMS?"));
    EXPECT_TRUE(fault.strikes("DATA?"));
    EXPECT_TRUE(fault.strikes("DATA?"));
}

TEST(FaultRuleTest, StrikesOnlyTheRequestOfItsNumber) {
    ActiveFault fault(ruleOf("close-connection 2 for DATA?"));
    EXPECT_FALSE(fault.strikes("DATA?"));
    EXPECT_FALSE(fault.strikes("STOP"));
    EXPECT_TRUE(fault.strikes("DATA?"));
    EXPECT_FALSE(fault.strikes("DATA?"));
}

TEST(FaultRuleTest, GarbageIsThatOfItsSeed) {
    ActiveFault one(ruleOf("garbage 1"));
    ActiveFault same(ruleOf("garbage 1"));
    ActiveFault other(ruleOf("garbage 2"));
    const QByteArray garbage = one.spoil(data);
    EXPECT_EQ(garbage.size(), 64);
    EXPECT_EQ(same.spoil("Ok"), garbage);
    EXPECT_NE(other.spoil(data), garbage);
    EXPECT_NE(one.spoil(data), garbage) << "each reply has bytes of its own";
}

TEST(FaultRuleTest, HelpNamesEveryFaultButNone) {
    const QString help = server::faultHelp();
    for (const QString& name : faultNames().mid(1))
        EXPECT_TRUE(help.contains("  " + name + ' ')) << name.toStdString();
    EXPECT_EQ(help.count('\n'), faultNames().size() - 1);
}

} // namespace
