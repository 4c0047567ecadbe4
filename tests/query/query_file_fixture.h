#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "base/error.h"
#include "tests/support/temporary_folder.h"

namespace korvel::query {

struct QueryFile : testing::Test {
  static Error errorOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const Error& error) {
      return error;
    }
    return {0, "no error"};
  }

  test::TemporaryFolder folder;
  std::filesystem::path file = folder / "query.vqf";
};

}  // namespace korvel::query
