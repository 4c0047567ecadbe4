#pragma once

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QString>
#include <QStringList>
#include <QToolButton>
#include <QWidget>

namespace korvel::test {

/// The texts of a window that its elements have no room for, a line each. Fields and lists scroll: only the height of a
/// line is asked of them. A text that is shortened on purpose has all of it as a tooltip.
class CutTexts {
 public:
  [[nodiscard]] static QStringList in(const QWidget& window) {
    CutTexts texts;
    for (const QWidget* widget : window.findChildren<QWidget*>())
      if (widget->isVisible() && widget->window() == window.window()) texts.look(*widget);
    return texts.cut_;
  }

 private:
  void look(const QWidget& widget) {
    if (const auto* const label = qobject_cast<const QLabel*>(&widget))
      lookAtLabel(*label);
    else if (const auto* const button = qobject_cast<const QAbstractButton*>(&widget))
      lookAtButton(*button);
    else if (const auto* const box = qobject_cast<const QGroupBox*>(&widget))
      needs(*box, widthOf(*box, box->title()), box->title());
    else if (qobject_cast<const QLineEdit*>(&widget) != nullptr || qobject_cast<const QComboBox*>(&widget) != nullptr)
      needs(widget, 0, QStringLiteral("field"));
  }
  void lookAtButton(const QAbstractButton& button) {
    const auto* const tool = qobject_cast<const QToolButton*>(&button);
    const bool showsText =
        tool == nullptr || tool->icon().isNull() || tool->toolButtonStyle() != Qt::ToolButtonIconOnly;
    const int icon = button.icon().isNull() ? 0 : button.iconSize().width();
    const QString text = showsText ? button.text() : QString();
    needs(button, (text.isEmpty() ? 0 : widthOf(button, text)) + icon, text);
  }
  void lookAtLabel(const QLabel& label) {
    if (label.text().isEmpty()) return;
    if (label.wordWrap()) {
      const int height = label.heightForWidth(label.width());
      if (label.height() < height) add(label, label.text(), label.height(), height);
      lookAtPlace(label, label.text());
      return;
    }
    if (label.toolTip().isEmpty())
      needs(label, label.textFormat() == Qt::RichText ? 0 : widthOf(label, label.text()), label.text());
  }
  static int widthOf(const QWidget& widget, const QString& text) {
    int widest = 0;
    for (const QString& line : text.split(QLatin1Char('\n')))
      widest = std::max(widest, widget.fontMetrics().size(Qt::TextShowMnemonic | Qt::TextSingleLine, line).width());
    return widest;
  }
  void needs(const QWidget& widget, int width, const QString& text) {
    if (width == 0 && text.isEmpty()) return;
    if (widget.width() < width) add(widget, text, widget.width(), width);
    const int height = text.isEmpty() ? 0 : widget.fontMetrics().height();
    if (widget.height() < height) add(widget, text + QLatin1String(" (height)"), widget.height(), height);
    lookAtPlace(widget, text);
  }
  /// What is outside of its parent cannot be seen, unless the parent scrolls.
  void lookAtPlace(const QWidget& widget, const QString& text) {
    for (const QWidget* above = widget.parentWidget(); above != nullptr; above = above->parentWidget()) {
      if (qobject_cast<const QAbstractScrollArea*>(above) != nullptr) return;
      if (above->isWindow()) break;
    }
    const QRect seen = widget.visibleRegion().boundingRect();
    if (seen.width() < widget.width() || seen.height() < widget.height())
      cut_.append(wayTo(widget) + QStringLiteral(": \"%1\" is seen at %2 x %3 of %4 x %5")
                                      .arg(text.left(40))
                                      .arg(seen.width())
                                      .arg(seen.height())
                                      .arg(widget.width())
                                      .arg(widget.height()));
  }
  void add(const QWidget& widget, const QString& text, int has, int wants) {
    cut_.append(wayTo(widget) + QStringLiteral(": \"%1\" has %2, needs %3").arg(text.left(60)).arg(has).arg(wants));
  }
  static QString wayTo(const QWidget& widget) {
    QString way;
    for (const QWidget* each = &widget; each != nullptr; each = each->parentWidget())
      way.prepend(QLatin1Char('/') + QString::fromLatin1(each->metaObject()->className()) +
                  (each->objectName().isEmpty() ? QString() : QLatin1Char('#') + each->objectName()));
    return way;
  }

  QStringList cut_;
};

}  // namespace korvel::test
