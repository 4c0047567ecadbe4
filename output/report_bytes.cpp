#include "output/report_bytes.h"

#include <cerrno>
#include <cstdio>

#include "base/files.h"
#include "base/system_errors.h"

namespace korvel::output {

namespace {

[[noreturn]] void fail() {
  throw asFileError(systemError(systemErrorNumberFromErrno(std::errc::io_error), "cannot read the report"),
                    FileAccess::read);
}

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};

class FileBytes : public ReportBytes {
 public:
  explicit FileBytes(const std::filesystem::path& file) : file_(files::open(file, "rb")) {
    if (!file_) fail();
  }
  void rewind() override {
    if (std::fseek(file_.get(), 0, SEEK_SET) != 0) fail();
  }
  std::size_t read(std::span<char> to) override {
    const std::size_t got = std::fread(to.data(), 1, to.size(), file_.get());
    if (got < to.size() && std::ferror(file_.get()) != 0) fail();
    return got;
  }

 private:
  std::unique_ptr<std::FILE, CloseFile> file_;
};

}  // namespace

std::unique_ptr<ReportBytes> reportFile(const std::filesystem::path& file) {
  return std::make_unique<FileBytes>(file);
}

}  // namespace korvel::output
