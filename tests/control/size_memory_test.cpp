#include "control/size_memory.h"

#include <gtest/gtest.h>

#include <QScreen>
#include <QWidget>
#include <memory>

#include "control/library_state.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

class SizeMemory : public ::testing::Test {
 protected:
  SizeMemory() {
    control::libraryState().remembered = {QString::fromStdString((folder.path() / "remembered.json").string()),
                                          control::Remembered::Extent::layout};
  }
  ~SizeMemory() override { control::libraryState() = control::LibraryState(); }

  static std::unique_ptr<QWidget> newWindow() {
    auto window = std::make_unique<QWidget>();
    window->setObjectName("frmTest");
    window->resize(400, 300);
    control::rememberSize(*window);
    return window;
  }

  TemporaryFolder folder;
};

TEST_F(SizeMemory, AWindowOpensAsLargeAsAPersonMadeIt) {
  const auto window = newWindow();
  window->show();
  window->resize(500, 350);
  window->close();
  EXPECT_EQ(newWindow()->size(), QSize(500, 350));
}

TEST_F(SizeMemory, TheFirstSizeIsNotKept) {
  const auto window = newWindow();
  window->show();
  window->close();
  EXPECT_FALSE(control::libraryState().remembered.size("frmTest").isValid());
}

TEST_F(SizeMemory, NeitherIsThatOfAMaximisedWindow) {
  const auto window = newWindow();
  window->show();
  window->showMaximized();
  window->close();
  EXPECT_FALSE(control::libraryState().remembered.size("frmTest").isValid());
}

TEST_F(SizeMemory, NoWindowIsLargerThanTheScreen) {
  control::libraryState().remembered.setSize("frmTest", {19'000, 200});
  const auto window = newWindow();
  EXPECT_EQ(window->size(), QSize(window->screen()->availableSize().width(), 200));
}

}  // namespace
}  // namespace korvel::test
