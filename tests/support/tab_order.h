#pragma once

#include <QApplication>
#include <QStringList>
#include <QTest>
#include <QWidget>
#include <algorithm>
#include <vector>

namespace korvel::test {

/// The way that Tab takes through a window which is active.
class TabOrder {
 public:
  /// What is wrong with it, a line each: an element that is never reached, one that keeps the focus, a step back to
  /// what stands before it in the same frame, or another way back with Shift+Tab. The focus is then at the window's
  /// first element.
  [[nodiscard]] static QStringList problems(QWidget& window) {
    TabOrder order;
    const std::vector<QWidget*> there = order.walk(window, Qt::Key_Tab);
    std::vector<QWidget*> back = order.walk(window, Qt::Key_Backtab);
    for (const QWidget* widget : window.findChildren<QWidget*>())
      if (takesTab(*widget, window) && std::find(there.begin(), there.end(), widget) == there.end())
        order.problems_.append(nameOf(*widget) + QLatin1String(" is not reached"));
    for (std::size_t i = 1; i < there.size(); ++i)
      if (there[i - 1]->parentWidget() == there[i]->parentWidget() && standsBefore(*there[i], *there[i - 1]))
        order.problems_.append(nameOf(*there[i]) + QLatin1String(" follows ") + nameOf(*there[i - 1]) +
                               QLatin1String(", which stands behind it"));
    // Both ways begin at the same element.
    if (!back.empty()) std::reverse(back.begin() + 1, back.end());
    if (there != back)
      order.problems_.append(QLatin1String("Shift+Tab takes another way:") + names(there) + QLatin1String(" and back") +
                             names(back));
    return order.problems_;
  }
  /// Number of elements that Tab visits.
  [[nodiscard]] static std::size_t length(QWidget& window) { return TabOrder().walk(window, Qt::Key_Tab).size(); }

 private:
  static bool takesTab(const QWidget& widget, const QWidget& window) {
    return widget.isVisible() && widget.isEnabled() && widget.window() == &window && widget.focusProxy() == nullptr &&
           (widget.focusPolicy() & Qt::TabFocus) != 0;
  }
  /// The elements that get the focus, from the window's first one until it has it again.
  std::vector<QWidget*> walk(QWidget& window, Qt::Key key) {
    QWidget* first = window.nextInFocusChain();
    while (first != &window && !takesTab(*first, window)) first = first->nextInFocusChain();
    first->setFocus(Qt::TabFocusReason);
    std::vector<QWidget*> visited;
    constexpr std::size_t most = 200;
    while (visited.size() < most) {
      QWidget* const focused = QApplication::focusWidget();
      if (focused == nullptr || focused->window() != &window) {
        problems_.append(QLatin1String("the focus leaves the window"));
        break;
      }
      if (const auto seen = std::find(visited.begin(), visited.end(), focused); seen != visited.end()) {
        if (seen != visited.begin())
          problems_.append(nameOf(*focused) + QLatin1String(" keeps the focus from the others after") + names(visited));
        break;
      }
      visited.push_back(focused);
      // A field for a time has several parts.
      constexpr int mostParts = 4;
      for (int part = 0; part < mostParts && QApplication::focusWidget() == focused; ++part)
        QTest::keyClick(focused, key, key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    }
    return visited;
  }
  /// Whether one is read before the other: in a row above it, or left of it in the same row, and not in a column
  /// behind.
  static bool standsBefore(const QWidget& one, const QWidget& other) {
    const QRect a = one.geometry();
    const QRect b = other.geometry();
    if (a.left() > b.right()) return false;
    if (a.bottom() < b.top()) return true;
    return a.right() < b.left() && a.top() <= b.bottom();
  }
  static QString nameOf(const QWidget& widget) {
    return QString::fromLatin1(widget.metaObject()->className()) + QLatin1Char('#') + widget.objectName();
  }
  static QString names(const std::vector<QWidget*>& widgets) {
    QString text;
    for (const QWidget* widget : widgets) text += QLatin1Char(' ') + nameOf(*widget);
    return text;
  }

  QStringList problems_;
};

}  // namespace korvel::test
