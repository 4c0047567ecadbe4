#include "evidence/zip_archive.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>

#include "base/error.h"
#include "tests/support/zip_writer.h"

namespace korvel::evidence {
namespace {

using test::zipOf;
using test::ZipPart;
using testing::HasSubstr;

constexpr std::uint64_t plenty = std::uint64_t{1} << 30U;

std::string textOf(const std::string& bytes, std::string_view name, std::uint64_t most = plenty) {
  ZipArchive archive(bytes, most);
  const ZipArchive::Part* const part = archive.find(name);
  if (part == nullptr) return "missing";
  ZipPartReader reader(archive, *part);
  std::string text;
  for (std::string_view piece = reader.next(); !piece.empty(); piece = reader.next()) text += piece;
  return text;
}

/// The sentence with which reading ends; empty where it does not fail.
std::string sentenceOf(const std::string& bytes, std::uint64_t most = plenty) {
  try {
    textOf(bytes, "a", most);
  } catch (const Error& error) {
    return error.description();
  }
  return {};
}

TEST(ZipArchive, GivesItsParts) {
  const std::string large(1'000'000, 'x');
  const std::string bytes = zipOf({{"a", "first"}, {"b", large}, {"c", large, false}, {"d", ""}, {"e", "", false}});
  EXPECT_EQ(textOf(bytes, "a"), "first");
  EXPECT_EQ(textOf(bytes, "b"), large);
  EXPECT_EQ(textOf(bytes, "c"), large);
  EXPECT_EQ(textOf(bytes, "d"), "");
  EXPECT_EQ(textOf(bytes, "e"), "");
  EXPECT_EQ(textOf(bytes, "f"), "missing");
}

TEST(ZipArchive, RefusesWhatItsDirectorySaysWrongly) {
  const std::vector<std::pair<std::function<void(ZipPart&)>, std::string>> wrong = {
      {[](ZipPart& part) { part.moreBytes = 1; }, "its part a is shorter than its directory says"},
      {[](ZipPart& part) { part.moreBytes = -1; }, "its part a is longer than its directory says"},
      {[](ZipPart& part) { part.morePackedBytes = -2; }, "its part a cannot be unpacked: it is damaged or was cut"},
      {[](ZipPart& part) { part.morePackedBytes = 1'000'000; }, "its part a reaches beyond the end of the file"},
      {[](ZipPart& part) { part.moreOffset = 1; }, "its part a is not where its directory says"},
      {[](ZipPart& part) { part.moreOffset = 0x7FFF'FFFF; }, "its part a is not where its directory says"},
      {[](ZipPart& part) { part.checksumBits = 1; }, "its part a is damaged: its checksum is another one"},
      {[](ZipPart& part) { part.flags = 1; }, "its part a is encrypted"},
      {[](ZipPart& part) { part.method = 9; }, "its part a is packed in a way that workbooks are not"},
      {[](ZipPart& part) { part.moreBytes = 0xFFFF'FFFF - 5; }, "its part a is larger than those of our workbooks"}};
  for (const auto& [change, sentence] : wrong) {
    ZipPart part{"a", "first"};
    change(part);
    EXPECT_EQ(sentenceOf(zipOf({part})), sentence);
  }
}

TEST(ZipArchive, RefusesFilesThatAreCutOrDamaged) {
  const std::string whole = zipOf({{"a", "first part of some text"}, {"b", "second"}});
  for (std::size_t size = 0; size < whole.size(); ++size)
    EXPECT_THAT(sentenceOf(whole.substr(0, size)), HasSubstr("was cut")) << size;
  EXPECT_THAT(sentenceOf("PK"), HasSubstr("it is no workbook"));
  // Any byte: a sentence or the text, and nothing beyond the file is read.
  std::size_t refused = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string changed = whole;
    changed[at] = static_cast<char>(changed[at] ^ 0x55);
    if (!sentenceOf(changed).empty()) ++refused;
  }
  EXPECT_GT(refused, whole.size() / 4);
  std::string directory = whole;
  directory.replace(directory.find("PK\1\2"), 4, "PK\1\7");
  EXPECT_EQ(sentenceOf(directory), "the directory of its parts is damaged");
}

/// A small file that unpacks to very much.
TEST(ZipArchive, UnpacksNoMoreThanItShould) {
  const std::string bomb = zipOf({{"a", std::string(10'000'000, '\0')}});
  EXPECT_LT(bomb.size(), 20'000U);
  EXPECT_EQ(sentenceOf(bomb, 1'000'000), "its parts unpack to more than a workbook is read of");
  // Parts share the limit.
  const std::string twice = zipOf({{"a", std::string(600'000, 'x')}, {"b", std::string(600'000, 'x')}});
  ZipArchive archive(twice, 1'000'000);
  const auto unpack = [&](std::string_view name) {
    ZipPartReader reader(archive, *archive.find(name));
    while (!reader.next().empty()) {
    }
  };
  EXPECT_NO_THROW(unpack("a"));
  EXPECT_THROW(unpack("b"), Error);
}

}  // namespace
}  // namespace korvel::evidence
