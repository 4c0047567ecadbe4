#include "base/system_errors.h"

#include <gtest/gtest.h>

#include <system_error>

namespace korvel {
namespace {

Error raised(std::errc condition, FileAccess task) {
  return asFileError(systemError(systemErrorNumber(condition), "cannot do it"), task);
}

TEST(FileError, HasTheNumberAndTheTextThatWindowsUsersKnow) {
  struct Case {
    std::errc condition;
    int number;
    const char* text;
  };
  for (const auto& [condition, number, text] :
       {Case{std::errc::no_space_on_device, 61, "Disk full"},
        Case{std::errc::permission_denied, 70, "Permission denied"},
        Case{std::errc::is_a_directory, 75, "Path/File access error"},
        Case{std::errc::not_a_directory, 76, "Path not found"}, Case{std::errc::io_error, 57, "Device I/O error"},
        Case{std::errc::not_enough_memory, 7, "Out of memory"},
        Case{std::errc::too_many_files_open, 67, "Too many files"},
        Case{std::errc::no_such_device, 68, "Device unavailable"}, Case{std::errc::timed_out, 71, "Disk not ready"},
        Case{std::errc::filename_too_long, 52, "Bad file name or number"},
        Case{std::errc::invalid_argument, 5, "Invalid procedure call or argument"}}) {
    const Error error = raised(condition, FileAccess::write);
    EXPECT_EQ(error.number(), number) << text;
    EXPECT_EQ(error.description(), text);
  }
}

TEST(FileError, WhatIsMissingIsAFileForAReaderAndAPathForAWriter) {
  EXPECT_EQ(raised(std::errc::no_such_file_or_directory, FileAccess::read).number(), 53);
  EXPECT_EQ(raised(std::errc::no_such_file_or_directory, FileAccess::read).description(), "File not found");
  EXPECT_EQ(raised(std::errc::no_such_file_or_directory, FileAccess::write).number(), 76);
  EXPECT_EQ(raised(std::errc::not_a_directory, FileAccess::read).number(), 76) << "a path through a file";
}

TEST(FileError, FailureWithoutACounterpartStaysItself) {
  const Error error = raised(std::errc::connection_refused, FileAccess::write);
  EXPECT_EQ(error.number(), systemErrorNumber(std::errc::connection_refused));
  EXPECT_EQ(error.description().rfind("cannot do it: ", 0), 0U);
}

TEST(FileError, EveryRowOfTheTableHasAUsualText) {
  // Further than either system's numbers of files go.
  constexpr int numbers = 4096;
  int known = 0;
  for (int number = 1; number < numbers; ++number) {
    for (const FileAccess access : {FileAccess::read, FileAccess::write}) {
      const auto error = fileErrorFrom(number, access);
      if (!error) continue;
      ++known;
      EXPECT_NE(fileError(*error).description(), "Application-defined or object-defined error") << number;
    }
  }
  EXPECT_GT(known, 40) << "rows of the table, each for readers and writers";
}

}  // namespace
}  // namespace korvel
