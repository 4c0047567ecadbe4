#include "evidence/origin.h"

#include <gmock/gmock.h>

namespace korvel::evidence {
namespace {

TEST(Origin, TellsLocalTimeWithItsOffset) {
  using namespace std::chrono;
  const system_clock::time_point moment = sys_days{2026y / 11 / 22} + 15h + 4min + 5s;
  const std::string text = localTimeText(moment);
  ASSERT_THAT(text, testing::SizeIs(25));
  const auto number = [&](std::size_t at, std::size_t size) { return std::stoi(text.substr(at, size)); };
  const auto local = sys_days{year{number(0, 4)} / number(5, 2) / number(8, 2)} + hours{number(11, 2)} +
                     minutes{number(14, 2)} + seconds{number(17, 2)};
  const auto offset = (hours{number(20, 2)} + minutes{number(23, 2)}) * (text[19] == '-' ? -1 : 1);
  EXPECT_EQ(local - offset, moment);
}

TEST(Origin, NamesUserAndComputer) {
  EXPECT_NE(systemUser(), "");
  EXPECT_EQ(systemUser().find('\0'), std::string::npos);
  EXPECT_NE(computerName(), "");
  EXPECT_EQ(computerName().find('\0'), std::string::npos);
}

}  // namespace
}  // namespace korvel::evidence
