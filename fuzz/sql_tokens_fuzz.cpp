// For any text in the query editor, tokens are in order and inside their line, and every character has the same kind
// whether the text is scanned line by line or at once.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "query/sql_tokens.h"

namespace {

using korvel::query::SqlLineState;
using korvel::query::SqlToken;

constexpr int blank = -1;

/// The kind of every code unit of `text`, appended to `kinds`.
void appendKinds(std::u16string_view text, SqlLineState& state, std::vector<int>& kinds) {
  std::size_t end = 0;
  const std::size_t first = kinds.size();
  kinds.resize(first + text.size(), blank);
  for (const SqlToken& token : korvel::query::sqlTokens(text, state)) {
    if (token.length == 0 || token.begin < end || token.length > text.size() - token.begin) std::abort();
    end = token.begin + token.length;
    for (std::size_t i = token.begin; i < end; ++i) kinds[first + i] = static_cast<int>(token.kind);
  }
  if (korvel::query::toLineState(korvel::query::toNumber(state)) != state) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::u16string text;
  // One byte a code unit, so that the fuzzer finds quotes; the highest ones represent non-ASCII characters.
  for (std::size_t i = 0; i < size; ++i) text += static_cast<char16_t>(data[i] < 0xF0 ? data[i] : data[i] * 0x101);

  SqlLineState whole;
  std::vector<int> inOnePiece;
  appendKinds(text, whole, inOnePiece);

  SqlLineState state;
  std::vector<int> byLine;
  std::size_t begin = 0;
  while (true) {
    const std::size_t end = text.find(u'\n', begin);
    appendKinds(std::u16string_view(text).substr(begin, end - begin), state, byLine);
    if (end == std::u16string::npos) break;
    // A line feed belongs to the token that continues across it.
    byLine.push_back(inOnePiece[end]);
    if (inOnePiece[end] != blank && state.open == SqlLineState::Open::nothing) std::abort();
    begin = end + 1;
  }
  if (byLine != inOnePiece || state != whole) std::abort();
  return 0;
}
