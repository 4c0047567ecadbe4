#include "settings/string_table.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace korvel::settings {
namespace {

constexpr std::array<std::string_view, languageCount> offsets = {"0", "10000", "20000", "30000", "40000"};

std::string text(int k, const std::string& offset) {
  return std::string(loadText(TextId{10000 + k}, LanguageOffset(offset)));
}

/// The English block.
constexpr std::array<std::string_view, fixedTextCount> english = {"File",
                                                                  "&Select Database",
                                                                  "Select database to view.",
                                                                  "&Print Preview",
                                                                  "Preview current results for printing.",
                                                                  "Pa&ge Setup",
                                                                  "Setup current results for printing.",
                                                                  "Prin&t",
                                                                  "Print current results.",
                                                                  "E&xit",
                                                                  "Exit viewer",
                                                                  "&Tools",
                                                                  "&Query",
                                                                  "Query database",
                                                                  "&Clear",
                                                                  "Clear current results",
                                                                  "&Select ALL Filters",
                                                                  "Select ALL Filters",
                                                                  "C&lear ALL Filters",
                                                                  "Clear ALL Filters",
                                                                  "Export Data",
                                                                  "Export current results.",
                                                                  "&Export to &Notepad",
                                                                  "Export current results to Notepad",
                                                                  "Change &Font",
                                                                  "Change viewer font",
                                                                  "&View",
                                                                  "&Tools",
                                                                  "View side tools",
                                                                  "&Entry ID",
                                                                  "View database key fields",
                                                                  "&Help",
                                                                  "&Contents",
                                                                  "Display help information",
                                                                  "&Search Help",
                                                                  "Search for help on?",
                                                                  "&About",
                                                                  "View about window",
                                                                  "Filter Criteria",
                                                                  "Date Range",
                                                                  "Clear Range",
                                                                  "No Date Range Selected",
                                                                  "Tools",
                                                                  "Select Database",
                                                                  "Database Information",
                                                                  "Run Query",
                                                                  "Clear Results",
                                                                  "Select ALL Filter Criteria",
                                                                  "Clear ALL Filter Criteria",
                                                                  "Export Data",
                                                                  "Export to Notepad",
                                                                  "Print Preview",
                                                                  "Print",
                                                                  "Records on current tab",
                                                                  "Date Range Filter",
                                                                  "From Date",
                                                                  "To Date",
                                                                  "OK",
                                                                  "(To) date must be greater than (From) date",
                                                                  "No search criteria selected",
                                                                  "No records found for filter criteria",
                                                                  "Current Print Font",
                                                                  "Name",
                                                                  "Size",
                                                                  "Note:",
                                                                  "This font is used for printing reports.",
                                                                  "Close",
                                                                  "Page Setup",
                                                                  "Nothing to Export",
                                                                  "Database Name",
                                                                  "Database Location"};

TEST(StringTable, EnglishToTheLetter) {
  for (int k = 1; k <= fixedTextCount; ++k) EXPECT_EQ(text(k, "0"), english[static_cast<std::size_t>(k) - 1]) << k;
}

TEST(StringTable, TranslationsThatOthersQuote) {
  EXPECT_EQ(text(1, "10000"), "Datei");
  EXPECT_EQ(text(1, "20000"), "Fichier");
  EXPECT_EQ(text(1, "30000"), "Archivo");
  EXPECT_EQ(text(1, "40000"), "File");
  EXPECT_EQ(text(12, "10000"), "&Extras");
  EXPECT_EQ(text(12, "20000"), "&Outils");
  EXPECT_EQ(text(12, "30000"), "&Herramientas");
  EXPECT_EQ(text(12, "40000"), "S&trumenti");
  EXPECT_EQ(text(71, "10000"), "Datenbankverzeichnis");
  EXPECT_EQ(text(71, "20000"), "Emplacement de la base de données");
  EXPECT_EQ(text(71, "30000"), "Ubicación de la base de datos");
  EXPECT_EQ(text(71, "40000"), "Posizione database");
}

TEST(StringTable, TheOffsetPicksTheBlock) {
  EXPECT_EQ(text(60, "0"), "No search criteria selected");
  EXPECT_EQ(text(60, "10000"), loadTextByIdentifier(20060));
  EXPECT_EQ(text(60, "10000"), "Keine Suchkriterien ausgewählt");
  for (int language = 0; language < languageCount; ++language) {
    const auto index = static_cast<std::size_t>(language);
    EXPECT_EQ(LanguageOffset(std::string(offsets[index])).language().index, language);
    for (int k = 1; k <= fixedTextCount; ++k)
      EXPECT_EQ(text(k, std::string(offsets[index])), loadTextByIdentifier((language + 1) * 10000 + k));
  }
}

TEST(StringTable, AnUnknownOffsetIsEnglish) {
  for (const std::string offset : {"", "1", "50000", "-10000", "10000 ", "010000", "Deutsch", "99999999999999999999"}) {
    EXPECT_EQ(LanguageOffset(offset).language().index, 0) << offset;
    EXPECT_EQ(text(60, offset), "No search criteria selected") << offset;
    EXPECT_EQ(LanguageOffset(offset).text(), offset);
  }
  EXPECT_EQ(LanguageOffset().text(), "0");
}

TEST(StringTable, OutsideTheTableThereIsNothing) {
  for (const int identifier : {0, 1, 71, 9999, 10000, 10072, 20000, 20072, 50072, 60001, -10001, 2147483647})
    EXPECT_EQ(loadTextByIdentifier(identifier), "") << identifier;
  EXPECT_EQ(text(0, "10000"), "");
  EXPECT_EQ(text(72, "10000"), "");
}

TEST(StringTable, EveryLanguageEndsItsTextsAsEnglishDoes) {
  for (int k = 1; k <= fixedTextCount; ++k)
    for (const auto offset : offsets) {
      const std::string translated = text(k, std::string(offset));
      for (const char mark : {'.', '?', ':'})
        EXPECT_EQ(english[static_cast<std::size_t>(k) - 1].ends_with(mark), translated.ends_with(mark)) << translated;
    }
}

/// Characters, not bytes.
std::size_t lengthOf(const std::string& utf8) {
  std::size_t length = 0;
  for (const char c : utf8) length += (static_cast<unsigned char>(c) & 0xC0U) != 0x80U ? 1 : 0;
  return length;
}

TEST(StringTable, TheDateButtonsTextsFitTheirButtons) {
  for (const auto offset : offsets) {
    EXPECT_LE(lengthOf(text(40, std::string(offset))), 13U) << offset;
    EXPECT_LE(lengthOf(text(41, std::string(offset))), 13U) << offset;
    EXPECT_LE(lengthOf(text(42, std::string(offset))), 30U) << offset;
  }
}

TEST(OwnTexts, LoadByKey) {
  EXPECT_EQ(ownText("list.nothingFound", LanguageOffset()), "No records found");
  EXPECT_EQ(ownText("list.nothingFound", LanguageOffset("10000")), "Keine Datensätze gefunden");
  EXPECT_EQ(ownText("list.nothingFound", LanguageOffset("nonsense")), "No records found");
  EXPECT_THROW(static_cast<void>(ownText("list.nothing", LanguageOffset())), std::out_of_range);
  EXPECT_THROW(static_cast<void>(ownText("", LanguageOffset())), std::out_of_range);
}

TEST(OwnTexts, ManyThreadsMayAskFirst) {
  std::vector<std::thread> threads;
  std::vector<std::string> answers(8);
  for (auto& answer : answers)
    threads.emplace_back([&answer] { answer = ownText("list.nothingFound", LanguageOffset("40000")); });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(answers, std::vector<std::string>(8, "Nessun record trovato"));
}

TEST(Filled, PutsValuesIntoTheirPlaces) {
  EXPECT_EQ(filled("%1: %2", "a", "b"), "a: b");
  EXPECT_EQ(filled("%2 before %1, %1", "a", "b"), "b before a, a");
  EXPECT_EQ(filled("100 % %3 %", "a", "b"), "100 % %3 %");
  EXPECT_EQ(filled("%1 and %2", "%2", "%1"), "%2 and %1");
  EXPECT_EQ(filled("", "a"), "");
  EXPECT_EQ(filled("%1%2", "a"), "a");
}

TEST(Filled, TakesAsManyValuesAsThereAre) {
  const std::vector<std::string> values = {"a", "%1", "c", "d", "e", "f", "g", "h", "i"};
  EXPECT_EQ(filled("%9%3%2 %0 %", values), "ic%1 %0 %");
  EXPECT_EQ(filled("%1 %2 %10", std::vector<std::string>{"a"}), "a %2 a0");
  EXPECT_EQ(filled("%1", std::vector<std::string>{}), "%1");
}

}  // namespace
}  // namespace korvel::settings
