#include "output/pages/cell_text.h"

#include <algorithm>
#include <string>

#include "output/terminal_text.h"

namespace korvel::output::pages {

namespace {

constexpr std::string_view windowsLineBreak = "\u21B5";

bool isPlain(std::string_view value) noexcept {
  return std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

}  // namespace

QString shownOnPaper(std::string_view value) {
  if (isPlain(value)) return QString::fromLatin1(value.data(), static_cast<qsizetype>(value.size()));
  QString shown;
  std::string visible;
  while (!value.empty()) {
    const std::size_t text = std::min(value.find_first_of("\r\n"), value.size());
    const bool pair = value.substr(text).starts_with("\r\n");
    const std::size_t whole = std::min(text + (pair ? 2U : 1U), value.size());
    visible.clear();
    appendTerminalText(value.substr(0, pair ? text : whole), visible);
    if (pair) visible += windowsLineBreak;
    shown += QString::fromUtf8(visible.data(), static_cast<qsizetype>(visible.size()));
    value.remove_prefix(whole);
    if (!value.empty()) shown += forcedBreak;
  }
  return shown;
}

}  // namespace korvel::output::pages
