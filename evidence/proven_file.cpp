#include "evidence/proven_file.h"

#include <chrono>
#include <string>

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

}  // namespace

ProvenFile::ProvenFile(const fs::path& target)
    : target_(withReplaceableCompanions(target)),
      output_(target),
      manifest_(manifestOf(target)),
      sums_(sumsOf(target)) {
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
  output_.commit();
  try {
    manifest_.commit();
    sums_.commit();
  } catch (const Error& error) {
    // Older ones would say that the new file was changed.
    std::error_code ignored;
    for (const fs::path& older : {manifestOf(target_), sumsOf(target_)}) files::remove(older, ignored);
    throw Error(error.number(), utf8FromPath(target_) + " was written, and has no manifest: " + error.description());
  }
}

}  // namespace korvel::evidence
