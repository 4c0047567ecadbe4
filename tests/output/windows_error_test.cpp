#include "output/windows_error.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace korvel::output {
namespace {

Error raised(int systemNumber, FileTask task) {
  return asWindowsError(systemError(systemNumber, "cannot do it"), task);
}

TEST(WindowsError, HasTheNumberAndTheTextThatWindowsUsersKnow) {
  struct Case {
    int systemNumber;
    int number;
    const char* text;
  };
  for (const auto& [systemNumber, number, text] :
       {Case{ENOSPC, 61, "Disk full"}, Case{EACCES, 70, "Permission denied"},
        Case{EISDIR, 75, "Path/File access error"}, Case{ENOTDIR, 76, "Path not found"},
        Case{EIO, 57, "Device I/O error"}, Case{ENOMEM, 7, "Out of memory"}, Case{EMFILE, 67, "Too many files"},
        Case{ENODEV, 68, "Device unavailable"}, Case{ESTALE, 71, "Disk not ready"},
        Case{ENAMETOOLONG, 52, "Bad file name or number"}, Case{EINVAL, 5, "Invalid procedure call or argument"}}) {
    const Error error = raised(systemNumber, FileTask::write);
    EXPECT_EQ(error.number(), number) << text;
    EXPECT_EQ(error.description(), text);
  }
}

TEST(WindowsError, WhatIsMissingIsAFileForAReaderAndAPathForAWriter) {
  EXPECT_EQ(raised(ENOENT, FileTask::read).number(), 53);
  EXPECT_EQ(raised(ENOENT, FileTask::read).description(), "File not found");
  EXPECT_EQ(raised(ENOENT, FileTask::write).number(), 76);
}

TEST(WindowsError, FailureWithoutACounterpartStaysItself) {
  const Error error = raised(ECONNREFUSED, FileTask::write);
  EXPECT_EQ(error.number(), ECONNREFUSED);
  EXPECT_EQ(error.description().rfind("cannot do it: ", 0), 0U);
}

TEST(WindowsError, EveryRowOfTheTableHasAUsualText) {
  for (const SystemNumber& row : systemNumbers())
    for (const int number : {row.whenReading, row.whenWriting})
      EXPECT_NE(windowsError(number).description(), "Application-defined or object-defined error") << number;
}

}  // namespace
}  // namespace korvel::output
