#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/atomic_file.h"
#include "base/error.h"
#include "output/text_export.h"
#include "tests/support/filled_list.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output {

struct TextExportFile : testing::Test {
  std::string text(const results::ResultList& list) {
    replaced = writeTextExport(list, file);
    return readFile(file);
  }
  int failureOf(const results::ResultList& list, const std::filesystem::path& path) {
    try {
      writeTextExport(list, path);
      return 0;
    } catch (const Error& error) {
      description = error.description();
      return error.number();
    }
  }
  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator()));
  }

  test::TemporaryFolder folder;
  std::filesystem::path file = folder / textExportName;
  std::size_t replaced = 0;
  std::string description;
  results::ResultList abc = test::filledList({{"A"}, {"B"}, {"C"}}, {{"a", "b", "c"}});
};

}  // namespace korvel::output
