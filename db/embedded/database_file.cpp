#include "db/database_file.h"
#include "base/files.h"
#include "base/paths.h"

#include <array>
#include <fstream>
#include <string_view>

namespace korvel::db {

namespace fs = std::filesystem;

bool isDatabaseFile(const fs::path& file) {
  constexpr std::string_view signature{"SQLite format 3\0", 16};
  std::error_code ignored;
  if (!fs::is_regular_file(files::status(file, ignored))) return false;
  std::array<char, signature.size()> start{};
  std::ifstream in(extendedLengthPath(file), std::ios::binary);
  in.read(start.data(), static_cast<std::streamsize>(start.size()));
  return in && std::string_view(start.data(), start.size()) == signature;
}

}  // namespace korvel::db
