#include <windows.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "base/system_errors.h"
#include "base/wide_text_windows.h"

namespace korvel {

namespace {

struct Row {
  std::errc condition;
  int number;
};

/// ERROR_DIRECTORY_NOT_SUPPORTED, which the compiler's headers lack.
constexpr int directoryNotSupported = 336;

/// The first row of a condition gives its number; a number means the conditions of all its rows.
constexpr std::array rows = {
    Row{std::errc::no_such_file_or_directory, ERROR_FILE_NOT_FOUND},
    Row{std::errc::no_such_file_or_directory, ERROR_PATH_NOT_FOUND},
    Row{std::errc::no_such_file_or_directory, ERROR_BAD_NETPATH},
    Row{std::errc::no_such_file_or_directory, ERROR_BAD_NET_NAME},
    Row{std::errc::no_such_file_or_directory, ERROR_INVALID_DRIVE},
    Row{std::errc::not_a_directory, ERROR_DIRECTORY},
    Row{std::errc::is_a_directory, directoryNotSupported},
    Row{std::errc::permission_denied, ERROR_ACCESS_DENIED},
    Row{std::errc::operation_not_permitted, ERROR_ACCESS_DENIED},
    Row{std::errc::permission_denied, ERROR_NETWORK_ACCESS_DENIED},
    Row{std::errc::device_or_resource_busy, ERROR_SHARING_VIOLATION},
    Row{std::errc::device_or_resource_busy, ERROR_LOCK_VIOLATION},
    Row{std::errc::device_or_resource_busy, ERROR_BUSY},
    Row{std::errc::file_exists, ERROR_FILE_EXISTS},
    Row{std::errc::file_exists, ERROR_ALREADY_EXISTS},
    Row{std::errc::directory_not_empty, ERROR_DIR_NOT_EMPTY},
    Row{std::errc::invalid_argument, ERROR_INVALID_PARAMETER},
    Row{std::errc::invalid_argument, ERROR_INVALID_NAME},
    Row{std::errc::filename_too_long, ERROR_FILENAME_EXCED_RANGE},
    Row{std::errc::not_enough_memory, ERROR_NOT_ENOUGH_MEMORY},
    Row{std::errc::not_enough_memory, ERROR_OUTOFMEMORY},
    Row{std::errc::too_many_files_open, ERROR_TOO_MANY_OPEN_FILES},
    Row{std::errc::too_many_files_open_in_system, ERROR_TOO_MANY_OPEN_FILES},
    Row{std::errc::no_space_on_device, ERROR_DISK_FULL},
    Row{std::errc::no_space_on_device, ERROR_HANDLE_DISK_FULL},
    Row{std::errc::file_too_large, ERROR_FILE_TOO_LARGE},
    Row{std::errc::read_only_file_system, ERROR_WRITE_PROTECT},
    Row{std::errc::io_error, ERROR_IO_DEVICE},
    Row{std::errc::broken_pipe, ERROR_BROKEN_PIPE},
    Row{std::errc::broken_pipe, ERROR_NO_DATA},
    Row{std::errc::no_such_device, ERROR_DEV_NOT_EXIST},
    Row{std::errc::no_such_device_or_address, ERROR_DEV_NOT_EXIST},
    Row{std::errc::bad_file_descriptor, ERROR_INVALID_HANDLE},
    Row{std::errc::timed_out, WAIT_TIMEOUT},
    Row{std::errc::interrupted, ERROR_OPERATION_ABORTED},
    Row{std::errc::function_not_supported, ERROR_NOT_SUPPORTED},
    Row{std::errc::cross_device_link, ERROR_NOT_SAME_DEVICE},
};

struct FileRow {
  int number;
  FileError whenReading;
  FileError whenWriting;
};

constexpr std::array fileRows = {
    FileRow{ERROR_FILE_NOT_FOUND, FileError::fileNotFound, FileError::pathNotFound},
    FileRow{ERROR_PATH_NOT_FOUND, FileError::pathNotFound, FileError::pathNotFound},
    FileRow{ERROR_BAD_NETPATH, FileError::pathNotFound, FileError::pathNotFound},
    FileRow{ERROR_BAD_NET_NAME, FileError::pathNotFound, FileError::pathNotFound},
    FileRow{ERROR_INVALID_DRIVE, FileError::deviceUnavailable, FileError::deviceUnavailable},
    FileRow{ERROR_ACCESS_DENIED, FileError::permissionDenied, FileError::permissionDenied},
    FileRow{ERROR_SHARING_VIOLATION, FileError::permissionDenied, FileError::permissionDenied},
    FileRow{ERROR_LOCK_VIOLATION, FileError::permissionDenied, FileError::permissionDenied},
    FileRow{ERROR_WRITE_PROTECT, FileError::pathFileAccess, FileError::pathFileAccess},
    FileRow{ERROR_ALREADY_EXISTS, FileError::pathFileAccess, FileError::pathFileAccess},
    FileRow{ERROR_DIRECTORY, FileError::pathNotFound, FileError::pathNotFound},
    FileRow{directoryNotSupported, FileError::pathFileAccess, FileError::pathFileAccess},
    FileRow{ERROR_FILE_EXISTS, FileError::pathFileAccess, FileError::pathFileAccess},
    FileRow{ERROR_INVALID_NAME, FileError::badFileName, FileError::badFileName},
    FileRow{ERROR_FILENAME_EXCED_RANGE, FileError::badFileName, FileError::badFileName},
    FileRow{ERROR_INVALID_HANDLE, FileError::badFileName, FileError::badFileName},
    FileRow{ERROR_INVALID_PARAMETER, FileError::invalidCall, FileError::invalidCall},
    FileRow{ERROR_NOT_ENOUGH_MEMORY, FileError::outOfMemory, FileError::outOfMemory},
    FileRow{ERROR_OUTOFMEMORY, FileError::outOfMemory, FileError::outOfMemory},
    FileRow{ERROR_TOO_MANY_OPEN_FILES, FileError::tooManyFiles, FileError::tooManyFiles},
    FileRow{ERROR_DISK_FULL, FileError::diskFull, FileError::diskFull},
    FileRow{ERROR_HANDLE_DISK_FULL, FileError::diskFull, FileError::diskFull},
    FileRow{ERROR_FILE_TOO_LARGE, FileError::diskFull, FileError::diskFull},
    FileRow{ERROR_IO_DEVICE, FileError::deviceInputOutput, FileError::deviceInputOutput},
    FileRow{ERROR_BROKEN_PIPE, FileError::deviceInputOutput, FileError::deviceInputOutput},
    FileRow{ERROR_NO_DATA, FileError::deviceInputOutput, FileError::deviceInputOutput},
    FileRow{ERROR_DEV_NOT_EXIST, FileError::deviceUnavailable, FileError::deviceUnavailable},
    FileRow{ERROR_NOT_READY, FileError::diskNotReady, FileError::diskNotReady},
    FileRow{WAIT_TIMEOUT, FileError::diskNotReady, FileError::diskNotReady},
};

}  // namespace

int systemErrorNumber(std::errc condition) noexcept {
  const auto* const found =
      std::find_if(rows.begin(), rows.end(), [condition](const Row& row) { return row.condition == condition; });
  return found == rows.end() ? ERROR_GEN_FAILURE : found->number;
}

int systemErrorNumber(const std::error_code& failure) noexcept {
  if (!failure || failure.category() != std::generic_category()) return failure.value();
  return systemErrorNumber(static_cast<std::errc>(failure.value()));
}

int systemErrorNumberFromErrno(std::errc otherwise) noexcept {
  // The C library reports "invalid argument" for what it has no number for, such as a pipe without a reader.
  if (errno == EINVAL && _doserrno != 0) return static_cast<int>(_doserrno);
  return systemErrorNumber(errno != 0 ? static_cast<std::errc>(errno) : otherwise);
}

bool isSystemError(int systemErrorNumber, std::errc condition) noexcept {
  return std::any_of(rows.begin(), rows.end(),
                     [&](const Row& row) { return row.number == systemErrorNumber && row.condition == condition; });
}

std::string systemMessage(int systemErrorNumber) {
  constexpr DWORD longestMessage = 4096;
  std::wstring text(longestMessage, L'\0');
  text.resize(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                             nullptr, static_cast<DWORD>(systemErrorNumber), 0, text.data(), longestMessage, nullptr));
  // The system's message is a sentence; here it is part of one.
  text.resize(text.find_last_not_of(L" .\r\n") + 1);
  return text.empty() ? "Windows error " + std::to_string(systemErrorNumber) : utf8FromWide(text);
}

Win32Error win32ErrorFrom(int systemErrorNumber) noexcept {
  return static_cast<Win32Error>(systemErrorNumber);
}

std::optional<FileError> fileErrorFrom(int systemErrorNumber, FileAccess access) noexcept {
  const auto* const found = std::find_if(fileRows.begin(), fileRows.end(),
                                         [&](const FileRow& row) { return row.number == systemErrorNumber; });
  if (found == fileRows.end()) return std::nullopt;
  return access == FileAccess::read ? found->whenReading : found->whenWriting;
}

}  // namespace korvel
