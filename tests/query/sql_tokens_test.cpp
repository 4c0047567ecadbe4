#include "query/sql_tokens.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace korvel::query {
namespace {

using Open = SqlLineState::Open;

std::string kindName(SqlTokenKind kind) {
  const char* const names[] = {"keyword", "name", "text", "number", "comment", "variable", "parenthesis", "other"};
  return names[static_cast<std::size_t>(kind)];
}

std::string narrow(std::u16string_view text) {
  std::string result;
  for (const char16_t c : text) result += c < 128 ? static_cast<char>(c) : '?';
  return result;
}

/// The tokens of a line as "kind:text", one behind the other with a bar between.
std::string tokens(std::u16string_view line, SqlLineState& state) {
  std::string result;
  for (const SqlToken& token : sqlTokens(line, state)) {
    if (!result.empty()) result += '|';
    result += kindName(token.kind) + ':' + narrow(line.substr(token.begin, token.length));
  }
  return result;
}
std::string tokens(std::u16string_view line) {
  SqlLineState state;
  return tokens(line, state);
}

TEST(SqlTokens, WordsAreKeywordsInAnyCaseOrNames) {
  EXPECT_EQ(tokens(u"Select * from Korvel_Audit_Trails"),
            "keyword:Select|other:*|keyword:from|name:Korvel_Audit_Trails");
  EXPECT_EQ(tokens(u"sElEcT selects a#b _x #temp"), "keyword:sElEcT|name:selects|name:a#b|name:_x|name:#temp");
  EXPECT_EQ(tokens(u"Old$Value x$ _$1"), "name:Old$Value|name:x$|name:_$1");
  EXPECT_EQ(tokens(u"Größe \u4E2D"), "name:Gr??e|name:?");
}

TEST(SqlTokens, EveryKeywordIsFoundAndNothingBetweenThem) {
  for (const char16_t* word : {u"ADD", u"writetext", u"Current_Timestamp", u"WITH", u"IDENTITY_INSERT"})
    EXPECT_TRUE(isSqlKeyword(word));
  for (const char16_t* word : {u"", u"AD", u"ADDS", u"WRITETEXTS", u"SELECT ", u"AVERYLONGWORDTHATISNOKEYWORDATALL"})
    EXPECT_FALSE(isSqlKeyword(word));
}

TEST(SqlTokens, TextsHoldDoubledQuotes) {
  EXPECT_EQ(tokens(u"'a''b' 'c'"), "text:'a''b'|text:'c'");
  EXPECT_EQ(tokens(u"N'x' n'x' NN'x'"), "text:N'x'|name:n|text:'x'|name:NN|text:'x'");
  EXPECT_EQ(tokens(u"''"), "text:''");
  EXPECT_EQ(tokens(u"'--' '/*'"), "text:'--'|text:'/*'");
}

TEST(SqlTokens, NamesInQuotesAndBrackets) {
  EXPECT_EQ(tokens(u"\"select\"\"x\" [from]]x].[y]"), "name:\"select\"\"x\"|name:[from]]x]|other:.|name:[y]");
}

TEST(SqlTokens, Comments) {
  EXPECT_EQ(tokens(u"a--b 'c"), "name:a|comment:--b 'c");
  EXPECT_EQ(tokens(u"/* a /* b */ c */ d"), "comment:/* a /* b */ c */|name:d");
  EXPECT_EQ(tokens(u"a - - b / * c"), "name:a|other:-|other:-|name:b|other:/|other:*|name:c");
  EXPECT_EQ(tokens(u"--a\nb"), "comment:--a|name:b");
}

TEST(SqlTokens, Numbers) {
  EXPECT_EQ(tokens(u"12 1.5 .5 1. 1.5e-3 1e9 0x1aF $12.50"),
            "number:12|number:1.5|number:.5|number:1.|number:1.5e-3|number:1e9|number:0x1aF|number:$12.50");
  EXPECT_EQ(tokens(u"1e 1e+ a1 $ ."), "number:1|name:e|number:1|name:e|other:+|name:a1|other:$|other:.");
}

TEST(SqlTokens, VariablesAndParentheses) {
  EXPECT_EQ(tokens(u"f(@x,@@ROWCOUNT)"), "name:f|parenthesis:(|variable:@x|other:,|variable:@@ROWCOUNT|parenthesis:)");
}

TEST(SqlTokens, WhatIsOpenGoesOnInTheNextLine) {
  SqlLineState state;
  EXPECT_EQ(tokens(u"select 'a", state), "keyword:select|text:'a");
  EXPECT_EQ(state, (SqlLineState{Open::text, 0}));
  EXPECT_EQ(tokens(u"", state), "");
  EXPECT_EQ(state, (SqlLineState{Open::text, 0}));
  EXPECT_EQ(tokens(u"b' from", state), "text:b'|keyword:from");
  EXPECT_EQ(state, SqlLineState());

  EXPECT_EQ(tokens(u"\"a", state), "name:\"a");
  EXPECT_EQ(tokens(u"b\" [c", state), "name:b\"|name:[c");
  EXPECT_EQ(tokens(u"d] /* /*", state), "name:d]|comment:/* /*");
  EXPECT_EQ(state, (SqlLineState{Open::comment, 2}));
  EXPECT_EQ(tokens(u"*/ select", state), "comment:*/ select");
  EXPECT_EQ(tokens(u"*/ select", state), "comment:*/|keyword:select");
  EXPECT_EQ(state, SqlLineState());
}

TEST(SqlTokens, ALineCommentLeavesNothingOpen) {
  SqlLineState state;
  EXPECT_EQ(tokens(u"-- 'a /*", state), "comment:-- 'a /*");
  EXPECT_EQ(state, SqlLineState());
}

TEST(SqlTokens, StatesAreNumbersAndBack) {
  for (const SqlLineState& state :
       {SqlLineState(), SqlLineState{Open::text, 0}, SqlLineState{Open::quotedName, 0},
        SqlLineState{Open::bracketedName, 0}, SqlLineState{Open::comment, 1}, SqlLineState{Open::comment, 77}})
    EXPECT_EQ(toLineState(toNumber(state)), state);
  EXPECT_EQ(toNumber(SqlLineState()), 0);
  EXPECT_EQ(toLineState(-1), SqlLineState());
  EXPECT_EQ(toLineState(4), (SqlLineState{Open::comment, 1}));
  EXPECT_GT(toLineState(toNumber({Open::comment, 2'000'000'000})).commentDepth, 1'000'000);
}

}  // namespace
}  // namespace korvel::query
