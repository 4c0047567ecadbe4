#include <windows.h>

#include <chrono>
#include <memory>
#include <string_view>

#include "base/files.h"
#include "base/paths.h"
#include "base/paths_windows.h"
#include "base/system_handle_windows.h"
#include "base/text.h"
#include "base/wide_text_windows.h"

namespace korvel::files {

namespace fs = std::filesystem;

namespace {

void fail(std::error_code& failure) {
  failure.assign(static_cast<int>(GetLastError()), std::system_category());
}

/// Sets `failure` from the result of a call.
bool succeeded(BOOL done, std::error_code& failure) {
  if (done != 0)
    failure.clear();
  else
    fail(failure);
  return done != 0;
}

bool isMissing(DWORD number) noexcept {
  return number == ERROR_FILE_NOT_FOUND || number == ERROR_PATH_NOT_FOUND || number == ERROR_INVALID_NAME ||
         number == ERROR_BAD_NETPATH || number == ERROR_BAD_NET_NAME || number == ERROR_INVALID_DRIVE ||
         number == ERROR_BAD_PATHNAME;
}

/// Opens a file or folder for its attributes alone, also while other programs have it open.
SystemHandle opened(const fs::path& path, DWORD flags = 0) {
  constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return SystemHandle(CreateFileW(extendedLengthPath(path).c_str(), FILE_READ_ATTRIBUTES, shared, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
}

std::uint64_t joined(DWORD high, DWORD low) noexcept {
  constexpr unsigned bitsOfLow = 32;
  return std::uint64_t{high} << bitsOfLow | low;
}

fs::file_status missingOr(fs::file_type unknown, std::error_code& failure) {
  fail(failure);
  return fs::file_status(isMissing(static_cast<DWORD>(failure.value())) ? fs::file_type::not_found : unknown);
}

struct CloseSearch {
  void operator()(void* search) const noexcept { FindClose(search); }
};
using Search = std::unique_ptr<void, CloseSearch>;

/// A search for `pattern`, at its first find; null with the system's error where it finds nothing.
Search searchFor(const fs::path& pattern, WIN32_FIND_DATAW& found) {
  const HANDLE search = FindFirstFileW(extendedLengthPath(pattern).c_str(), &found);
  return Search(search == INVALID_HANDLE_VALUE ? nullptr : search);
}

/// Whether `path` names a pipe or device, on this computer or another: these must not be opened to look at them.
bool isPipeOrDevice(const fs::path& path) {
  constexpr std::wstring_view device = LR"(\\.\)";
  constexpr std::wstring_view verbatim = LR"(\\?\)";
  constexpr std::wstring_view verbatimNetwork = LR"(UNC\)";
  constexpr std::wstring_view network = LR"(\\)";
  std::wstring whole = fullPath(path.native());
  if (whole.starts_with(device)) return true;
  if (whole.starts_with(verbatim)) {
    whole.erase(0, verbatim.size());
    const std::string start = utf8FromWide(whole.substr(0, verbatimNetwork.size()));
    const bool isDisk = whole.size() > 1 && whole[1] == L':';
    if (!equalsIgnoringAsciiCase(start, utf8FromWide(std::wstring(verbatimNetwork))))
      return !isDisk && !equalsIgnoringAsciiCase(utf8FromWide(whole.substr(0, whole.find(L'{'))), "Volume");
    whole.replace(0, verbatimNetwork.size(), network);
  }
  if (!whole.starts_with(network)) return false;
  const std::size_t share = whole.find(L'\\', network.size());
  if (share == std::wstring::npos) return false;
  const std::string name = utf8FromWide(whole.substr(share + 1, whole.find(L'\\', share + 1) - share - 1));
  return equalsIgnoringAsciiCase(name, "pipe") || equalsIgnoringAsciiCase(name, "mailslot");
}

fs::file_type typeOf(DWORD attributes) noexcept {
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? fs::file_type::directory : fs::file_type::regular;
}

}  // namespace

fs::file_status status(const fs::path& path, std::error_code& failure) {
  // Opening a pipe would take the connection that its server waits for.
  if (isPipeOrDevice(path)) {
    failure.clear();
    return fs::file_status(fs::file_type::character);
  }
  const SystemHandle file = opened(path);
  if (!file.isOpen()) return missingOr(fs::file_type::unknown, failure);
  failure.clear();
  const DWORD kind = GetFileType(file.get());
  if (kind == FILE_TYPE_CHAR) return fs::file_status(fs::file_type::character);
  if (kind == FILE_TYPE_PIPE) return fs::file_status(fs::file_type::fifo);
  BY_HANDLE_FILE_INFORMATION about{};
  if (!succeeded(GetFileInformationByHandle(file.get(), &about), failure))
    return fs::file_status(fs::file_type::unknown);
  return fs::file_status(typeOf(about.dwFileAttributes));
}

fs::file_status symlinkStatus(const fs::path& path, std::error_code& failure) {
  WIN32_FIND_DATAW found{};
  // A folder that cannot be searched, or the root of a disk, which is in no folder.
  if (!searchFor(path, found)) return files::status(path, failure);
  const bool isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                      (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK || found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
  if (!isLink) return files::status(path, failure);
  failure.clear();
  return fs::file_status(fs::file_type::symlink);
}

std::uintmax_t size(const fs::path& file, std::error_code& failure) {
  // From the file itself: the folder's entry of an open file is updated late.
  const SystemHandle handle = opened(file);
  BY_HANDLE_FILE_INFORMATION about{};
  if (!succeeded(handle.isOpen() ? GetFileInformationByHandle(handle.get(), &about) : FALSE, failure))
    return static_cast<std::uintmax_t>(-1);
  return joined(about.nFileSizeHigh, about.nFileSizeLow);
}

fs::file_time_type lastWriteTime(const fs::path& file, std::error_code& failure) {
  const SystemHandle handle = opened(file);
  FILETIME time{};
  if (!succeeded(handle.isOpen() ? GetFileTime(handle.get(), nullptr, nullptr, &time) : FALSE, failure))
    return fs::file_time_type::min();
  constexpr std::int64_t nanosecondsPerTick = 100;
  // Windows counts from 1601, from where 64 bits of nanoseconds would not reach today.
  constexpr std::int64_t ticksTo1970 = 116'444'736'000'000'000;
  const auto ticks = static_cast<std::int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime)) - ticksTo1970;
  return fs::file_time_type(std::chrono::nanoseconds(ticks * nanosecondsPerTick));
}

bool equivalent(const fs::path& left, const fs::path& right) {
  const SystemHandle one = opened(left);
  const SystemHandle other = opened(right);
  BY_HANDLE_FILE_INFORMATION a{};
  BY_HANDLE_FILE_INFORMATION b{};
  if (!one.isOpen() || !other.isOpen() || GetFileInformationByHandle(one.get(), &a) == 0 ||
      GetFileInformationByHandle(other.get(), &b) == 0)
    return false;
  return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
         a.nFileIndexLow == b.nFileIndexLow;
}

std::vector<fs::path> listFolder(const fs::path& folder, std::error_code& failure) {
  std::vector<fs::path> paths;
  WIN32_FIND_DATAW found{};
  const Search search = searchFor(folder / L"*", found);
  if (!search) {
    fail(failure);
    // The root of an empty disk has no entry at all, not even its own.
    if (failure.value() == ERROR_FILE_NOT_FOUND) failure.clear();
    // For a file, Windows reports a missing path.
    std::error_code ignored;
    const fs::file_status there = files::status(folder, ignored);
    if (failure && fs::exists(there) && !fs::is_directory(there))
      failure.assign(ERROR_DIRECTORY, std::system_category());
    return paths;
  }
  failure.clear();
  do {
    const std::wstring_view name = found.cFileName;
    if (name != L"." && name != L"..") paths.push_back(folder / name);
  } while (FindNextFileW(search.get(), &found) != 0);
  if (GetLastError() != ERROR_NO_MORE_FILES) fail(failure);
  return paths;
}

void createDirectories(const fs::path& folder, std::error_code& failure) {
  if (succeeded(CreateDirectoryW(extendedLengthPath(folder).c_str(), nullptr), failure)) return;
  std::error_code ignored;
  if (failure.value() == ERROR_PATH_NOT_FOUND && folder.has_relative_path() && folder.has_parent_path()) {
    createDirectories(folder.parent_path(), failure);
    if (failure) return;
    succeeded(CreateDirectoryW(extendedLengthPath(folder).c_str(), nullptr), failure);
  }
  if (failure && fs::is_directory(files::status(folder, ignored))) failure.clear();
}

void createNew(const fs::path& file, std::error_code& failure) {
  const SystemHandle made(CreateFileW(extendedLengthPath(file).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
  succeeded(made.isOpen() ? TRUE : FALSE, failure);
}

void checkReplaceable(const fs::path& target, std::error_code& failure) {
  // The access that the system needs to replace a file.
  constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const SystemHandle file(CreateFileW(extendedLengthPath(target).c_str(), DELETE | FILE_READ_ATTRIBUTES, shared,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
                                      nullptr));
  BY_HANDLE_FILE_INFORMATION about{};
  if (!succeeded(file.isOpen() ? GetFileInformationByHandle(file.get(), &about) : FALSE, failure)) {
    if (isMissing(static_cast<DWORD>(failure.value()))) failure.clear();
    return;
  }
  if ((about.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
    failure.assign(ERROR_ACCESS_DENIED, std::system_category());
}

void rename(const fs::path& from, const fs::path& to, std::error_code& failure) {
  succeeded(MoveFileExW(extendedLengthPath(from).c_str(), extendedLengthPath(to).c_str(),
                        MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH),
            failure);
}

void remove(const fs::path& path, std::error_code& failure) {
  const fs::path called = extendedLengthPath(path);
  const DWORD attributes = GetFileAttributesW(called.c_str());
  const bool isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (succeeded(isFolder ? RemoveDirectoryW(called.c_str()) : DeleteFileW(called.c_str()), failure)) return;
  if (isMissing(static_cast<DWORD>(failure.value()))) failure.clear();
}

std::FILE* open(const fs::path& file, const char* mode) {
  const std::string_view narrow = mode;
  std::wstring wide(narrow.begin(), narrow.end());
  // Never with the ends of lines translated.
  if (wide.find(L'b') == std::wstring::npos) wide += L'b';
  return _wfopen(extendedLengthPath(file).c_str(), wide.c_str());
}

}  // namespace korvel::files
