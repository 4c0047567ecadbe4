// ntsecapi.h needs the types of windows.h.
#include <windows.h>
// After it.
#include <ntsecapi.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "base/atomic_file.h"
#include "base/file_dacl_windows.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/paths_windows.h"
#include "base/system_errors.h"
#include "base/system_handle_windows.h"

namespace korvel {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t chunkBytes = std::size_t{1} << 18U;
constexpr DWORD sharedByAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

Error failed(const std::string& what, const fs::path& file, DWORD number = GetLastError()) {
  return systemError(static_cast<int>(number), what + " " + utf8FromPath(file));
}

/// Whether a rename was refused because of the target, not because the file system lacks this kind of rename.
bool isRefusal(DWORD number) noexcept {
  return number == ERROR_ACCESS_DENIED || number == ERROR_SHARING_VIOLATION;
}

HANDLE handleOf(std::intptr_t file) noexcept {
  return reinterpret_cast<HANDLE>(file);  // NOLINT(performance-no-int-to-ptr): the system's own way of numbering
}

/// The usual form of the name that the system gives for an open file.
fs::path plainForm(const std::wstring& name) {
  constexpr std::wstring_view network = LR"(\\?\UNC\)";
  constexpr std::wstring_view verbatim = LR"(\\?\)";
  std::wstring plain = name;
  if (plain.starts_with(network))
    plain.replace(0, network.size(), LR"(\\)");
  else if (plain.starts_with(verbatim))
    plain.erase(0, verbatim.size());
  // Names with trailing dots or blanks, and volumes without a letter, are valid in the extended-length form only.
  return fullPath(plain) == plain ? fs::path(plain) : fs::path(name);
}

/// Where a link leads; `target` itself where it is none. Throws Error for a link that leads nowhere: what was meant
/// is unknown.
fs::path followedLinks(const fs::path& target) {
  std::error_code ignored;
  if (files::symlinkStatus(target, ignored).type() != fs::file_type::symlink) return target;
  const SystemHandle file(CreateFileW(extendedLengthPath(target).c_str(), FILE_READ_ATTRIBUTES, sharedByAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!file.isOpen()) throw failed("cannot follow the link", target);
  std::wstring name(GetFinalPathNameByHandleW(file.get(), nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
  const DWORD length =
      GetFinalPathNameByHandleW(file.get(), name.data(), static_cast<DWORD>(name.size()), FILE_NAME_NORMALIZED);
  if (length == 0 || length >= name.size()) throw failed("cannot follow the link", target);
  name.resize(length);
  return plainForm(name);
}

/// Six random characters. CREATE_NEW makes sure that no file of that name is there.
std::wstring randomSuffix() {
  constexpr std::wstring_view characters = L"abcdefghijklmnopqrstuvwxyz0123456789";
  std::uint64_t number = 0;
  if (RtlGenRandom(&number, sizeof number) == 0) return {};
  std::wstring suffix = L".";
  for (int i = 0; i < 6; ++i, number /= characters.size())
    suffix += characters[static_cast<std::size_t>(number % characters.size())];
  return suffix;
}

/// Creates a new file beside `target`, which no other program opens meanwhile, and puts its name into `created`.
SystemHandle createBeside(const fs::path& target, DWORD attributes, DWORD access, fs::path& created) {
  // A collision is very unlikely; this many mean that such files are created on purpose.
  for (int attempts = 0; attempts < 100; ++attempts) {
    const std::wstring suffix = randomSuffix();
    if (suffix.empty()) break;
    fs::path name = target;
    name += suffix;
    SystemHandle file(CreateFileW(extendedLengthPath(name).c_str(), GENERIC_WRITE | access, 0, nullptr, CREATE_NEW,
                                  attributes, nullptr));
    if (file.isOpen()) created = std::move(name);
    if (file.isOpen() || GetLastError() != ERROR_FILE_EXISTS) return file;
  }
  return SystemHandle();
}

/// The file that is to be replaced.
struct Existing {
  bool isThere = false;
  DWORD attributes = FILE_ATTRIBUTE_NORMAL;
  FileDacl dacl;
};

/// Reads the attributes and the access control list of the target and checks that the user may write it: a file that
/// is read-only, or that another program has opened exclusively, is not replaced. A number of the system, or 0.
DWORD inspectTarget(const fs::path& target, Existing& existing) {
  const SystemHandle file(CreateFileW(extendedLengthPath(target).c_str(), GENERIC_WRITE, sharedByAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  BY_HANDLE_FILE_INFORMATION about{};
  if (!file.isOpen() || GetFileInformationByHandle(file.get(), &about) == 0) {
    const DWORD number = GetLastError();
    return number == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : number;
  }
  existing.isThere = true;
  existing.attributes = about.dwFileAttributes;
  if ((about.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0) return ERROR_ACCESS_DENIED;
  return existing.dacl.readFrom(file.get());
}

/// Gives the new file the access control list, unless its folder gives it the same. A number of the system, or 0.
DWORD keepDacl(const FileDacl& dacl, HANDLE file, bool maySet) {
  if (maySet) return dacl.applyTo(file);
  if (!dacl.hasExplicitEntries()) return ERROR_SUCCESS;
  FileDacl given;
  const DWORD number = given.readFrom(file);
  if (number != ERROR_SUCCESS) return number;
  return given == dacl ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

/// Those of a file's attributes that its replacement keeps.
DWORD keptAttributes(DWORD attributes) noexcept {
  constexpr DWORD kept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                         FILE_ATTRIBUTE_NOT_CONTENT_INDEXED | FILE_ATTRIBUTE_ENCRYPTED;
  return (attributes & kept) != 0 ? attributes & kept : FILE_ATTRIBUTE_NORMAL;
}

/// Renames an open file over what has the name `to`; open, so that no other program can change it in between. A number
/// of the system, or 0.
DWORD renameOpen(HANDLE file, const std::wstring& to) {
  struct Way {
    FILE_INFO_BY_HANDLE_CLASS kind;
    DWORD flags;
  };
  // FileRenameInfoEx, which the compiler's headers hide.
  constexpr auto renameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
  // The first is newer, and works while other programs read the target with all sharing.
  constexpr std::array ways = {Way{renameInfoEx, FILE_RENAME_FLAG_REPLACE_IF_EXISTS | FILE_RENAME_FLAG_POSIX_SEMANTICS},
                               Way{FileRenameInfo, TRUE}};
  const std::size_t nameBytes = to.size() * sizeof(wchar_t);
  std::string request(sizeof(FILE_RENAME_INFO) + nameBytes, '\0');
  const auto nameSize = static_cast<DWORD>(nameBytes);
  std::memcpy(&request[offsetof(FILE_RENAME_INFO, FileNameLength)], &nameSize, sizeof nameSize);
  std::memcpy(&request[offsetof(FILE_RENAME_INFO, FileName)], to.data(), nameBytes);
  DWORD number = ERROR_SUCCESS;
  for (const Way& way : ways) {
    std::memcpy(request.data(), &way.flags, sizeof way.flags);
    if (SetFileInformationByHandle(file, way.kind, request.data(), static_cast<DWORD>(request.size())) != 0)
      return ERROR_SUCCESS;
    number = GetLastError();
    if (isRefusal(number)) break;
  }
  return number;
}

/// Calls `rename` again while another program blocks it: virus scanners open every new file for a moment.
template <typename Rename>
DWORD retryWhileBlocked(Rename rename) {
  constexpr std::array<DWORD, 4> pauses = {10, 20, 40, 80};  // milliseconds
  DWORD number = rename();
  for (const DWORD pause : pauses) {
    if (!isRefusal(number)) break;
    Sleep(pause);
    number = rename();
  }
  return number;
}

/// Replaces `target` by the open file `written`. On a failure, both are as they were. A number of the system,
/// or 0.
DWORD replaceTarget(SystemHandle file, const fs::path& written, const fs::path& target) {
  std::error_code failure;
  const fs::path to = extendedLengthPath(absolutePath(target, failure));
  DWORD number = retryWhileBlocked([&] { return renameOpen(file.get(), to.native()); });
  if (number == ERROR_SUCCESS) {
    FlushFileBuffers(file.get());  // the new name too; the bytes are on the disk already
  } else if (!isRefusal(number)) {
    file = SystemHandle();
    const fs::path from = extendedLengthPath(written);
    number = retryWhileBlocked([&] {
      return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0
                 ? ERROR_SUCCESS
                 : GetLastError();
    });
  }
  if (number != ERROR_ACCESS_DENIED) return number;
  // Windows gives this number for a file that another program has open, too.
  files::checkReplaceable(target, failure);
  return failure.value() == ERROR_SHARING_VIOLATION ? ERROR_SHARING_VIOLATION : number;
}

}  // namespace

AtomicFile::AtomicFile(fs::path target, SymlinkPolicy symlinks)
    : target_(symlinks == SymlinkPolicy::follow ? followedLinks(target) : std::move(target)) {
  Existing existing;
  if (const DWORD number = inspectTarget(target_, existing); number != ERROR_SUCCESS)
    throw failed("cannot write", target_, number);
  // A file that another user put there does not decide who may read the new one.
  const bool keeps = symlinks == SymlinkPolicy::follow && existing.isThere;
  const DWORD attributes = keeps ? keptAttributes(existing.attributes) : FILE_ATTRIBUTE_NORMAL;
  SystemHandle file = createBeside(target_, attributes, keeps ? DELETE | WRITE_DAC : DELETE, temporary_);
  // Many network folders do not allow setting access control lists, but give all their files the same.
  const bool maySetDacl = file.isOpen() || !keeps || GetLastError() != ERROR_ACCESS_DENIED;
  if (!maySetDacl) file = createBeside(target_, attributes, DELETE, temporary_);
  if (!file.isOpen()) throw failed("cannot create a file beside", target_);
  // Before the first byte.
  if (const DWORD number = keeps ? keepDacl(existing.dacl, file.get(), maySetDacl) : ERROR_SUCCESS;
      number != ERROR_SUCCESS) {
    file = SystemHandle();
    DeleteFileW(extendedLengthPath(temporary_).c_str());
    throw failed("cannot keep the rights of", target_, number);
  }
  file_ = reinterpret_cast<std::intptr_t>(file.release());
}

AtomicFile::~AtomicFile() {
  SystemHandle(handleOf(file_)) = SystemHandle();
  if (!temporary_.empty()) DeleteFileW(extendedLengthPath(temporary_).c_str());
}

void AtomicFile::flush() {
  std::string_view rest = buffer_;
  while (!rest.empty()) {
    DWORD written = 0;
    const auto size = static_cast<DWORD>(std::min<std::size_t>(rest.size(), std::numeric_limits<std::int32_t>::max()));
    if (WriteFile(handleOf(file_), rest.data(), size, &written, nullptr) == 0) throw failed("cannot write", target_);
    rest.remove_prefix(written);
  }
  buffer_.clear();
}

void AtomicFile::sync() {
  flush();
  if (FlushFileBuffers(handleOf(file_)) == 0) throw failed("cannot write", target_);
}

void AtomicFile::commit() {
  sync();
  const DWORD number = replaceTarget(SystemHandle(handleOf(std::exchange(file_, -1))), temporary_, target_);
  if (number != ERROR_SUCCESS) throw failed("cannot replace", target_, number);
  temporary_.clear();
}

std::string readFile(const fs::path& file) {
  const SystemHandle opened(CreateFileW(extendedLengthPath(file).c_str(), GENERIC_READ, sharedByAll, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
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
