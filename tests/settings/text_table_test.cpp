#include "settings/text_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/atomic_file.h"

namespace korvel::settings {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string header = "key\ten\tde\tfr\tes\tit\n";

std::vector<std::string> problemsOf(const std::string& bytes) {
  return parseTextTable(bytes, "key").problems;
}

TEST(TextTable, ReadsRowsInTheirOrder) {
  const TextTable table = parseTextTable(header + "b\t1\t2\t3\t4\t5\na\tone\\ntwo\tx\\ty\tC:\\\\new\té\t€\n", "key");
  EXPECT_THAT(table.problems, IsEmpty());
  ASSERT_EQ(table.rows.size(), 2U);
  EXPECT_EQ(table.rows[0].key, "b");
  EXPECT_THAT(table.rows[0].texts, ElementsAre("1", "2", "3", "4", "5"));
  EXPECT_THAT(table.rows[1].texts, ElementsAre("one\ntwo", "x\ty", "C:\\new", "é", "€"));
}

TEST(TextTable, FindsEverySlip) {
  EXPECT_THAT(problemsOf(""), ElementsAre("line 1 has no header"));
  EXPECT_THAT(problemsOf("k\ten\tde\tfr\tes\tit\n"), ElementsAre("line 1 is not the expected header"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t5"), ElementsAre("line 1 does not end with a line break"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\n"),
              ElementsAre("line 2 has 5 columns", "line 2 has no text in column it"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t5\t6\n"), ElementsAre("line 2 has 7 columns"));
  EXPECT_THAT(problemsOf(header + "a\t1\t\t3\t4\t5\n"), ElementsAre("line 2 has no text in column de"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3 \t 4\t5\n"),
              ElementsAre("line 2 has a blank at an end in column fr", "line 2 has a blank at an end in column es"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t5\na\t1\t2\t3\t4\t5\n"), ElementsAre("line 3 repeats key a"));
  EXPECT_THAT(problemsOf(header + "\t1\t2\t3\t4\t5\n"), ElementsAre("line 2 has no key"));
  EXPECT_THAT(problemsOf(header + "a\t%1 %2\t%2 %1\t%1\t%1 %2\t%1 %2 %2\n"),
              ElementsAre("line 2 has other places than English in column fr",
                          "line 2 has other places than English in column it"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\\x\t3\\\t4\t5\n"),
              ElementsAre("line 2 has an unknown escape in column de", "line 2 has an unknown escape in column fr"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t5\r\n"), ElementsAre("line 1 holds carriage returns"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t\xFC\n"), ElementsAre("line 1 is not UTF-8"));
}

TEST(TextTable, ADamagedRowFallsBackToEnglish) {
  const TextTable table = parseTextTable(header + "a\tOnly English\n", "key");
  ASSERT_EQ(table.rows.size(), 1U);
  EXPECT_EQ(table.rows[0].texts[3], "Only English");
}

TextTable ourTable(const std::string& name, const std::string& keyCaption) {
  return parseTextTable(readFile(std::string(KORVEL_SOURCE_DIR) + "/settings/texts/" + name), keyCaption);
}
TextTable fixedTable() {
  return ourTable("fixed_texts.tsv", "k");
}
TextTable ownTable() {
  return ourTable("own_texts.tsv", "key");
}

const std::array<std::string, languageCount> languages = {"en", "de", "fr", "es", "it"};

/// The cells of both tables for which `isWrong` holds, as "key language".
std::vector<std::string> cellsWhere(const std::function<bool(const TextRow&, std::size_t)>& isWrong) {
  std::vector<std::string> cells;
  for (const TextTable& table : {fixedTable(), ownTable()})
    for (const TextRow& row : table.rows)
      for (std::size_t language = 0; language < languageCount; ++language)
        if (isWrong(row, language)) cells.push_back(row.key + " " + languages[language]);
  return cells;
}

TEST(TextTable, OurTablesAreSound) {
  const TextTable fixed = fixedTable();
  EXPECT_THAT(fixed.problems, IsEmpty());
  ASSERT_EQ(fixed.rows.size(), static_cast<std::size_t>(fixedTextCount));
  for (std::size_t k = 0; k < fixed.rows.size(); ++k) EXPECT_EQ(fixed.rows[k].key, std::to_string(k + 1));

  const TextTable own = ownTable();
  EXPECT_THAT(own.problems, IsEmpty());
  EXPECT_FALSE(own.rows.empty());
  const std::regex usualKey("[a-z][A-Za-z0-9]*(\\.[A-Za-z0-9]+)+");
  for (const TextRow& row : own.rows) EXPECT_TRUE(std::regex_match(row.key, usualKey)) << row.key;
}

// Translations that are deliberately spelled as in English.
TEST(TextTable, OurTranslationsAreTranslated) {
  EXPECT_THAT(cellsWhere([](const TextRow& row, std::size_t language) {
                return language != 0 && row.texts[language] == row.texts.front();
              }),
              ElementsAre("1 it", "58 de", "58 fr", "58 it", "63 de", "check.port de", "check.port fr",
                          "check.database it", "check.table fr", "review.question fr", "reviewReport.computer it",
                          "dialog.no es", "dialog.no it", "page.computer it", "preview.page fr", "preview.pages fr"));
}

/// Whether a punctuation mark that French separates does not follow a no-break space. Marks inside a word ("host:port")
/// are not punctuation.
bool hasLooseFrenchSign(std::string_view text) {
  constexpr std::string_view unbrokenBlank = "\u00A0";
  for (auto at = text.find_first_of(":;!?"); at != std::string_view::npos; at = text.find_first_of(":;!?", at + 1)) {
    const std::string_view before = text.substr(0, at);
    const bool endsWord = at + 1 == text.size() || text[at + 1] == ' ' || text[at + 1] == '\n';
    if (before.ends_with(' ') || (endsWord && !before.ends_with(unbrokenBlank))) return true;
  }
  return false;
}

/// The letters that Alt takes in a window: one window's texts are in one line. Those of the record window and of others
/// are apart, also where windows share a button.
const std::vector<std::vector<std::string>> dialogsWithLetters = {
    {"dialog.yes", "dialog.no"},
    {"filter.takeShown", "filter.takeWhole"},
    {"compare.file", "snapshot.browse", "compare.withSelected", "compare.withOwn", "compare.start"},
    {"compare.save"},
    {"history.copy", "record.close", "history.goTo"},
    {"preview.print", "preview.close"},
    {"propertyPage.sideTools", "propertyPage.toolBar", "propertyPage.server", "propertyPage.databaseType"},
    {"record.previous", "record.next", "record.copy", "record.close"},
    {"snapshot.whole", "snapshot.range", "snapshot.folder", "snapshot.browse", "snapshot.bag", "snapshot.take"},
    {"snapshot.whole", "snapshot.noRange", "snapshot.folder", "snapshot.browse", "snapshot.bag", "snapshot.open",
     "snapshot.take"},
    {"snapshot.stop"},
    {"summary.by", "summary.and", "summary.copy", "summary.export", "record.close"},
};

/// The letter behind the "&" of a text; a blank where there is none.
char letterOf(const std::string& text) {
  const std::size_t mark = text.find('&');
  return mark == std::string::npos || mark + 1 == text.size()
             ? ' '
             : static_cast<char>(std::tolower(static_cast<unsigned char>(text[mark + 1])));
}

TEST(TextTable, LettersOfOurDialogsDoNotCollide) {
  std::map<std::string, TextRow> rows;
  for (const TextRow& row : ownTable().rows) rows.emplace(row.key, row);
  for (const std::vector<std::string>& dialog : dialogsWithLetters) {
    for (std::size_t language = 0; language < languageCount; ++language) {
      std::map<char, std::string> taken;
      for (const std::string& key : dialog) {
        const std::string& text = rows.at(key).texts.at(language);
        const char letter = letterOf(text);
        EXPECT_TRUE(letter >= 'a' && letter <= 'z') << key << ": " << text;
        const auto [other, isFree] = taken.emplace(letter, text);
        EXPECT_TRUE(isFree) << "'" << letter << "' of \"" << text << "\" and \"" << other->second << '"';
      }
    }
  }
}

TEST(TextTable, EveryLetterBelongsToADialogThatIsChecked) {
  std::set<std::string> checked;
  for (const auto& dialog : dialogsWithLetters) checked.insert(dialog.begin(), dialog.end());
  for (const TextRow& row : ownTable().rows) {
    const bool hasLetter =
        std::any_of(row.texts.begin(), row.texts.end(), [](const std::string& text) { return letterOf(text) != ' '; });
    EXPECT_TRUE(!hasLetter || checked.contains(row.key)) << row.key << ": name its window in dialogsWithLetters";
  }
}

TEST(TextTable, OurFrenchSetsItsSignsApartWithoutBreakingLines) {
  EXPECT_FALSE(hasLooseFrenchSign("Erreur\u00A0: nom:port\u00A0?"));
  EXPECT_TRUE(hasLooseFrenchSign("Erreur : %1"));
  EXPECT_TRUE(hasLooseFrenchSign("Erreur: %1"));
  EXPECT_TRUE(hasLooseFrenchSign("Pourquoi?"));
  EXPECT_THAT(cellsWhere([](const TextRow& row, std::size_t language) {
                return languages[language] == "fr" && hasLooseFrenchSign(row.texts[language]);
              }),
              IsEmpty());
}

// Names of settings and commands are quoted with marks that every keyboard and terminal has, so that they can be
// copied.
TEST(TextTable, OurTextsQuoteWithStraightMarks) {
  EXPECT_THAT(cellsWhere([](const TextRow& row, std::size_t language) {
                for (const std::string_view mark : {"„", "“", "”", "«", "»", "‹", "›", "‚", "‘", "’"})
                  if (row.texts[language].find(mark) != std::string::npos) return true;
                return false;
              }),
              IsEmpty());
}

}  // namespace
}  // namespace korvel::settings
