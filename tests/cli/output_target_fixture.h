#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "base/error.h"
#include "cli/output_target.h"
#include "tests/support/temporary_folder.h"

namespace korvel::cli {

struct OutputTarget : testing::Test {
  void write(const std::string& target) {
    writeTo(target, out, [](const output::ByteSink& sink) {
      sink("one ");
      sink("two");
    });
  }

  /// The number of the failure to write there, 0 for none.
  int failureOf(const std::string& target) {
    try {
      write(target);
      return 0;
    } catch (const Error& error) {
      return error.number();
    }
  }

  std::ostringstream out;
  test::TemporaryFolder folder;
};

}  // namespace korvel::cli
