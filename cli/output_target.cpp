#include "cli/output_target.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iostream>
#include <ostream>

#include "base/error.h"
#include "base/whole_file.h"

namespace korvel::cli {

namespace fs = std::filesystem;

namespace {

using Writer = std::function<void(const output::ByteSink&)>;

Error cannotWrite(const std::string& what) {
  return systemError(errno != 0 ? errno : EIO, "cannot write " + what);
}

void writeToStream(std::ostream& out, const std::string& what, const Writer& write) {
  write([&out, &what](std::string_view bytes) {
    errno = 0;  // what came before, a query for one, is not why writing fails
    if (!out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) throw cannotWrite(what);
  });
  errno = 0;
  if (!out.flush()) throw cannotWrite(what);
}

void writeThrough(const std::string& target, const Writer& write) {
  errno = 0;
  std::ofstream out(target, std::ios::binary);
  if (!out) throw cannotWrite(target);
  writeToStream(out, target, write);
}

}  // namespace

bool isTerminal(const std::string& target, const std::ostream& out) {
  if (target == "-") return &out == &std::cout && ::isatty(STDOUT_FILENO) == 1;
  std::error_code ignored;
  if (!fs::is_character_file(target, ignored)) return false;
  const int descriptor = ::open(target.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool terminal = ::isatty(descriptor) == 1;
  ::close(descriptor);
  return terminal;
}

void writeTo(const std::string& target, std::ostream& out, const Writer& write) {
  if (target == "-") return writeToStream(out, "standard output", write);
  // Would only be noticed when all is written.
  if (target.empty()) throw systemError(ENOENT, "cannot write a file without a name");
  std::error_code ignored;
  const fs::file_status status = fs::status(target, ignored);
  if (fs::is_directory(status)) throw systemError(EISDIR, "cannot write " + target);
  // Renaming a file over a device would take the device away.
  if (fs::exists(status) && !fs::is_regular_file(status)) return writeThrough(target, write);
  WholeFile file(target);
  write([&file](std::string_view bytes) { file.write(bytes); });
  file.commit();
}

}  // namespace korvel::cli
