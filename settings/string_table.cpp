#include "settings/string_table.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "settings/text_table.h"

namespace korvel::embedded {
extern const std::string_view fixedTexts;
extern const std::string_view ownTexts;
}  // namespace korvel::embedded

namespace korvel::settings {

namespace {

constexpr std::array<std::string_view, languageCount> offsets = {"0", "10000", "20000", "30000", "40000"};
constexpr int blockSize = 10000;

const TextTable& fixedTable() {
  static const TextTable table = parseTextTable(embedded::fixedTexts, "k");
  return table;
}

const TextTable& ownTable() {
  static const TextTable table = [] {
    TextTable sorted = parseTextTable(embedded::ownTexts, "key");
    std::stable_sort(sorted.rows.begin(), sorted.rows.end(),
                     [](const TextRow& left, const TextRow& right) { return left.key < right.key; });
    return sorted;
  }();
  return table;
}

/// Entry 1..71 of a block, or nothing outside it.
std::string_view entry(int number, Language language) {
  const auto& rows = fixedTable().rows;
  if (number < 1 || number > fixedTextCount || static_cast<std::size_t>(number) > rows.size()) return {};
  return rows[static_cast<std::size_t>(number) - 1].texts[static_cast<std::size_t>(language.index)];
}

std::string sentence(const std::string& key, const std::vector<std::string>& arguments, const LanguageOffset& offset) {
  return filled(ownText(key, offset), arguments);
}

}  // namespace

Language LanguageOffset::language() const noexcept {
  const auto found = std::find(offsets.begin(), offsets.end(), text_);
  return found == offsets.end() ? Language{} : Language{static_cast<int>(found - offsets.begin())};
}

std::string_view loadText(TextId id, const LanguageOffset& offset) {
  return entry(id.value - blockSize, offset.language());
}

std::string_view loadTextByIdentifier(int identifier) noexcept {
  const int block = identifier / blockSize - 1;
  if (block < 0 || block >= languageCount) return {};
  return entry(identifier % blockSize, Language{block});
}

std::string_view ownText(std::string_view key, const LanguageOffset& offset) {
  const auto& rows = ownTable().rows;
  const auto found = std::lower_bound(rows.begin(), rows.end(), key,
                                      [](const TextRow& row, std::string_view wanted) { return row.key < wanted; });
  if (found == rows.end() || found->key != key) throw std::out_of_range("no text has the key " + std::string(key));
  return found->texts[static_cast<std::size_t>(offset.language().index)];
}

std::string filled(std::string_view text, std::span<const std::string> values) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool place = text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
    const auto value = place ? static_cast<std::size_t>(text[i + 1] - '1') : values.size();
    if (value < values.size()) {
      result += values[value];
      ++i;
    } else {
      result.push_back(text[i]);
    }
  }
  return result;
}

std::string filled(std::string_view text, std::string_view first, std::string_view second) {
  return filled(text, std::array{std::string(first), std::string(second)});
}

Error localizedError(std::int32_t number, std::string key, std::vector<std::string> arguments) {
  Error error(number, sentence(key, arguments, LanguageOffset{}));
  error.setText(std::move(key), std::move(arguments));
  return error;
}

std::string describe(const Error& error, const LanguageOffset& offset) {
  return error.textKey().empty() ? error.description() : sentence(error.textKey(), error.textArguments(), offset);
}

}  // namespace korvel::settings
