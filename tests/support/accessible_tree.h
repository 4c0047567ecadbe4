#pragma once

#include <QAccessible>
#include <QString>
#include <QStringList>
#include <QWidget>

namespace korvel::test {

/// What a screen reader would miss in a window: each element that can be used must have a name, and one whose face is a
/// picture alone a description or a name too. A line for each, with the way that leads to it.
class AccessibleTree {
 public:
  [[nodiscard]] static QStringList missing(QWidget& window) {
    AccessibleTree tree;
    tree.visit(QAccessible::queryAccessibleInterface(&window), {});
    return tree.missing_;
  }
  /// Number of elements that can be used: a tree without any tells nothing.
  [[nodiscard]] static int usable(QWidget& window) {
    AccessibleTree tree;
    tree.visit(QAccessible::queryAccessibleInterface(&window), {});
    return tree.usable_;
  }

 private:
  static bool canBeUsed(const QAccessibleInterface& element) {
    switch (element.role()) {
      case QAccessible::Button:
      case QAccessible::ButtonDropDown:
      case QAccessible::ButtonMenu:
      case QAccessible::ButtonDropGrid:
      case QAccessible::CheckBox:
      case QAccessible::RadioButton:
      case QAccessible::ComboBox:
      case QAccessible::EditableText:
      case QAccessible::SpinBox:
      case QAccessible::Slider:
      case QAccessible::List:
      case QAccessible::Table:
      case QAccessible::Tree:
      case QAccessible::PageTabList:
      case QAccessible::PageTab:
      case QAccessible::MenuItem:
      case QAccessible::Dialog:
      case QAccessible::ProgressBar:
      case QAccessible::Splitter:
        return true;
      default:
        return element.state().focusable && !givesItsFocusAway(element);
    }
  }
  static bool givesItsFocusAway(const QAccessibleInterface& element) {
    const auto* const widget = qobject_cast<const QWidget*>(element.object());
    return widget != nullptr && widget->focusProxy() != nullptr;
  }
  /// Rows and cells have the texts of their data.
  static bool isData(const QAccessibleInterface& element) {
    switch (element.role()) {
      case QAccessible::Cell:
      case QAccessible::ListItem:
      case QAccessible::TreeItem:
      case QAccessible::Row:
      case QAccessible::ColumnHeader:
      case QAccessible::RowHeader:
        return true;
      default:
        return false;
    }
  }

  void visit(QAccessibleInterface* element, const QString& way) {
    if (element == nullptr || !element->isValid() || element->state().invisible || isData(*element)) return;
    const QObject* const object = element->object();
    const QString name = element->text(QAccessible::Name);
    QString here = way + QLatin1Char('/') + (object != nullptr ? object->metaObject()->className() : "item");
    if (object != nullptr && !object->objectName().isEmpty()) here += QLatin1Char('#') + object->objectName();
    if (canBeUsed(*element)) {
      ++usable_;
      if (name.trimmed().isEmpty()) missing_.append(here + QLatin1String(": no name"));
      if (element->role() == QAccessible::NoRole || element->role() == QAccessible::Client)
        missing_.append(here + QLatin1String(": no role"));
      if (name.contains(QLatin1Char('&')) && !name.contains(QLatin1String("& ")))
        missing_.append(here + QLatin1String(": a mark of a letter in its name: ") + name);
    }
    if (element->role() == QAccessible::Table || element->role() == QAccessible::List ||
        element->role() == QAccessible::Tree)
      return;
    for (int i = 0; i < element->childCount(); ++i) visit(element->child(i), here);
  }

  QStringList missing_;
  int usable_ = 0;
};

}  // namespace korvel::test
