// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/parser.h"

#include <gtest/gtest.h>

namespace brelant::script {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Answers = UserInterface::Reply;

struct Case {
  const char* line;
  Command command;
};

void PrintTo(const Case& c, std::ostream* out) {
  *out << c.line;
}

const ControlName kFa{"", "txbFa(0)"};

class ParserTest : public ::testing::TestWithParam<Case> {};

TEST_P(ParserTest, ReadsTheLine) {
  const auto command = ParseLine(GetParam().line);
  ASSERT_TRUE(command);
  EXPECT_TRUE(*command == GetParam().command);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, ParserTest,
    ::testing::Values(
        Case{"get txbFa(0)", Get{kFa, std::nullopt}},
        Case{"get frm5.txbFa(0) text", Get{{"frm5", "txbFa(0)"}, Property::text}},
        Case{"get a value", Get{{"", "a"}, Property::value}},
        Case{"get a visible", Get{{"", "a"}, Property::visible}},
        Case{"get a enabled", Get{{"", "a"}, Property::enabled}},
        Case{"get a back", Get{{"", "a"}, Property::back}},
        Case{"get a fore", Get{{"", "a"}, Property::fore}}, Case{"get a tip", Get{{"", "a"}, Property::tip}},
        Case{"get a items", Get{{"", "a"}, Property::items}}, Case{"dump", Dump{""}},
        Case{"dump frm5", Dump{"frm5"}}, Case{"type txbFa(0) 12,5", Type{kFa, "12,5"}},
        Case{"enter frm5.txbFa(0) 7", Enter{{"frm5", "txbFa(0)"}, "7"}}, Case{"focus txbFa(0)", Focus{kFa}},
        Case{"leave txbFa(0)", Leave{kFa}}, Case{"click txbFa(0)", Click{kFa}},
        Case{"select cmbTypeOfS Vega 3", Select{{"", "cmbTypeOfS"}, "Vega 3"}},
        Case{"choose CO2 TWA", Choose{"CO2 TWA"}}, Case{"answer 22.5", Answer{"22.5"}},
        Case{"answer cancel", Answer{std::nullopt}}, Case{"answer \"cancel\"", Answer{"cancel"}},
        Case{"answer cancel it", Answer{"cancel it"}}, Case{"answer \"\"", Answer{""}},
        Case{"reply ok", Reply{Answers::ok}}, Case{"reply cancel", Reply{Answers::cancel}},
        Case{"reply yes", Reply{Answers::yes}}, Case{"reply no", Reply{Answers::no}},
        Case{"file /tmp/my file.set", File{"/tmp/my file.set"}}, Case{"file cancel", File{std::nullopt}},
        Case{"expect txbFa(0) text 450", Expect{kFa, Property::text, "450"}},
        Case{"expect txbFa(0) visible true", Expect{kFa, Property::visible, "true"}},
        Case{"expect txbFa(0) text \"\"", Expect{kFa, Property::text, ""}},
        Case{"image ram 65", Image{false, 65, 1}}, Case{"image eeprom 0 512", Image{true, 0, 512}},
        Case{"close", Close{""}}, Case{"close frmMsg", Close{"frmMsg"}}, Case{"quit", Quit{}}));

INSTANTIATE_TEST_SUITE_P(
    Waits, ParserTest,
    ::testing::Values(
        Case{"wait idle", Wait{Wait::For::idle, "", 0, seconds(60)}},
        Case{"wait idle 5", Wait{Wait::For::idle, "", 0, seconds(5)}},
        Case{"wait form frm5", Wait{Wait::For::form, "frm5", 0, seconds(60)}},
        Case{"wait form frm5 2.5", Wait{Wait::For::form, "frm5", 0, milliseconds(2500)}},
        Case{"wait message", Wait{Wait::For::message, "", 0, seconds(60)}},
        Case{"wait message 3", Wait{Wait::For::message, "", 0, seconds(3)}},
        Case{"wait progress Please wait", Wait{Wait::For::progress, "Please wait", 0, seconds(60)}},
        Case{"wait progress Please wait 4", Wait{Wait::For::progress, "Please wait", 0, seconds(4)}},
        Case{"wait progress \"Step 4\"", Wait{Wait::For::progress, "Step 4", 0, seconds(60)}},
        Case{"wait progress \"Step 4\" 7", Wait{Wait::For::progress, "Step 4", 0, seconds(7)}},
        Case{"wait progress 4", Wait{Wait::For::progress, "4", 0, seconds(60)}},
        Case{"wait progress \"\"", Wait{Wait::For::progress, "", 0, seconds(60)}},
        Case{"wait poll", Wait{Wait::For::poll, "", 1, seconds(60)}},
        Case{"wait poll 3", Wait{Wait::For::poll, "", 3, seconds(60)}},
        Case{"wait poll 3 10", Wait{Wait::For::poll, "", 3, seconds(10)}},
        Case{"wait 2", Wait{Wait::For::time, "", 0, seconds(2)}},
        Case{"wait 0.25", Wait{Wait::For::time, "", 0, milliseconds(250)}},
        Case{"wait 0", Wait{Wait::For::time, "", 0, milliseconds(0)}}));

INSTANTIATE_TEST_SUITE_P(Texts, ParserTest,
                         ::testing::Values(Case{"  type\ttxbFa(0)   a b \t ", Type{kFa, "a b"}},
                                           Case{"type txbFa(0) a\r", Type{kFa, "a"}},
                                           Case{"type txbFa(0) \" a b \"", Type{kFa, " a b "}},
                                           Case{"type txbFa(0) \"a \"\"b\"\" c\"", Type{kFa, "a \"b\" c"}},
                                           Case{"type txbFa(0) \"\"\"\"", Type{kFa, "\""}},
                                           Case{"type txbFa(0) 5\" pipe", Type{kFa, "5\" pipe"}},
                                           Case{"type txbFa(0) a # told", Type{kFa, "a"}},
                                           Case{"type txbFa(0) a#b", Type{kFa, "a#b"}},
                                           Case{"type txbFa(0) \"a # b\" # told", Type{kFa, "a # b"}},
                                           Case{"click txbFa(0)#", Click{{"", "txbFa(0)#"}}},
                                           Case{"click txbFa(0) # told", Click{kFa}},
                                           Case{"type txbFa(0) C:\\dir\\n", Type{kFa, "C:\\dir\\n"}},
                                           Case{"type txbFa(0) \xc3\xa5", Type{kFa, "\xc3\xa5"}}));

class NothingTest : public ::testing::TestWithParam<const char*> {};

TEST_P(NothingTest, IsNoCommand) {
  EXPECT_FALSE(ParseLine(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Lines, NothingTest,
                         ::testing::Values("", "  \t\r", "# a comment", "   # another", "#", "#get a"));

class NonsenseTest : public ::testing::TestWithParam<const char*> {};

TEST_P(NonsenseTest, IsASyntaxError) {
  EXPECT_THROW(ParseLine(GetParam()), SyntaxError);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, NonsenseTest,
    ::testing::Values("jump", "Get a", "get", "get a colour", "get a text more", "get .a", "get frm5.",
                      "dump a b", "type a", "type", "enter a", "enter a # b", "focus", "focus a b", "leave",
                      "click", "click a b", "click a# b", "select a", "choose", "answer", "reply",
                      "reply maybe", "reply ok ok", "file", "expect a", "expect a text", "expect a colour 5",
                      "image", "image rom 5", "image ram", "image ram -1", "image ram 5 0", "image ram x",
                      "image ram 5 5 5", "image ram 99999999999", "wait", "wait long", "wait -1", "wait 1e9",
                      "wait nan", "wait inf", "wait form", "wait form a b", "wait idle x", "wait message x",
                      "wait progress", "wait progress \"a\" b", "wait poll 0", "wait poll x", "wait poll 1 x",
                      "close a b", "quit now", "type a \"b", "type a \"b\" c", "type a \"b\"\"", "\"",
                      "type a \"\"\""));

}  // namespace
}  // namespace brelant::script
