#include "ui/message_box.h"

#include <QApplication>
#include <QClipboard>
#include <QGridLayout>
#include <QKeyEvent>

#include "ui/style/theme.h"

namespace korvel::ui {
namespace {

/// Width of a title bar without its title: icon and buttons, and as much on the other side where titles are centred.
constexpr int besideTitle = 160;

/// Width of the title in the font of title bars, as far as the toolkit knows it.
int titleWidth(const QWidget& window) {
  const QFontMetrics metrics(QApplication::font("QMdiSubWindowTitleBar"));
  return metrics.horizontalAdvance(window.windowTitle()) + px(&window, besideTitle);
}

}  // namespace

MessageBox::MessageBox(Icon icon, const QString& title, const QString& text, StandardButtons buttons, QWidget* owner)
    : QMessageBox(icon, title, text, buttons, owner) {
  setTextFormat(Qt::PlainText);
}

void MessageBox::showEvent(QShowEvent* event) {
  // The box computes its size from its layout, so a row of the width of the title makes it wider.
  if (auto* grid = qobject_cast<QGridLayout*>(layout()); grid != nullptr && !windowTitle().isEmpty())
    grid->addItem(new QSpacerItem(titleWidth(*this), 0, QSizePolicy::Minimum, QSizePolicy::Minimum), grid->rowCount(),
                  0, 1, grid->columnCount());
  QMessageBox::showEvent(event);
}

void MessageBox::keyPressEvent(QKeyEvent* event) {
  if (!event->matches(QKeySequence::Copy)) {
    QMessageBox::keyPressEvent(event);
    return;
  }
  const QString title = windowTitle();
  QApplication::clipboard()->setText(title.isEmpty() ? text() : title + QStringLiteral("\n\n") + text());
  event->accept();
}

}  // namespace korvel::ui
