#include "base/whole_file.h"

#include <cstddef>

namespace korvel {

namespace {

constexpr std::size_t bufferBytes = std::size_t{1} << 18U;

}  // namespace

void WholeFile::write(std::string_view bytes) {
  buffer_ += bytes;
  if (buffer_.size() >= bufferBytes) flush();
}

void writeWholeFile(const std::filesystem::path& target, std::string_view bytes) {
  WholeFile file(target);
  file.write(bytes);
  file.commit();
}

}  // namespace korvel
