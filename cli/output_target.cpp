#include "cli/output_target.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <ostream>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/platform.h"
#include "evidence/proven_file.h"

namespace korvel::cli {

namespace fs = std::filesystem;

namespace {

using Writer = std::function<void(const output::ByteSink&)>;

Error cannotWrite(const std::string& what) {
  return systemError(systemErrorNumberFromErrno(std::errc::io_error), "cannot write " + what);
}

void writeToStream(std::ostream& out, const std::string& what, const Writer& write) {
  write([&out, &what](std::string_view bytes) {
    errno = 0;  // left by earlier calls
    if (!out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()))) throw cannotWrite(what);
  });
  errno = 0;
  if (!out.flush()) throw cannotWrite(what);
}

void writeThrough(const std::string& target, const Writer& write) {
  errno = 0;
  std::ofstream out(extendedLengthPath(pathFromUtf8(target)), std::ios::binary);
  if (!out) throw cannotWrite(target);
  writeToStream(out, target, write);
}

}  // namespace

bool isTerminal(const std::string& target, const std::ostream& out) {
  if (target == "-") return &out == &std::cout && standardOutputIsTerminal();
  std::error_code ignored;
  const fs::path device = pathFromUtf8(target);
  return fs::is_character_file(files::status(device, ignored)) && deviceIsTerminal(device);
}

int stopped(std::ostream& err) {
  say(err, "stopped");
  return exitStopped;
}

output::ByteSink untilInterrupted(const output::ByteSink& target) {
  return [&target](std::string_view bytes) {
    if (Interruption::requested()) throw Stopped{};
    target(bytes);
  };
}

void writeTo(const std::string& target, std::ostream& out, const Writer& write, const ManifestMaker& manifest) {
  if (target == "-") return writeToStream(out, "standard output", write);
  // Would fail only after everything was written.
  if (target.empty())
    throw systemError(systemErrorNumber(std::errc::no_such_file_or_directory), "cannot write a file without a name");
  std::error_code ignored;
  const fs::file_status status = files::status(pathFromUtf8(target), ignored);
  if (fs::is_directory(status))
    throw systemError(systemErrorNumber(std::errc::is_a_directory), "cannot write " + target);
  // Renaming a file over a device would remove the device.
  if (fs::exists(status) && !fs::is_regular_file(status)) return writeThrough(target, write);
  if (manifest) {
    evidence::ProvenFile file(pathFromUtf8(target));
    write([&file](std::string_view bytes) { file.write(bytes); });
    return file.commit(manifest());
  }
  AtomicFile file(pathFromUtf8(target));
  write([&file](std::string_view bytes) { file.write(bytes); });
  file.commit();
}

}  // namespace korvel::cli
