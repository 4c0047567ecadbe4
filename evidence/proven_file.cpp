#include "evidence/proven_file.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "evidence/origin.h"

namespace korvel::evidence {

namespace fs = std::filesystem;

namespace {

fs::path beside(const fs::path& output, std::string_view ending) {
  fs::path path = output;
  path += ending;
  return path;
}

}  // namespace

fs::path manifestOf(const fs::path& output) {
  return beside(output, manifestEnding);
}

fs::path sumsOf(const fs::path& output) {
  return beside(output, sumsEnding);
}

namespace {

/// Fails where the manifest or the sums could not be put in place in the end.
fs::path withReplaceableCompanions(const fs::path& target) {
  for (const fs::path& file : {manifestOf(target), sumsOf(target)}) {
    std::error_code failure;
    files::checkReplaceable(file, failure);
    if (failure) throw systemError(systemErrorNumber(failure), "cannot write " + utf8FromPath(file));
  }
  return target;
}

/// What stood in the place of a file that is replaced. Comes back when the object goes, unless it is obsolete by then.
class EarlierFile {
 public:
  EarlierFile(fs::path place, SymlinkPolicy symlinks) : place_(std::move(place)), symlinks_(symlinks) {
    std::error_code ignored;
    if (!fs::is_regular_file(files::symlinkStatus(place_, ignored))) return;
    try {
      bytes_ = readFile(place_);
    } catch (const Error&) {  // NOLINT(bugprone-empty-catch): what nobody may read cannot come back
    }
  }
  ~EarlierFile() {
    if (!comesBack_) return;
    try {
      // Memory may have run out too.
      if (bytes_ && putBack()) return;
    } catch (...) {  // NOLINT(bugprone-empty-catch): the new file goes
    }
    std::error_code ignored;
    files::remove(place_, ignored);
  }
  EarlierFile(const EarlierFile&) = delete;
  EarlierFile& operator=(const EarlierFile&) = delete;

  void isReplaced() noexcept { comesBack_ = true; }
  void isObsolete() noexcept { comesBack_ = false; }

 private:
  bool putBack() const {
    AtomicFile file(place_, symlinks_);
    file.write(*bytes_);
    file.commit();
    return true;
  }

  fs::path place_;
  SymlinkPolicy symlinks_;
  std::optional<std::string> bytes_;
  bool comesBack_ = false;
};

}  // namespace

ProvenFile::ProvenFile(const fs::path& target, SymlinkPolicy symlinks)
    : target_(withReplaceableCompanions(target)),
      symlinks_(symlinks),
      output_(target, symlinks),
      manifest_(manifestOf(target), symlinks),
      sums_(sumsOf(target), symlinks) {
  // JSON could not name it.
  if (!isValidUtf8(utf8FromPath(target.filename())))
    throw Error(unspecifiedFailure, "a file with a manifest needs a name in UTF-8");
}

void ProvenFile::write(std::string_view bytes) {
  sum_.update(bytes);
  bytes_ += bytes.size();
  output_.write(bytes);
}

void ProvenFile::commit(Manifest manifest) {
  manifest.output.name = utf8FromPath(target_.filename());
  manifest.output.bytes = bytes_;
  manifest.output.sha256 = sum_.finish();
  manifest.written = localTimeText(std::chrono::system_clock::now());
  const std::string text = manifestText(manifest);
  manifest_.write(text);
  sums_.write(sumsText({{manifest.output.sha256, manifest.output.name},
                        {Sha256::of(text), utf8FromPath(manifestOf(target_).filename())}}));
  output_.sync();
  manifest_.sync();
  sums_.sync();
  EarlierFile sums(sumsOf(target_), symlinks_);
  EarlierFile described(manifestOf(target_), symlinks_);
  sums_.commit();
  sums.isReplaced();
  manifest_.commit();
  described.isReplaced();
  output_.commit();
  described.isObsolete();
  sums.isObsolete();
}

}  // namespace korvel::evidence
