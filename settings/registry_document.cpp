#include "settings/registry_document.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/text.h"
#include "base/utf16.h"

namespace korvel::settings {

namespace {

constexpr std::string_view header = "Windows Registry Editor Version 5.00";
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view utf16Mark = "\xFF\xFE";

/// A key for comparing names as a registry does. Case folding alone would also make "ß"
/// and "ss" equal, which a registry, comparing character by character, keeps apart: so the count of characters joins
/// it.
std::string comparable(std::string_view name) {
  const auto characters =
      std::count_if(name.begin(), name.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; });
  return caseFolded(name) + '\0' + std::to_string(characters);
}

/// The line at `at` without its end; `at` moves to the next line.
std::string_view takeLine(std::string_view text, std::size_t& at) {
  const std::size_t end = std::min(text.find('\n', at), text.size());
  std::string_view line = text.substr(at, end - at);
  at = std::min(end + 1, text.size());
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
  return line;
}

std::size_t skipBlanks(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of(" \t", at), text.size());
}

}  // namespace

RegistryDocument::RegistryDocument() : text_(std::string(header) + "\n") {}

std::optional<RegistryDocument> RegistryDocument::parse(std::string bytes) {
  RegistryDocument document;
  if (bytes.starts_with(utf16Mark)) {
    if (bytes.size() % 2 != 0) return std::nullopt;
    bytes = utf8FromUtf16Bytes(std::string_view(bytes).substr(utf16Mark.size()));
  }
  document.text_ = std::move(bytes);
  if (!isValidUtf8(document.text_) || !document.read()) return std::nullopt;
  return document;
}

bool RegistryDocument::read() {
  keys_.clear();
  entries_.clear();
  std::size_t at = text_.starts_with(utf8Mark) ? utf8Mark.size() : 0;
  if (takeLine(text_, at) != header) return false;
  while (at < text_.size()) {
    const std::size_t start = skipBlanks(text_, at);
    std::size_t next = start;
    const std::string_view line = takeLine(text_, next);
    if (line.empty() || line.front() == ';') {
      at = next;
    } else if (line.front() == '[') {
      if (!readKey(line, next)) return false;
      at = next;
    } else {
      at = start;
      if (!readValue(at)) return false;
    }
  }
  return true;
}

bool RegistryDocument::readKey(std::string_view line, std::size_t end) {
  // "[-path]" is an order to delete, which a store of settings has no use for.
  if (line.size() < 3 || line.back() != ']' || line[1] == '-') return false;
  const std::string path = comparable(line.substr(1, line.size() - 2));
  keys_.push_back({path, end});
  return true;
}

bool RegistryDocument::readValue(std::size_t& at) {
  if (keys_.empty()) return false;
  std::string_view rest = std::string_view(text_).substr(at);
  std::string name;  // "@" is the section's value without a name
  if (rest.front() == '@') {
    rest.remove_prefix(1);
  } else {
    if (rest.front() != '"') return false;
    auto quotedName = takeQuoted(rest);
    if (!quotedName) return false;
    name = *std::move(quotedName);
  }
  std::size_t next = skipBlanks(text_, text_.size() - rest.size());
  if (next == text_.size() || text_[next] != '=') return false;
  const std::size_t dataBegin = skipBlanks(text_, next + 1);
  rest = std::string_view(text_).substr(dataBegin);
  auto value = takeValueData(rest);
  if (!value) return false;
  const std::size_t dataEnd = text_.size() - rest.size();

  at = skipBlanks(text_, dataEnd);
  const std::string_view tail = takeLine(text_, at);
  if (!tail.empty() && tail.front() != ';') return false;
  entries_.push_back({keys_.size() - 1, comparable(name), *std::move(value), dataBegin, dataEnd});
  keys_.back().end = at;
  return true;
}

bool RegistryDocument::hasKey(std::string_view path) const {
  const std::string wanted = comparable(path);
  const std::string below = caseFolded(path) + '\\';
  return std::any_of(keys_.begin(), keys_.end(), [&](const Key& key) {
    return key.comparablePath == wanted || key.comparablePath.starts_with(below);
  });
}

const RegistryDocument::Key* RegistryDocument::findKey(std::string_view path) const {
  const std::string wanted = comparable(path);
  const auto found =
      std::find_if(keys_.rbegin(), keys_.rend(), [&](const Key& key) { return key.comparablePath == wanted; });
  return found == keys_.rend() ? nullptr : &*found;
}

const RegistryDocument::Entry* RegistryDocument::findEntry(std::string_view path, std::string_view name) const {
  const std::string wantedPath = comparable(path);
  const std::string wantedName = comparable(name);
  const auto found = std::find_if(entries_.rbegin(), entries_.rend(), [&](const Entry& entry) {
    return entry.comparableName == wantedName && keys_[entry.key].comparablePath == wantedPath;
  });
  return found == entries_.rend() ? nullptr : &*found;
}

const RegistryValue* RegistryDocument::find(std::string_view path, std::string_view name) const {
  const Entry* entry = findEntry(path, name);
  return entry == nullptr ? nullptr : &entry->value;
}

std::string_view RegistryDocument::lineEnd() const {
  const auto first = text_.find('\n');
  return first != std::string::npos && first > 0 && text_[first - 1] == '\r' ? "\r\n" : "\n";
}

void RegistryDocument::replace(std::size_t begin, std::size_t end, std::string_view replacement) {
  text_.replace(begin, end - begin, replacement);
  // The places of everything behind have moved. Settings are few: reading anew is simpler than adjusting. What the
  // document writes it can read.
  static_cast<void>(read());
}

void RegistryDocument::addKey(std::string_view path) {
  if (findKey(path) != nullptr) return;
  std::string lines;
  if (!text_.ends_with('\n')) lines += lineEnd();
  lines += lineEnd();
  lines += '[';
  lines += path;
  lines += ']';
  lines += lineEnd();
  replace(text_.size(), text_.size(), lines);
}

void RegistryDocument::setString(std::string_view path, std::string_view name, std::string_view value) {
  const std::string data = stringData(value, lineEnd());
  if (const Entry* entry = findEntry(path, name)) {
    replace(entry->dataBegin, entry->dataEnd, data);
    return;
  }
  addKey(path);
  const std::size_t at = findKey(path)->end;
  std::string line;
  if (text_[at - 1] != '\n') line += lineEnd();
  line += quoted(name);
  line += '=';
  line += data;
  line += lineEnd();
  replace(at, at, line);
}

}  // namespace korvel::settings
