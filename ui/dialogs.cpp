#include "ui/dialogs.h"

#include <QAbstractScrollArea>
#include <QDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/style/theme.h"

namespace korvel::ui {

QVBoxLayout* styleDialog(QDialog& dialog) {
  dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  auto* layout = new QVBoxLayout(&dialog);
  const int around = px(&dialog, space::dialog);
  layout->setContentsMargins(around, around, around, around);
  layout->setSpacing(px(&dialog, space::between));
  return layout;
}

void setFirstSize(QDialog& dialog, int width, int height) {
  constexpr double mostOfScreen = 0.9;
  QSize size(px(&dialog, width), px(&dialog, height));
  if (const QScreen* const screen = dialog.screen()) size = size.boundedTo(screen->availableSize() * mostOfScreen);
  dialog.resize(size);
}

void growToTexts(QDialog& dialog) {
  QLayout* const layout = dialog.layout();
  layout->activate();
  const int needed =
      layout->hasHeightForWidth() ? layout->totalHeightForWidth(dialog.width()) : layout->totalSizeHint().height();
  if (needed > dialog.height()) dialog.resize(dialog.width(), needed);
}

void addButtons(QDialog& dialog, QDialogButtonBox* buttons) {
  auto* layout = qobject_cast<QVBoxLayout*>(dialog.layout());
  if (layout == nullptr || buttons == nullptr) return;
  layout->addSpacing(px(&dialog, space::inGroup));
  layout->addWidget(buttons);
}

namespace {

/// Belongs to its element.
class LineHeight final : public QObject {
 public:
  LineHeight(QWidget& element, int at96) : QObject(&element), element_(element), at96_(at96) {
    element.installEventFilter(this);
    apply();
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::FontChange) apply();
    return QObject::eventFilter(watched, event);
  }

 private:
  void apply() {
    constexpr int aroundText = 4;
    element_.setFixedHeight(
        std::max(px(&element_, at96_), element_.fontMetrics().height() + px(&element_, aroundText)));
  }

  QWidget& element_;
  int at96_;
};

}  // namespace

void setLineHeight(QWidget& element, int at96) {
  new LineHeight(element, at96);  // owned by the element
}

void showSelectable(QLabel& label, const QString& text) {
  label.setText(text);
  label.setTextInteractionFlags(text.isEmpty() ? Qt::NoTextInteraction
                                               : Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void setMuted(QLabel& label) {
  // ViewerStyle paints texts of this role in grey. A role, unlike a colour, follows changes of the palette.
  label.setForegroundRole(QPalette::PlaceholderText);
}

void paintEmptyMessage(QAbstractScrollArea& area, const QString& text) {
  if (text.isEmpty()) return;
  QPainter painter(area.viewport());
  painter.setFont(area.font());
  painter.setPen(Theme::of(area).muted);
  const int inset = px(&area, 4 * space::inside);
  const QRect middle = area.viewport()->rect().adjusted(inset, inset, -inset, -inset);
  painter.drawText(middle, Qt::AlignCenter | Qt::TextWordWrap, text);
}

}  // namespace korvel::ui
