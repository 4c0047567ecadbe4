#include <windows.h>
// ntsecapi.h needs its types.
#include <ntsecapi.h>

#include <algorithm>

#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/system_handle_windows.h"
#include "output/temporary_file.h"

namespace korvel::output {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(DWORD systemErrorNumber) {
  throw asFileError(systemError(static_cast<int>(systemErrorNumber), "cannot write a file for a while"),
                    FileAccess::write);
}

/// `name` in the code page of the C library's files; empty where that has not all of it.
std::string inTheLibrarysCodePage(const std::wstring& name) {
  const UINT page = AreFileApisANSI() != 0 ? GetACP() : GetOEMCP();
  const bool holdsAll = page == CP_UTF8;
  BOOL replaced = FALSE;
  const auto convert = [&](char* to, int size) {
    return WideCharToMultiByte(page, holdsAll ? 0 : WC_NO_BEST_FIT_CHARS, name.data(), static_cast<int>(name.size()),
                               to, size, nullptr, holdsAll ? nullptr : &replaced);
  };
  std::string narrow(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  convert(narrow.data(), static_cast<int>(narrow.size()));
  return replaced == FALSE ? narrow : std::string();
}

}  // namespace

TemporaryFile::TemporaryFile(const fs::path& folder) {
  constexpr int attempts = 100;
  std::error_code failure;
  for (int i = 0; i < attempts; ++i) {
    std::uint64_t number = 0;
    if (RtlGenRandom(&number, sizeof number) == 0) fail(ERROR_GEN_FAILURE);
    fs::path name = folder / ("korvel-" + std::to_string(number));
    files::createNew(name, failure);
    if (!failure) {
      path_ = std::move(name);
      return;
    }
    if (!isSystemError(systemErrorNumber(failure), std::errc::file_exists)) break;
  }
  fail(static_cast<DWORD>(failure.value()));
}

TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  files::remove(path_, ignored);
}

void TemporaryFile::checkRoom(std::uint64_t bytes) const {
  const SystemHandle file(CreateFileW(extendedLengthPath(path_).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
  const auto setSize = [&file](std::uint64_t size) -> DWORD {
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size);
    return SetFilePointerEx(file.get(), end, nullptr, FILE_BEGIN) != 0 && SetEndOfFile(file.get()) != 0
               ? ERROR_SUCCESS
               : GetLastError();
  };
  if (!file.isOpen()) fail(GetLastError());
  const DWORD refusal = setSize(bytes);
  const DWORD failure = setSize(0);
  if (refusal != ERROR_SUCCESS) fail(refusal);
  if (failure != ERROR_SUCCESS) fail(failure);
}

std::string cLibraryPath(const fs::path& path) {
  // Some C library functions take UTF-8 and some the code page: a name must be the same in both.
  const auto isPlain = [](const std::wstring& name) {
    return std::all_of(name.begin(), name.end(), [](wchar_t unit) { return unit < 0x80; });
  };
  std::wstring name = path.native();
  if (!isPlain(name)) {
    // The short (8.3) form is ASCII, where the disk has one.
    name.resize(GetShortPathNameW(path.c_str(), nullptr, 0));
    name.resize(GetShortPathNameW(path.c_str(), name.data(), static_cast<DWORD>(name.size())));
    if (name.empty() || !isPlain(name)) name = path.native();
  }
  return inTheLibrarysCodePage(name);
}

}  // namespace korvel::output
