// The window that shows the progress of a report.
#include "control/forms/page_progress_dialog.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <memory>

namespace korvel::control {
namespace {

class Pages : public ::testing::Test {
 protected:
  Pages() { owner->show(); }
  [[nodiscard]] QProgressDialog* dialog() const { return owner->findChild<QProgressDialog*>(); }

  std::unique_ptr<QWidget> owner = std::make_unique<QWidget>();
};

TEST_F(Pages, AreShownForALongReport) {
  PageProgressDialog window(*owner, std::chrono::milliseconds{0});
  ASSERT_NE(dialog(), nullptr);
  EXPECT_FALSE(dialog()->isVisible());
  // While pages are counted only the time advances.
  EXPECT_TRUE(window.show(0, 0));
  EXPECT_TRUE(window.show(0, 0));
  EXPECT_TRUE(dialog()->isVisible());
  EXPECT_EQ(dialog()->labelText(), "Counting pages...");
  EXPECT_TRUE(window.show(3, 3));
  EXPECT_EQ(dialog()->labelText(), "Printing page 3 of 3");
  EXPECT_TRUE(dialog()->isVisible());
}

TEST_F(Pages, AreNotShownForAShortReport) {
  PageProgressDialog window(*owner, std::chrono::hours{1});
  EXPECT_TRUE(window.show(0, 0));
  EXPECT_TRUE(window.show(1, 2));
  EXPECT_FALSE(dialog()->isVisible());
}

TEST_F(Pages, CanBeCancelledWhileTheyAreCounted) {
  PageProgressDialog window(*owner, std::chrono::milliseconds{0});
  EXPECT_TRUE(window.show(0, 0));
  dialog()->findChild<QPushButton*>()->click();
  EXPECT_FALSE(window.show(0, 0));
  EXPECT_FALSE(window.show(0, 0));
}

TEST_F(Pages, EndWithTheirOwner) {
  PageProgressDialog window(*owner, std::chrono::milliseconds{0});
  EXPECT_TRUE(window.show(0, 0));
  owner.reset();
  EXPECT_FALSE(window.show(0, 0));
}

}  // namespace
}  // namespace korvel::control
