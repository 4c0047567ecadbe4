// Runs a fuzz target once over every file of a folder, without the fuzzer, so that any compiler can repeat
// earlier findings.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// Every file of `folder`, by name, so that two runs are equal. Throws errors of the file system.
std::vector<std::filesystem::path> filesOf(const char* folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

int replay(const char* folder) {
  const auto files = filesOf(folder);
  for (const auto& file : files) {
    // Printed before the run: the target aborts the process when it finds something.
    std::printf("%s\n", file.filename().c_str());
    std::fflush(stdout);
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) {
      std::fprintf(stderr, "%s cannot be read\n", file.c_str());
      return 1;
    }
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  if (files.empty()) std::fprintf(stderr, "%s holds no file\n", folder);
  return files.empty() ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  try {
    return replay(argv[1]);
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "%s\n", exception.what());
    return 1;
  }
}
