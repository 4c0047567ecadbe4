#include "output/forms/print_font_form.h"

#include <QDialogButtonBox>
#include <QFontInfo>
#include <QFormLayout>
#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>
#include <cmath>
#include <exception>
#include <utility>

#include "output/report.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"
#include "ui/texts.h"

namespace korvel::output {
namespace {

constexpr int minWidth = 320;

/// The size of a font in points, to four fractional digits, also where it was given in pixels.
double pointsOf(const QFont& font) {
  constexpr double fraction = 10000;
  const double points = font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
  return std::round(points * fraction) / fraction;
}

QLabel* makeLabel(const char* name) {
  auto* label = new QLabel;
  label->setObjectName(QLatin1String(name));
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

QPushButton* makeButton(QPushButton* button, const char* name, const QString& text) {
  button->setObjectName(QLatin1String(name));
  button->setText(text);
  button->setAutoDefault(false);
  return button;
}

}  // namespace

frmPrintFont::frmPrintFont(PrintFontContext context, QWidget* owner)
    : QDialog(owner),
      context_(std::move(context)),
      lblFontName_(makeLabel("lblFontName")),
      lblFontSize_(makeLabel("lblFontSize")),
      btChangeFont_(makeButton(new ui::SecondaryButton, "btChangeFont", text("printFont.change"))),
      btDefault_(makeButton(new ui::SecondaryButton, "btDefault", text("printFont.default"))),
      btClose_(makeButton(new ui::PrimaryButton, "btClose", text("printFont.close"))) {
  setObjectName(QStringLiteral("frmPrintFont"));
  // Deliberately English in every language.
  setWindowTitle(QStringLiteral("Page Setup"));
  setModal(true);
  ui::applyStyle(*this);
  QVBoxLayout* column = ui::styleDialog(*this);

  auto* rows = new QFormLayout;
  rows->setSpacing(ui::px(this, ui::space::inside));
  const auto addRow = [&](const char* key, QLabel* value) {
    auto* title = new QLabel(text(key));
    title->setTextFormat(Qt::PlainText);
    ui::setMuted(*title);
    value->setAccessibleName(title->text());
    rows->addRow(title, value);
  };
  addRow("printFont.name", lblFontName_);
  addRow("printFont.size", lblFontSize_);
  column->addLayout(rows);

  connect(btChangeFont_, &QPushButton::clicked, this, [this] { btChangeFont_Click(); });
  connect(btDefault_, &QPushButton::clicked, this, [this] { btDefault_Click(); });
  connect(btClose_, &QPushButton::clicked, this, &QDialog::accept);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(btChangeFont_, QDialogButtonBox::ActionRole);
  buttons->addButton(btDefault_, QDialogButtonBox::ActionRole);
  // Last in every platform's order of buttons: closing neither accepts nor rejects.
  buttons->addButton(btClose_, QDialogButtonBox::RejectRole);
  ui::addButtons(*this, buttons);
  btClose_->setDefault(true);
  btClose_->setFocus();
  setMinimumWidth(ui::px(this, minWidth));
  Form_Activate();
}

QString frmPrintFont::text(const char* key) const {
  return ui::ownText(key, context_.language);
}

void frmPrintFont::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  Form_Activate();
}

void frmPrintFont::Form_Activate() {
  lblFontName_->setText(ui::fromUtf8(context_.font.name));
  lblFontSize_->setText(ui::fromUtf8(fontSizeText(context_.font.size)));
}

void frmPrintFont::btChangeFont_Click() {
  try {
    const QPointer<frmPrintFont> alive(this);
    QFont current(ui::fromUtf8(context_.font.name));
    if (context_.font.size > 0) current.setPointSizeF(context_.font.size);
    const std::optional<QFont> chosen = context_.services->chooseFont(this, current);
    if (!alive || !chosen) return;
    context_.font = {chosen->family().toStdString(), pointsOf(*chosen)};
    Form_Activate();
  } catch (const std::exception&) {
    // As after a cancel: font and labels stay as they were.
    return;
  }
}

void frmPrintFont::btDefault_Click() {
  context_.font = {};
  Form_Activate();
}

}  // namespace korvel::output
