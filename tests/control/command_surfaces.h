#pragma once

#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include "tests/control/viewer_fixture.h"

namespace korvel::test {

/// Menu bar and toolbar as users see them: by the texts and positions of real widgets.
class CommandTest : public ViewerTest {
 protected:
  static QMenuBar* menuBar(const AuditViewer& viewer) { return element<QMenuBar>(viewer, "SmartMenu"); }
  static QToolBar* toolBar(const AuditViewer& viewer) { return element<QToolBar>(viewer, "SmartToolbar"); }

  static QString keyOf(const QAction& action) {
    return action.menu() != nullptr ? action.menu()->objectName() : action.objectName();
  }

  /// The entry of a menu by the keys that lead to it: "FILE/EXIT".
  static QAction* entry(const AuditViewer& viewer, const QString& path) {
    const QWidget* container = menuBar(viewer);
    QAction* found = nullptr;
    for (const QString& key : path.split(QLatin1Char('/'))) {
      found = nullptr;
      const QList<QAction*> actions = container == nullptr ? QList<QAction*>() : container->actions();
      for (QAction* action : actions)
        if (found == nullptr && keyOf(*action) == key) found = action;
      if (found == nullptr) break;
      container = found->menu();
    }
    if (found == nullptr) ADD_FAILURE() << "no entry " << path.toStdString();
    return found;
  }

  static QToolButton* button(const AuditViewer& viewer, const QString& key) {
    return element<QToolButton>(viewer, QLatin1String("SmartToolbar_") + key);
  }

  /// Gives the viewer the focus.
  static void activate(AuditViewer& viewer) {
    viewer.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&viewer));
  }

  /// Opens the menus that lead to an entry and clicks it, with the pointer.
  static void choose(AuditViewer& viewer, const QString& path) {
    const QStringList keys = path.split(QLatin1Char('/'));
    QAction* top = entry(viewer, keys.first());
    QMenuBar* bar = menuBar(viewer);
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(top).center());
    QMenu* menu = top->menu();
    ASSERT_TRUE(menu->isVisible()) << path.toStdString();
    for (qsizetype depth = 2; depth < keys.size(); ++depth) {
      QAction* submenu = entry(viewer, keys.mid(0, depth).join(QLatin1Char('/')));
      menu->setActiveAction(submenu);
      if (!submenu->menu()->isVisible()) QTest::keyClick(menu, Qt::Key_Right);
      menu = submenu->menu();
      ASSERT_TRUE(menu->isVisible()) << path.toStdString();
    }
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry(viewer, path)).center());
    if (menu->isVisible()) menu->close();
  }
  static void press(AuditViewer& viewer, const QString& key) { QTest::mouseClick(button(viewer, key), Qt::LeftButton); }

  /// A menu as text, one entry a line: its text, its tick, "(off)" where it is disabled.
  static QString printed(const QWidget& container, const QString& indent = {}) {
    QString text;
    const QList<QAction*> actions = container.actions();
    for (const QAction* action : actions) {
      text += indent;
      if (action->isSeparator()) {
        text += QLatin1String("-\n");
        continue;
      }
      if (action->isCheckable()) text += QLatin1String(action->isChecked() ? "[x] " : "[ ] ");
      text += QString(action->text()).replace(QLatin1Char('\t'), QLatin1String("  "));
      if (!action->isEnabled()) text += QLatin1String(" (off)");
      text += QLatin1Char('\n');
      if (action->menu() != nullptr) text += printed(*action->menu(), indent + QLatin1String("  "));
    }
    return text;
  }

  /// The toolbar as text: "|" for a separator, "_" for an empty slot, keys for buttons, those that are off in brackets.
  static QString printedToolbar(const AuditViewer& viewer) {
    QStringList texts;
    const QList<QAction*> actions = toolBar(viewer)->actions();
    for (QAction* action : actions) {
      const auto* face = qobject_cast<QToolButton*>(toolBar(viewer)->widgetForAction(action));
      if (action->isSeparator())
        texts.append("|");
      else if (face == nullptr)
        texts.append("_");
      else
        texts.append(face->isEnabled() ? action->objectName() : '(' + action->objectName() + ')');
    }
    return texts.join(' ');
  }

  /// A text of the fixed table in the language of the offset.
  static QString tableText(int englishIdentifier, int offset) {
    const std::string_view text = settings::loadTextByIdentifier(englishIdentifier + offset);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  }
};

}  // namespace korvel::test
