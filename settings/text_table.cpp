#include "settings/text_table.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

#include "base/text.h"

namespace korvel::settings {

namespace {

constexpr std::array<std::string_view, languageCount> languageCaptions = {"en", "de", "fr", "es", "it"};

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const auto at = text.find(separator);
    parts.push_back(text.substr(0, at));
    if (at == std::string_view::npos) return parts;
    text.remove_prefix(at + 1);
  }
}

/// The text that a cell stands for; false where the cell holds an unknown escape.
bool unescape(std::string_view cell, std::string& text) {
  bool sound = true;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell[i] != '\\') {
      text.push_back(cell[i]);
      continue;
    }
    const char escaped = i + 1 < cell.size() ? cell[i + 1] : '\0';
    switch (escaped) {
      case 'n':
        text.push_back('\n');
        break;
      case 't':
        text.push_back('\t');
        break;
      case '\\':
        text.push_back('\\');
        break;
      default:
        sound = false;
        text.push_back('\\');
        continue;
    }
    ++i;
  }
  return sound;
}

/// The places for values that a text has, in order of their numbers, so that translations may arrange them freely.
std::multiset<char> placesOf(std::string_view text) {
  std::multiset<char> places;
  for (auto at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1))
    if (at + 1 < text.size() && text[at + 1] >= '1' && text[at + 1] <= '9') places.insert(text[at + 1]);
  return places;
}

class Reader {
 public:
  Reader(std::string_view bytes, std::string_view keyCaption) : keyCaption_(keyCaption) {
    if (!isValidUtf8(bytes)) complain("is not UTF-8");
    if (bytes.find('\r') != std::string_view::npos) complain("holds carriage returns");
    auto lines = split(bytes, '\n');
    if (lines.back().empty())
      lines.pop_back();
    else
      complain("does not end with a line break");
    if (lines.empty())
      complain("has no header");
    else
      readHeader(lines.front());
    for (number_ = 2; number_ <= lines.size(); ++number_) readRow(lines[number_ - 1]);
  }

  [[nodiscard]] TextTable take() { return std::move(table_); }

 private:
  void complain(const std::string& problem) {
    table_.problems.push_back("line " + std::to_string(number_) + " " + problem);
  }

  void readHeader(std::string_view line) {
    std::vector<std::string_view> expected{keyCaption_};
    expected.insert(expected.end(), languageCaptions.begin(), languageCaptions.end());
    if (split(line, '\t') != expected) complain("is not the expected header");
  }

  void readRow(std::string_view line) {
    const auto cells = split(line, '\t');
    if (cells.size() != languageCount + 1) complain("has " + std::to_string(cells.size()) + " columns");
    TextRow row;
    row.key = cells.front();
    if (row.key.empty()) complain("has no key");
    if (!keys_.insert(row.key).second) complain("repeats key " + row.key);
    for (std::size_t language = 0; language < languageCount; ++language) {
      const std::string_view cell = language + 1 < cells.size() ? cells[language + 1] : std::string_view{};
      readText(cell, language, row);
    }
    table_.rows.push_back(std::move(row));
  }

  void readText(std::string_view cell, std::size_t language, TextRow& row) {
    const std::string where = " in column " + std::string(languageCaptions[language]);
    std::string& text = row.texts[language];
    if (!unescape(cell, text)) complain("has an unknown escape" + where);
    if (text.empty()) {
      complain("has no text" + where);
      text = row.texts.front();
    }
    if (trimBlanks(text).size() != text.size()) complain("has a blank at an end" + where);
    if (placesOf(text) != placesOf(row.texts.front())) complain("has other places than English" + where);
  }

  std::string_view keyCaption_;
  std::size_t number_ = 1;
  std::set<std::string> keys_;
  TextTable table_;
};

}  // namespace

TextTable parseTextTable(std::string_view bytes, std::string_view keyCaption) {
  return Reader(bytes, keyCaption).take();
}

}  // namespace korvel::settings
