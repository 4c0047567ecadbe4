#include "control/qt_control_services.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontDialog>
#include <QMessageBox>
#include <QTimer>
#include <functional>

namespace korvel::control {
namespace {

/// Waits, without sleeping, for a modal dialog and hands it to `answer` once.
class WhenModal {
 public:
  explicit WhenModal(std::function<void(QWidget*)> answer) {
    QObject::connect(&timer_, &QTimer::timeout, [this, answer = std::move(answer)] {
      if (QWidget* dialog = QApplication::activeModalWidget()) {
        timer_.stop();
        answer(dialog);
      }
    });
    timer_.start(0);
  }

 private:
  QTimer timer_;
};

TEST(QtServices, MessagesShowMarkupAsTheTextItIs) {
  QtControlServices services;
  QWidget owner;
  owner.show();
  QString text;
  QString title;
  Qt::TextFormat format = Qt::AutoText;
  QMessageBox::Icon icon = QMessageBox::NoIcon;
  const WhenModal answer([&](QWidget* dialog) {
    auto* box = qobject_cast<QMessageBox*>(dialog);
    ASSERT_NE(box, nullptr);
    text = box->text();
    title = box->windowTitle();
    format = box->textFormat();
    icon = box->icon();
    EXPECT_EQ(box->parentWidget(), &owner);
    box->accept();
  });
  services.messageBox(&owner, MessageIcon::information, "Title", "<b>1</b>\r\n&2");
  EXPECT_EQ(text, "<b>1</b>\r\n&2");
  EXPECT_EQ(title, "Title");
  EXPECT_EQ(format, Qt::PlainText);
  EXPECT_EQ(icon, QMessageBox::Information);
}

TEST(QtServices, AMessageSurvivesTheDeathOfItsOwner) {
  QtControlServices services;
  auto* owner = new QWidget;
  const WhenModal answer([&](QWidget*) { delete owner; });
  services.messageBox(owner, MessageIcon::critical, "", "text");
}

TEST(QtServices, ACancelledFontIsNone) {
  QtControlServices services;
  const WhenModal cancel([](QWidget* dialog) { qobject_cast<QDialog*>(dialog)->reject(); });
  EXPECT_EQ(services.chooseFont(nullptr, QFont()), std::nullopt);
}

TEST(QtServices, AnAcceptedFontIsTheDialogs) {
  QtControlServices services;
  const WhenModal choose([](QWidget* dialog) {
    qobject_cast<QFontDialog*>(dialog)->setCurrentFont(QFont("DejaVu Sans Mono", 17));
    qobject_cast<QDialog*>(dialog)->accept();
  });
  const auto font = services.chooseFont(nullptr, QFont());
  ASSERT_TRUE(font.has_value());
  EXPECT_EQ(font->pointSize(), 17);
}

TEST(QtServices, TheHourglassIsNeitherStackedNorLost) {
  QtControlServices services;
  services.setPointer(Pointer::standard);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  {
    const BusyPointer outer(services);
    services.setPointer(Pointer::hourglass);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  }
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(QtServices, ADialogOverTheHourglassHasTheArrow) {
  QtControlServices services;
  Qt::CursorShape shape = Qt::BlankCursor;
  const WhenModal answer([&](QWidget* dialog) {
    shape = QApplication::overrideCursor()->shape();
    qobject_cast<QDialog*>(dialog)->accept();
  });
  const BusyPointer busy(services);
  services.messageBox(nullptr, MessageIcon::information, "", "text");
  EXPECT_EQ(shape, Qt::ArrowCursor);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
}

}  // namespace
}  // namespace korvel::control
