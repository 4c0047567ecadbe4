#include "control/qt_control_services.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <functional>

#include "control/library_state.h"
#include "tests/control/when_modal.h"

namespace korvel::control {
namespace {

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
  services.messageBox(&owner, ui::MessageIcon::information, "Title", "<b>1</b>\r\n&2");
  EXPECT_EQ(text, "<b>1</b>\r\n&2");
  EXPECT_EQ(title, "Title");
  EXPECT_EQ(format, Qt::PlainText);
  EXPECT_EQ(icon, QMessageBox::Information);
}

TEST(QtServices, CtrlCCopiesTitleAndTextOfAMessage) {
  QtControlServices services;
  QString copied;
  const auto copy = [&](QWidget* dialog) {
    QGuiApplication::clipboard()->setText("before");
    QTest::keyClick(dialog, Qt::Key_C, Qt::ControlModifier);
    copied = QGuiApplication::clipboard()->text();
    dialog->close();
  };
  {
    const WhenModal answer(copy);
    services.messageBox(nullptr, ui::MessageIcon::information, "Title", "<b>1</b>\n&2");
    EXPECT_EQ(copied, "Title\n\n<b>1</b>\n&2");
  }
  {
    const WhenModal answer(copy);
    services.messageBox(nullptr, ui::MessageIcon::critical, "", "5:Error in X");
    EXPECT_EQ(copied, "5:Error in X");
  }
  {
    const WhenModal answer(copy);
    services.confirm(nullptr, "Title", "Question?");
    EXPECT_EQ(copied, "Title\n\nQuestion?");
  }
}

TEST(QtServices, AMessageIsAsWideAsItsTitleAndWhatStandsBesideIt) {
  QtControlServices services;
  const auto widthOf = [&](const QString& title) {
    int width = 0;
    const WhenModal answer([&](QWidget* dialog) {
      width = dialog->width();
      dialog->close();
    });
    services.messageBox(nullptr, ui::MessageIcon::none, title, "x");
    return width;
  };
  const QFontMetrics metrics(QApplication::font("QMdiSubWindowTitleBar"));
  for (const char* title : {"KorvelAudit Viewer Message", "SQLServer Object Event and a few words more"})
    EXPECT_GE(widthOf(title), metrics.horizontalAdvance(title) + 150) << title;
  // Without a title it is no wider than it was.
  EXPECT_LT(widthOf(""), 150);
}

TEST(QtServices, AMessageSurvivesTheDeathOfItsOwner) {
  QtControlServices services;
  auto* owner = new QWidget;
  const WhenModal answer([&](QWidget*) { delete owner; });
  services.messageBox(owner, ui::MessageIcon::critical, "", "text");
}

TEST(QtServices, ATypedTextIsHandedOver) {
  QtControlServices services;
  QString prompt;
  QString title;
  QString offered = "?";
  const WhenModal type([&](QWidget* dialog) {
    auto* input = qobject_cast<QInputDialog*>(dialog);
    ASSERT_NE(input, nullptr);
    prompt = input->labelText();
    title = input->windowTitle();
    offered = input->textValue();
    input->setTextValue(" a b ");
    input->accept();
  });
  EXPECT_EQ(services.inputBox(nullptr, "Enter Query Name?", "Name"), " a b ");
  EXPECT_EQ(prompt, "Enter Query Name?");
  EXPECT_EQ(title, "Name");
  EXPECT_EQ(offered, "");
}

TEST(QtServices, ACancelledTextIsEmpty) {
  QtControlServices services;
  const WhenModal cancel([](QWidget* dialog) {
    qobject_cast<QInputDialog*>(dialog)->setTextValue("typed");
    qobject_cast<QDialog*>(dialog)->reject();
  });
  EXPECT_EQ(services.inputBox(nullptr, "p", "t"), "");
}

TEST(QtServices, AQuestionHasItsAnswersInTheLanguage) {
  QtControlServices services;
  libraryState().language = settings::LanguageOffset("10000");
  QStringList answers;
  const auto press = [&](QMessageBox::ButtonRole role) {
    return [&answers, role](QWidget* dialog) {
      auto* box = qobject_cast<QMessageBox*>(dialog);
      ASSERT_NE(box, nullptr);
      EXPECT_EQ(box->textFormat(), Qt::PlainText);
      for (QAbstractButton* button : box->buttons()) answers.append(button->text());
      for (QAbstractButton* button : box->buttons())
        if (box->buttonRole(button) == role) button->click();
    };
  };
  {
    const WhenModal yes(press(QMessageBox::YesRole));
    EXPECT_TRUE(services.confirm(nullptr, "t", "q"));
  }
  {
    const WhenModal no(press(QMessageBox::NoRole));
    EXPECT_FALSE(services.confirm(nullptr, "t", "q"));
  }
  {
    const WhenModal close([](QWidget* dialog) { dialog->close(); });
    EXPECT_FALSE(services.confirm(nullptr, "t", "q"));
  }
  EXPECT_TRUE(answers.contains("&Ja"));
  EXPECT_TRUE(answers.contains("&Nein"));
  libraryState() = LibraryState();
}

TEST(QtServices, TheDeathOfTheirOwnerCancelsThem) {
  QtControlServices services;
  const auto dying = [](const std::function<void(QWidget*)>& show) {
    auto* owner = new QWidget;
    const WhenModal answer([&](QWidget*) { delete owner; });
    show(owner);
  };
  dying([&](QWidget* owner) { EXPECT_EQ(services.inputBox(owner, "p", "t"), ""); });
  dying([&](QWidget* owner) { EXPECT_FALSE(services.confirm(owner, "t", "q")); });
}

TEST(QtServices, TheHourglassIsNeitherStackedNorLost) {
  QtControlServices services;
  services.setPointer(ui::Pointer::standard);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  {
    const ui::BusyPointer outer(services);
    services.setPointer(ui::Pointer::hourglass);
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
  const ui::BusyPointer busy(services);
  services.messageBox(nullptr, ui::MessageIcon::information, "", "text");
  EXPECT_EQ(shape, Qt::ArrowCursor);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
}

}  // namespace
}  // namespace korvel::control
