// ntsecapi.h needs the types of windows.h.
#include <windows.h>
// Behind it.
#include <ntsecapi.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/system_handle_windows.h"
#include "base/whole_file.h"

namespace korvel {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t chunkBytes = std::size_t{1} << 18U;

Error failed(const std::string& what, const fs::path& file, DWORD number = GetLastError()) {
  return systemError(static_cast<int>(number), what + " " + utf8FromPath(file));
}

HANDLE handleOf(std::intptr_t file) noexcept {
  return reinterpret_cast<HANDLE>(file);  // NOLINT(performance-no-int-to-ptr): the system's own way of numbering
}

/// Where a link leads; `target` itself where it is none, or leads nowhere.
fs::path followedLinks(const fs::path& target) {
  std::error_code ignored;
  if (files::linkStatus(target, ignored).type() != fs::file_type::symlink) return target;
  constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const SystemHandle file(CreateFileW(pathForCalls(target).c_str(), FILE_READ_ATTRIBUTES, shared, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!file.isOpen()) return target;
  std::wstring name(GetFinalPathNameByHandleW(file.get(), nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
  const DWORD length =
      GetFinalPathNameByHandleW(file.get(), name.data(), static_cast<DWORD>(name.size()), FILE_NAME_NORMALIZED);
  if (length == 0 || length >= name.size()) return target;
  name.resize(length);
  return {name};
}

/// Six characters that no other writer is likely to choose. Whether a file of that name is new, the system decides.
std::wstring randomSuffix() {
  constexpr std::wstring_view characters = L"abcdefghijklmnopqrstuvwxyz0123456789";
  std::uint64_t number = 0;
  if (RtlGenRandom(&number, sizeof number) == 0) return {};
  std::wstring suffix = L".";
  for (int i = 0; i < 6; ++i, number /= characters.size()) suffix += characters[number % characters.size()];
  return suffix;
}

/// Creates a new file beside `target`, which no other program opens meanwhile, and puts its name into `created`.
SystemHandle createBeside(const fs::path& target, fs::path& created) {
  // One collision would be a wonder; so many are a folder that somebody fills on purpose.
  for (int attempts = 0; attempts < 100; ++attempts) {
    const std::wstring suffix = randomSuffix();
    if (suffix.empty()) break;
    fs::path name = target;
    name += suffix;
    SystemHandle file(
        CreateFileW(pathForCalls(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.isOpen()) created = std::move(name);
    if (file.isOpen() || GetLastError() != ERROR_FILE_EXISTS) return file;
  }
  return SystemHandle();
}

/// Whether the person may write what stands in the target's place, as far as it is a plain file: a file that is marked
/// as not to be written, or that another program keeps to itself, is not replaced either. A number of the system, or 0.
DWORD whyNotWritable(const fs::path& target) {
  constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const SystemHandle file(CreateFileW(pathForCalls(target).c_str(), GENERIC_WRITE, shared, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  BY_HANDLE_FILE_INFORMATION about{};
  if (file.isOpen() && GetFileInformationByHandle(file.get(), &about) != 0)
    return (about.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
  const DWORD number = GetLastError();
  return number == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : number;
}

/// Puts `written` in the place of `target`, which keeps its rights where it is there.
bool putInPlace(const fs::path& written, const fs::path& target) {
  const fs::path from = pathForCalls(written);
  const fs::path to = pathForCalls(target);
  std::error_code ignored;
  if (files::linkStatus(target, ignored).type() == fs::file_type::regular &&
      ReplaceFileW(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) != 0)
    return true;
  // Some disks of others know no such replacing; what hinders replacing at all hinders this too, and says why.
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

}  // namespace

WholeFile::WholeFile(fs::path target, AtLink atLink)
    : target_(atLink == AtLink::writeThrough ? followedLinks(target) : std::move(target)) {
  if (const DWORD number = whyNotWritable(target_); number != ERROR_SUCCESS)
    throw failed("cannot write", target_, number);
  SystemHandle file = createBeside(target_, temporary_);
  if (!file.isOpen()) throw failed("cannot create a file beside", target_);
  file_ = reinterpret_cast<std::intptr_t>(file.release());
}

WholeFile::~WholeFile() {
  SystemHandle(handleOf(file_)) = SystemHandle();
  if (!temporary_.empty()) DeleteFileW(pathForCalls(temporary_).c_str());
}

void WholeFile::flush() {
  std::string_view rest = buffer_;
  while (!rest.empty()) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min<std::size_t>(rest.size(), std::numeric_limits<std::int32_t>::max()));
    if (WriteFile(handleOf(file_), rest.data(), size, &written, nullptr) == 0) throw failed("cannot write", target_);
    rest.remove_prefix(written);
  }
  buffer_.clear();
}

void WholeFile::commit() {
  flush();
  if (FlushFileBuffers(handleOf(file_)) == 0) throw failed("cannot write", target_);
  if (CloseHandle(handleOf(std::exchange(file_, -1))) == 0) throw failed("cannot write", target_);
  if (!putInPlace(temporary_, target_)) throw failed("cannot replace", target_);
  temporary_.clear();
}

std::string readWholeFile(const fs::path& file) {
  constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const SystemHandle opened(CreateFileW(pathForCalls(file).c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!opened.isOpen()) throw failed("cannot open", file);
  std::string bytes;
  std::string chunk(chunkBytes, '\0');
  for (;;) {
    DWORD got = 0;
    if (ReadFile(opened.get(), chunk.data(), static_cast<DWORD>(chunk.size()), &got, nullptr) == 0) {
      if (GetLastError() == ERROR_BROKEN_PIPE) break;  // the end of what another program sends
      throw failed("cannot read", file);
    }
    if (got == 0) break;
    bytes.append(chunk, 0, got);
  }
  return bytes;
}

}  // namespace korvel
