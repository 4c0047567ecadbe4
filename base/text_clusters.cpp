#include "base/text_clusters.h"

#include <utf8proc.h>

#include <algorithm>
#include <optional>

#include "base/text.h"

namespace korvel {

namespace {

constexpr std::size_t longestCodePoint = 4;
constexpr int farthest = 500;

/// A code point; nothing for a malformed byte.
using CodePoint = std::optional<char32_t>;

bool isContinuation(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

/// The most frequent case, without looking anything up.
bool areAsciiApart(CodePoint before, CodePoint after) noexcept {
  return before && after && *before < 0x80 && *after < 0x80 && !(*before == U'\r' && *after == U'\n');
}

utf8proc_int32_t known(CodePoint codePoint) noexcept {
  return static_cast<utf8proc_int32_t>(*codePoint);
}

/// Whether a cluster ends between these two, whatever precedes them.
bool isCertainBound(CodePoint before, CodePoint after) noexcept {
  if (!before || !after || areAsciiApart(before, after)) return true;
  // Behind these, earlier code points may decide.
  const auto kind = utf8proc_get_property(known(before))->boundclass;
  if (kind == UTF8PROC_BOUNDCLASS_EXTEND || kind == UTF8PROC_BOUNDCLASS_ZWJ) return false;
  return utf8proc_grapheme_break(known(before), known(after));
}

/// The length of the code point, or malformed byte, that `text` ends with.
std::size_t lastLength(std::string_view text) noexcept {
  const std::size_t most = std::min(longestCodePoint, text.size());
  for (std::size_t length = 1; length <= most; ++length) {
    if (isContinuation(text[text.size() - length])) continue;
    std::string_view rest = text.substr(text.size() - length);
    return takeCodePoint(rest) && rest.empty() ? length : 1;
  }
  return 1;
}

/// `beginning` without a code point at its end of which the last bytes may follow.
std::string_view withoutIncomplete(std::string_view beginning) noexcept {
  const std::size_t most = std::min(longestCodePoint - 1, beginning.size());
  for (std::size_t length = 1; length <= most; ++length) {
    const std::size_t at = beginning.size() - length;
    if (isContinuation(beginning[at])) continue;
    const auto lead = static_cast<unsigned char>(beginning[at]);
    const std::size_t wanted = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    return wanted > length ? beginning.substr(0, at) : beginning;
  }
  return beginning;
}

}  // namespace

std::vector<std::uint32_t> clusterBounds(std::string_view text) {
  std::vector<std::uint32_t> bounds{0};
  utf8proc_int32_t state = 0;
  CodePoint before;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t at = text.size() - rest.size();
    const CodePoint codePoint = takeCodePoint(rest);
    bool isBound = true;
    if (!before || !codePoint || areAsciiApart(before, codePoint)) {
      state = 0;  // nothing before `codePoint` counts for what follows
    } else {
      isBound = utf8proc_grapheme_break_stateful(known(before), known(codePoint), &state);
    }
    if (isBound && at > 0) bounds.push_back(static_cast<std::uint32_t>(at));
    before = codePoint;
  }
  if (!text.empty()) bounds.push_back(static_cast<std::uint32_t>(text.size()));
  return bounds;
}

std::size_t lastCertainBound(std::string_view beginning) noexcept {
  std::string_view text = withoutIncomplete(beginning);
  for (int i = 0; i < farthest && !text.empty(); ++i) {
    const std::size_t length = lastLength(text);
    std::string_view last = text.substr(text.size() - length);
    text.remove_suffix(length);
    if (text.empty()) return 0;
    std::string_view before = text.substr(text.size() - lastLength(text));
    if (isCertainBound(takeCodePoint(before), takeCodePoint(last))) break;
  }
  return text.size();
}

std::size_t firstCertainBound(std::string_view end) noexcept {
  std::string_view rest = end;
  // They may belong to a code point that begins before.
  for (std::size_t i = 1; i < longestCodePoint && !rest.empty() && isContinuation(rest.front()); ++i)
    rest.remove_prefix(1);
  if (rest.empty()) return end.size();
  CodePoint before = takeCodePoint(rest);
  for (int i = 0; i < farthest && !rest.empty(); ++i) {
    std::string_view behind = rest;
    const CodePoint next = takeCodePoint(behind);
    if (isCertainBound(before, next)) break;
    before = next;
    rest = behind;
  }
  return end.size() - rest.size();
}

}  // namespace korvel
