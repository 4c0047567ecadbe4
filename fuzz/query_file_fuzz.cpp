// The text of a query file with any bytes has complete lines, loses nothing, and is read back from its own file with
// one more line end. Any typed name is refused or names a file of the folder.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "query/query_file.h"
#include "settings/code_page.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

std::string without(std::string text, std::string_view characters) {
  std::erase_if(text, [&](char c) { return characters.find(c) != std::string_view::npos; });
  return text;
}

void checkText(std::string_view bytes) {
  using namespace korvel::query;
  const std::string text = textOfQueryFile(bytes);
  require(text.empty() == bytes.empty());
  require(text.empty() || text.ends_with("\r\n"));
  for (std::size_t at = text.find('\r'); at != std::string::npos; at = text.find('\r', at + 1))
    require(text.at(at + 1) == '\n');
  require(fitsQueryFile(text));
  require(without(korvel::settings::toCodePage(text), "\r\n") == without(std::string(bytes), "\r\n"));
  require(textOfQueryFile(queryFileBytes(text)) == text + "\r\n");
}

void checkName(std::string_view name, std::string_view pattern) {
  using namespace korvel::query;
  if (const auto problem = fileNameProblem(name))
    require(!problem->description().empty() && !problem->textKey().empty());
  else
    require(name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos && name != "." && name != "..");
  require(matchesFilePattern(name, filePattern("")));
  require(matchesFilePattern(name, "*"));
  require(matchesFilePattern(std::string(name) + ".vqf", filePattern("vqf")));
  static_cast<void>(matchesFilePattern(name, pattern));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  checkText(bytes);
  // The first line is a pattern, the rest a name.
  const std::size_t lineEnd = std::min(bytes.find('\n'), bytes.size());
  checkName(bytes.substr(std::min(lineEnd + 1, bytes.size())), bytes.substr(0, lineEnd));
  return 0;
}
