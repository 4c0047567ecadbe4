#include "korvel/FailureBar.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QTextDocument>
#include <QTextEdit>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "korvel/AuditViewer.h"
#include "ui/accessible_role.h"
#include "ui/buttons.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel {
namespace {

constexpr int mostLines = 5;

/// Read-only text that is as high as it needs to be for its width, up to a few lines; then it scrolls.
class WrappedText final : public QTextEdit {
 public:
  WrappedText();
  void setContent(const QString& text);

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
};

WrappedText::WrappedText() {
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

}  // namespace

struct FailureBar::Parts {
  int number = 0;
  QDateTime time;
  QLabel* heading = new QLabel;
  WrappedText* reason = new WrappedText;
  QToolButton* close = new ui::IconButton(ui::IconName::ClearDate);
};

FailureBar::FailureBar(QWidget* parent) : QWidget(parent), parts_(std::make_unique<Parts>()) {
  ui::setAccessibleRole(*this, QAccessible::AlertMessage);
  setObjectName(QStringLiteral("failureBar"));
  ui::applyStyle(*this);
  parts_->heading->setObjectName(QStringLiteral("failureHeading"));
  parts_->heading->setTextFormat(Qt::PlainText);
  parts_->heading->setTextInteractionFlags(Qt::TextSelectableByMouse);
  parts_->heading->setFont(ui::semiBold(parts_->heading->font()));
  parts_->heading->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  parts_->reason->setObjectName(QStringLiteral("failureReason"));
  parts_->close->setObjectName(QStringLiteral("failureClose"));
  parts_->close->setAutoRaise(true);
  parts_->close->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  connect(parts_->close, &QToolButton::clicked, this, &QWidget::hide);

  auto* texts = new QVBoxLayout;
  texts->setSpacing(ui::px(this, 2));
  texts->addWidget(parts_->heading);
  texts->addWidget(parts_->reason);
  auto* row = new QHBoxLayout(this);
  const int inside = ui::px(this, ui::space::inside);
  row->setContentsMargins(ui::px(this, 2 * ui::space::inside), inside, inside, inside);
  row->setSpacing(inside);
  row->addLayout(texts, 1);
  row->addWidget(parts_->close, 0, Qt::AlignTop);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
  hide();
}

FailureBar::~FailureBar() = default;

void FailureBar::follow(AuditViewer& viewer) {
  connect(&viewer, &AuditViewer::LastFailureChanged, this, [this, &viewer] {
    if (!viewer.LastFailureTime().isValid()) {
      hide();
      return;
    }
    showFailure(viewer.LastFailureNumber(), viewer.LastFailureText(), viewer.LastFailureTime(),
                ViewerLanguage::current());
  });
  connect(&viewer, &AuditViewer::LanguageChanged, this, [this] { setLanguage(ViewerLanguage::current()); });
}

void FailureBar::showFailure(int number, const QString& text, const QDateTime& time, const ViewerLanguage& language) {
  parts_->number = number;
  parts_->time = time;
  parts_->reason->setContent(text);
  setLanguage(language);
  // Another text may need another height, also where the bar is shown already.
  layout()->invalidate();
  updateGeometry();
  show();
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void FailureBar::setLanguage(const ViewerLanguage& language) {
  if (!parts_->time.isValid()) return;
  const QString when = QLocale::system().toString(parts_->time, QLocale::ShortFormat);
  parts_->heading->setText(language.text("host.failedAt", when, QString::number(parts_->number)));
  parts_->reason->setAccessibleName(parts_->heading->text());
  parts_->close->setToolTip(language.text("host.closeMessage"));
  setAccessibleName(parts_->heading->text() + QLatin1Char(' ') + parts_->reason->toPlainText());
}

void FailureBar::paintEvent(QPaintEvent* /*event*/) {
  const ui::Theme& theme = ui::Theme::of(*this);
  QPainter painter(this);
  const int line = ui::px(this, 1);
  painter.fillRect(rect(), theme.surface);
  painter.fillRect(0, height() - line, width(), line, theme.border);
  painter.fillRect(0, 0, ui::px(this, 4), height() - line, theme.accent);
}

}  // namespace korvel
