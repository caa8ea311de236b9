// Rules: how they are written, and what becomes of messages.
#include "traffic/rules/rules.h"

#include <gtest/gtest.h>

#include "common/failure.h"
#include "common/frame.h"
#include "common/text/json.h"

namespace hbbtv::traffic {
namespace {

std::string WhyNot(const std::string& rule) {
    try {
        ParseRule(rule);
        return "";
    } catch (const Failure& e) {
        EXPECT_EQ(e.Code(), kUsage);
        return e.what();
    }
}

TEST(Rule, ConsistsOfAFilterAnActionAndOptions) {
    const Rule rule = ParseRule("family:channel & op:GetName on=reply p=0.5 count=3 set=name:{\"a\": [1, \"b c\"]}");
    EXPECT_TRUE(rule.onReply);
    EXPECT_EQ(rule.probability, 0.5);
    EXPECT_EQ(rule.left, 3u);
    EXPECT_EQ(rule.member, "name");
    EXPECT_EQ(rule.value["a"][1].asString(), "b c");
    EXPECT_EQ(ParseRule("set=name:arte").value.asString(), "arte") << "what is not JSON is a string";
    EXPECT_EQ(ParseRule("delay=2s").delay, Milliseconds(2000));
}

TEST(Rule, SaysWhatIsWrong) {
    EXPECT_EQ(WhyNot("op:GetName"), "rule \"op:GetName\": no action; write, for example, \"op:SetChannel delay=2s\"");
    EXPECT_EQ(WhyNot("delay=2s drop"), "rule \"delay=2s drop\": a rule has one action; add another rule");
    EXPECT_EQ(WhyNot("drop=1"), "rule \"drop=1\": write drop, not \"drop=1\"");
    EXPECT_EQ(WhyNot("delay"), "rule \"delay\": write delay=TIME, not \"delay\"");
    EXPECT_EQ(WhyNot("drop cont=3"), "rule \"drop cont=3\": unknown action \"cont\"; did you mean \"count\"?");
    EXPECT_EQ(WhyNot("drop p=2"), "rule \"drop p=2\": p: \"2\" is not a number from 0 to 1");
    EXPECT_EQ(WhyNot("drop count=0"), "rule \"drop count=0\": count: \"0\" is not a whole number of at least 1");
    EXPECT_EQ(WhyNot("slow=0"), "rule \"slow=0\": slow: \"0\" is not a whole number of at least 1");
    EXPECT_EQ(WhyNot("drop on=event"), "rule \"drop on=event\": on: \"event\" is not \"request\" or \"reply\"");
    EXPECT_EQ(WhyNot("answer={\"ret\": 0} on=reply"),
              "rule \"answer={\\\"ret\\\": 0} on=reply\": a reply has no answer; use set");
    EXPECT_NE(WhyNot("family:chanel) drop"), "");
    EXPECT_NE(WhyNot("answer={ret}"), "");
    EXPECT_NE(WhyNot(""), "");
}

struct RulesTest : testing::Test {
    RulesTest() {
        record.message = {kRequest, 2, 0, {}, ""};
        SetPayload(record.message, R"({"c_handle":"0x1000","method":13,"type":12})");
        Identify(record, "service_plugin_to_hbbtv_vb_chn");
        bytes = Encode({kRequest, 2, PayloadOf(record.message)});
    }

    Verdict Of(const std::string& rule) {
        Rules rules;
        rules.Add(rule);
        return rules.Apply(record, record.reply.has_value(), bytes);
    }

    void Reply() {
        record.reply = Message{kReply, 2, 0, {}, ""};
        SetPayload(*record.reply, R"({"name":"arte","ret":0})");
        record.status = 0;
        bytes = Encode({kReply, 2, PayloadOf(*record.reply)});
    }

    Record record;
    std::string bytes;
};

TEST_F(RulesTest, PassOnUnchangedWhatDoesNotMatch) {
    for (const char* rule : {"op:SetName drop", "event drop", "on=reply drop", "p=0 drop", "status:0 drop"}) {
        const Verdict verdict = Of(rule);
        EXPECT_EQ(verdict.forward, bytes) << rule;
        EXPECT_EQ(verdict.applied, "") << rule;
    }
}

TEST_F(RulesTest, DoWhatTheySay) {
    EXPECT_EQ(Of("op:GetName drop").forward, "");
    EXPECT_EQ(Of("duplicate").forward, bytes + bytes);
    EXPECT_EQ(Of("delay=20ms").delay, Milliseconds(20));
    EXPECT_TRUE(Of("hold").hold);
    EXPECT_EQ(Of("cut").forward, bytes.substr(0, bytes.size() / 2));
    EXPECT_EQ(Of("cut=5").forward, bytes.substr(0, 5));
    EXPECT_TRUE(Of("cut=5").close);
    EXPECT_TRUE(Of("close").close);
    EXPECT_EQ(Of("close").forward, "");
    EXPECT_EQ(Of("slow=100").rate, 100u);
    const Verdict answer = Of("answer={\"ret\": -1}");
    EXPECT_EQ(answer.forward, "");
    EXPECT_EQ(answer.answer, Encode({kReply, 2, "{\n\t\"ret\" : -1\n}\n"}));
    EXPECT_EQ(answer.applied, "answer={\"ret\": -1}");
}

TEST_F(RulesTest, CorruptChangesThePayloadOnlyAndTheSameWayForTheSameSeed) {
    const std::string changed = Of("corrupt=3 seed=4").forward;
    EXPECT_NE(changed, bytes);
    EXPECT_EQ(changed.size(), bytes.size());
    EXPECT_EQ(changed.substr(0, 12), bytes.substr(0, 12));
    EXPECT_EQ(Of("corrupt=3 seed=4").forward, changed);
    EXPECT_NE(Of("corrupt=3 seed=5").forward, changed);
}

TEST_F(RulesTest, SetChangesAMemberOfARequestOrAReply) {
    const std::string forward = Of("set=c_handle:0x2000").forward;
    EXPECT_EQ(ParseJson(forward.substr(12))["c_handle"].asString(), "0x2000");
    Reply();
    EXPECT_EQ(Of("set=name:X").forward, bytes) << "without on=reply";
    const Verdict verdict = Of("op:GetName & status:0 on=reply set=ret:7");
    EXPECT_EQ(verdict.forward, Encode({kReply, 2, "{\n\t\"name\" : \"arte\",\n\t\"ret\" : 7\n}\n"}));
    EXPECT_EQ(verdict.applied, "reply: set=ret:7");
}

TEST_F(RulesTest, ApplyInTheirOrder) {
    Rules rules;
    rules.Add("set=c_handle:0x2000");
    rules.Add("set=more:1");
    rules.Add("handle:0x2000 delay=1s");
    rules.Add("drop");
    rules.Add("duplicate");
    const Verdict verdict = rules.Apply(record, false, bytes);
    EXPECT_EQ(verdict.applied, "set=c_handle:0x2000, set=more:1, delay=1s, drop");
    EXPECT_EQ(verdict.forward, "");
}

TEST_F(RulesTest, ACountAndAProbabilityLimitThem) {
    Rules rules;
    rules.Add("drop count=2");
    for (const size_t size : {size_t{0}, size_t{0}, bytes.size()}) {
        EXPECT_EQ(rules.Apply(record, false, bytes).forward.size(), size);
    }
    Rules often;
    often.Add("drop p=0.25");
    int dropped = 0;
    for (int i = 0; i < 1000; ++i) dropped += often.Apply(record, false, bytes).forward.empty() ? 1 : 0;
    EXPECT_GT(dropped, 200);
    EXPECT_LT(dropped, 300);
}

TEST_F(RulesTest, AreListedRemovedAndLetGoByCommands) {
    Rules rules;
    EXPECT_EQ(rules.Tell("op:GetName hold"), "1  op:GetName hold  (applied 0 times)\n");
    rules.Apply(record, false, bytes);
    int released = 0;
    rules.WhenLetGo([&released] { ++released; });
    EXPECT_EQ(rules.Tell("go"), "1 message let go\n");
    EXPECT_EQ(released, 1);
    rules.WhenLetGo([&released] { ++released; });
    EXPECT_EQ(rules.Tell("rules"), "1  op:GetName hold  (applied 1 time)\n");
    EXPECT_EQ(rules.Tell("remove 1"), "no rules\n");
    EXPECT_EQ(released, 2) << "what a removed rule has held";
    EXPECT_FALSE(rules.Any());
    EXPECT_THROW(rules.Tell("remove 1"), Failure);
    EXPECT_THROW(rules.Tell("rulez"), Failure);
    EXPECT_EQ(rules.Tell(""), "");
    EXPECT_EQ(rules.Tell("# a comment"), "");
    EXPECT_NE(rules.Tell("help").find("delay=TIME"), std::string::npos);
}

}  // namespace
}  // namespace hbbtv::traffic
