#include "host/failure_bar.h"

#include <QAccessibleWidget>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QTextDocument>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "host/host_texts.h"
#include "ui/buttons.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::host {
namespace {

constexpr int mostLines = 5;

/// The bar is an alert to assistive technology.
QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  if (className != QLatin1String(FailureBar::staticMetaObject.className()) || object == nullptr) return nullptr;
  return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::AlertMessage);
}

}  // namespace

WrappedText::WrappedText(QWidget* parent) : QTextEdit(parent) {
  setReadOnly(true);
  setAcceptRichText(false);
  setTabChangesFocus(true);
  setFrameShape(QFrame::NoFrame);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  viewport()->setAutoFillBackground(false);
  document()->setDocumentMargin(0);
  setMaximumHeight(mostLines * fontMetrics().lineSpacing());
}

void WrappedText::setContent(const QString& text) {
  setPlainText(text);
  updateGeometry();
}

int WrappedText::heightForWidth(int width) const {
  // A copy: the widget's own document is laid out for the width that it has.
  QTextDocument measured;
  measured.setDefaultFont(font());
  measured.setDocumentMargin(0);
  QTextOption wrapping;
  wrapping.setWrapMode(wordWrapMode());
  measured.setDefaultTextOption(wrapping);
  // More than this never fits into the lines shown.
  constexpr qsizetype measuredCharacters = 4000;
  measured.setPlainText(toPlainText().left(measuredCharacters));
  measured.setTextWidth(width);
  const int line = fontMetrics().lineSpacing();
  return std::clamp(static_cast<int>(std::ceil(measured.size().height())), line, mostLines * line);
}

QSize WrappedText::sizeHint() const {
  return {0, fontMetrics().lineSpacing()};
}

FailureBar::FailureBar(QWidget* parent)
    : QWidget(parent),
      heading_(new QLabel),
      reason_(new WrappedText),
      close_(new ui::IconButton(ui::IconName::ClearDate)) {
  static const bool installed = (QAccessible::installFactory(&makeInterface), true);
  Q_UNUSED(installed)
  setObjectName(QStringLiteral("failureBar"));
  ui::applyStyle(*this);
  heading_->setObjectName(QStringLiteral("failureHeading"));
  heading_->setTextFormat(Qt::PlainText);
  heading_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  heading_->setFont(ui::semiBold(heading_->font()));
  heading_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  reason_->setObjectName(QStringLiteral("failureReason"));
  close_->setObjectName(QStringLiteral("failureClose"));
  close_->setAutoRaise(true);
  close_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  connect(close_, &QToolButton::clicked, this, &QWidget::hide);

  auto* texts = new QVBoxLayout;
  texts->setSpacing(ui::px(this, 2));
  texts->addWidget(heading_);
  texts->addWidget(reason_);
  auto* row = new QHBoxLayout(this);
  const int inside = ui::px(this, ui::space::inside);
  row->setContentsMargins(ui::px(this, 2 * ui::space::inside), inside, inside, inside);
  row->setSpacing(inside);
  row->addLayout(texts, 1);
  row->addWidget(close_, 0, Qt::AlignTop);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
  hide();
}

void FailureBar::showFailure(int number, const QString& text, const QDateTime& time,
                             const settings::LanguageOffset& language) {
  number_ = number;
  time_ = time;
  reason_->setContent(text);
  setLanguage(language);
  // Another text may need another height, also where the bar is shown already.
  layout()->invalidate();
  updateGeometry();
  show();
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void FailureBar::setLanguage(const settings::LanguageOffset& language) {
  if (!time_.isValid()) return;
  const QString when = QLocale::system().toString(time_, QLocale::ShortFormat);
  heading_->setText(hostText("host.failedAt", language, when, QString::number(number_)));
  reason_->setAccessibleName(heading_->text());
  close_->setToolTip(hostText("host.closeMessage", language));
  setAccessibleName(heading_->text() + QLatin1Char(' ') + reason_->toPlainText());
}

void FailureBar::paintEvent(QPaintEvent* /*event*/) {
  const ui::Theme& theme = ui::Theme::of(*this);
  QPainter painter(this);
  const int line = ui::px(this, 1);
  painter.fillRect(rect(), theme.surface);
  painter.fillRect(0, height() - line, width(), line, theme.border);
  painter.fillRect(0, 0, ui::px(this, 4), height() - line, theme.accent);
}

}  // namespace korvel::host
