#pragma once

#include <filesystem>
#include <string>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "tests/control/custom_page_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {

/// The custom page, with a folder of query files for the test.
class QueryFiles : public CustomPage {
 protected:
  QueryFiles() {
    recorder->chosenFolder = QString::fromStdString(utf8FromPath(folder.path()));
    recorder->typedText = "My query";
  }
  [[nodiscard]] std::string saved(const std::string& name = "My query.vqf") const { return readFile(folder / name); }
  [[nodiscard]] bool folderIsEmpty() const { return std::filesystem::is_empty(folder.path()); }
  void choose(const std::string& name) {
    recorder->onForm = [name] { control::libraryState().queryChoices.fileName = name; };
  }

  TemporaryFolder folder;
};

}  // namespace korvel::test
