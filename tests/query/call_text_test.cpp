#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "base/atomic_file.h"
#include "query/standard_query.h"

namespace korvel::query {
namespace {

CategoryFlags flagsOf(std::string digits) {
  std::reverse(digits.begin(), digits.end());  // a bitset writes its first bit last
  return CategoryFlags(digits);
}

TEST(CallText, HoldsThirteenQuotedValuesInParameterOrder) {
  const DateRange range{*parseDay("2004-03-01"), *parseDay("2004-03-07"), true};
  EXPECT_EQ(queryAuditsText(flagsOf("1000100000"), range),
            "QueryAudits 'True','False','False','False','True','False','False','False','False','False','True',"
            "'2004-03-01 00:00:00.000','2004-03-07 23:59:59.999'");
}

TEST(CallText, EqualsTheKeptTexts) {
  std::istringstream kept(readFile(KORVEL_SOURCE_DIR "/tests/data/query/call_texts.txt"));
  int cases = 0;
  for (std::string input, expected; std::getline(kept, input) && std::getline(kept, expected); ++cases) {
    std::istringstream words(input);
    std::string flags, from, to;
    words >> flags >> from >> to;
    DateRange range;
    if (from != "-") range = {parseDay(from).value(), parseDay(to).value(), true};
    EXPECT_EQ(queryAuditsText(flagsOf(flags), range), expected) << input;
  }
  EXPECT_EQ(cases, 16);
}

}  // namespace
}  // namespace korvel::query
