#include "evidence/file_sum.h"

#include <cstdio>
#include <memory>
#include <string>

#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"

namespace korvel::evidence {

FileSum sumOfFile(const std::filesystem::path& file, const ReadProgress& progress) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(files::open(file, "rb"), &std::fclose);
  const auto failed = [&] {
    return systemError(systemErrorNumberFromErrno(std::errc::io_error), "cannot read " + utf8FromPath(file.filename()));
  };
  if (!opened) throw failed();
  Sha256 sum;
  FileSum summed;
  std::string chunk(std::size_t{1} << 18U, '\0');
  while (const std::size_t got = std::fread(chunk.data(), 1, chunk.size(), opened.get())) {
    sum.update({chunk.data(), got});
    summed.bytes += got;
    if (progress) progress(summed.bytes);
  }
  if (std::ferror(opened.get()) != 0) throw failed();
  summed.sha256 = sum.finish();
  return summed;
}

}  // namespace korvel::evidence
