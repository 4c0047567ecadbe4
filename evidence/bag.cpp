#include "evidence/bag.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "evidence/file_sum.h"
#include "evidence/manifest.h"
#include "evidence/origin.h"

namespace korvel::evidence {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view declaration = "BagIt-Version: 1.0\nTag-File-Character-Encoding: UTF-8\n";
constexpr std::size_t dayLength = 10;

/// A path in a manifest: line ends and the percent sign are escaped.
std::string bagPath(const std::string& path) {
  return replaceAll(replaceAll(replaceAll(path, "%", "%25"), "\n", "%0A"), "\r", "%0D");
}

std::string payloadName(const fs::path& file) {
  return bagPath(std::string(payloadFolder) + "/" + utf8FromPath(file.filename()));
}

std::string oneLine(std::string_view text) {
  return replaceAll(replaceAll(std::string(text), "\r", " "), "\n", " ");
}

}  // namespace

void writeBag(const fs::path& folder, std::string_view description) {
  std::error_code failure;
  const fs::path payload = folder / payloadFolder;
  std::vector<fs::path> payloadFiles = files::listFolder(payload, failure);
  if (failure) throw systemError(systemErrorNumber(failure), "cannot read " + utf8FromPath(payload));
  std::sort(payloadFiles.begin(), payloadFiles.end());
  std::string sums;
  std::uint64_t bytes = 0;
  for (const fs::path& file : payloadFiles) {
    const FileSum sum = sumOfFile(file);
    bytes += sum.bytes;
    sums += hexText(sum.sha256) + "  " + payloadName(file) + '\n';
  }
  const std::string today = localTimeText(std::chrono::system_clock::now()).substr(0, dayLength);
  const std::string info = "Bagging-Date: " + today + "\nExternal-Description: " + oneLine(description) +
                           "\nPayload-Oxum: " + std::to_string(bytes) + "." + std::to_string(payloadFiles.size()) +
                           "\n";
  const std::array<std::pair<std::string_view, std::string_view>, 3> tagFiles = {
      {{"bag-info.txt", info}, {"bagit.txt", declaration}, {"manifest-sha256.txt", sums}}};
  std::string tagSums;
  for (const auto& [name, text] : tagFiles) tagSums += hexText(Sha256::of(text)) + "  " + std::string(name) + '\n';
  writeFileAtomically(folder / "manifest-sha256.txt", sums);
  writeFileAtomically(folder / "bag-info.txt", info);
  writeFileAtomically(folder / "tagmanifest-sha256.txt", tagSums);
  writeFileAtomically(folder / "bagit.txt", declaration);
}

bool isBagWith(const fs::path& folder, const fs::path& payloadFile) {
  try {
    if (readFile(folder / "bagit.txt") != declaration) return false;
    const auto tags = readSums(readFile(folder / "tagmanifest-sha256.txt"));
    const auto payload = readSums(readFile(folder / "manifest-sha256.txt"));
    if (!tags || !payload) return false;
    const auto isWhole = [&](const NamedSum& tag) {
      return sumOfFile(folder / pathFromUtf8(tag.name)).sha256 == tag.sha256;
    };
    return std::all_of(tags->begin(), tags->end(), isWhole) &&
           std::any_of(payload->begin(), payload->end(),
                       [&](const NamedSum& sum) { return sum.name == payloadName(payloadFile); });
  } catch (const Error&) {
    return false;
  }
}

}  // namespace korvel::evidence
