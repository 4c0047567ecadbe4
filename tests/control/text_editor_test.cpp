// The program that text exports are opened with.
#include <gtest/gtest.h>

#include <QFile>
#include <QTest>
#include <filesystem>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/system_errors.h"
#include "control/file_programs.h"
#include "tests/support/opened_files.h"
#include "tests/support/temporary_folder.h"

namespace korvel::control {
namespace {

class TextEditor : public ::testing::Test {
 protected:
  TextEditor() { writeFileAtomically(file, "text"); }
  static std::int32_t failureOf(const std::filesystem::path& file) {
    try {
      startTextEditor(QString::fromStdString(file.string()));
      return 0;
    } catch (const Error& error) {
      return error.number();
    }
  }

  test::TemporaryFolder folder;
  std::filesystem::path file = folder / "a b;$(touch x)";
};

TEST_F(TextEditor, IsTheProgramThatTheEnvironmentNames) {
  std::filesystem::create_directory(folder / "target");
  const test::EnvironmentVariable editor("KORVEL_EDITOR", "/bin/cp -t \"" + (folder / "target").string() + "\"");
  EXPECT_EQ(failureOf(file), 0);
  const QString arrived = QString::fromStdString((folder / "target/a b;$(touch x)").string());
  EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(arrived); }));
}

TEST_F(TextEditor, ThatIsNotThereIsAFileThatIsNotFound) {
  const test::EnvironmentVariable editor("KORVEL_EDITOR", (folder / "absent").string());
  EXPECT_EQ(failureOf(file), numberOf(FileError::fileNotFound));
}

TEST_F(TextEditor, IsTheDesktopsWhereNoneIsNamed) {
  const test::EnvironmentVariable editor("KORVEL_EDITOR");
  // The offscreen platform has no desktop.
  EXPECT_EQ(failureOf(file), numberOf(FileError::fileNotFound));
  const test::OpenedFiles opened;
  EXPECT_EQ(failureOf(file), 0);
  EXPECT_EQ(opened.files(), QStringList{QString::fromStdString(file.string())});
}

}  // namespace
}  // namespace korvel::control
