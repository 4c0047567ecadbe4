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

#include "control/look/buttons.h"
#include "control/look/dialogs.h"
#include "control/look/look.h"
#include "control/look/theme.h"
#include "output/report.h"

namespace korvel::output {
namespace {

constexpr int leastWidth = 320;

QString fromUtf8(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

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

QPushButton* dressed(QPushButton* button, const char* name, const QString& text) {
  button->setObjectName(QLatin1String(name));
  button->setText(text);
  button->setAutoDefault(false);
  return button;
}

}  // namespace

frmPrintFont::frmPrintFont(PrintFontSurroundings surroundings, QWidget* owner)
    : QDialog(owner),
      surroundings_(std::move(surroundings)),
      lblFontName_(makeLabel("lblFontName")),
      lblFontSize_(makeLabel("lblFontSize")),
      btChangeFont_(dressed(new look::SecondaryButton, "btChangeFont", text("printFont.change"))),
      btDefault_(dressed(new look::SecondaryButton, "btDefault", text("printFont.default"))),
      btClose_(dressed(new look::PrimaryButton, "btClose", text("printFont.close"))) {
  setObjectName(QStringLiteral("frmPrintFont"));
  // Deliberately English in every language.
  setWindowTitle(QStringLiteral("Page Setup"));
  setModal(true);
  look::applyLook(*this);
  QVBoxLayout* column = look::dressDialog(*this);

  auto* rows = new QFormLayout;
  rows->setSpacing(look::px(this, look::space::inside));
  const auto addRow = [&](const char* key, QLabel* value) {
    auto* title = new QLabel(text(key));
    title->setTextFormat(Qt::PlainText);
    look::setMuted(*title);
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
  // Behind the other two in every order that platforms have: closing accepts nothing and rejects nothing.
  buttons->addButton(btClose_, QDialogButtonBox::RejectRole);
  look::addButtons(*this, buttons);
  btClose_->setDefault(true);
  btClose_->setFocus();
  setMinimumWidth(look::px(this, leastWidth));
  Form_Activate();
}

QString frmPrintFont::text(const char* key) const {
  return fromUtf8(settings::ownText(key, surroundings_.language));
}

void frmPrintFont::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  Form_Activate();
}

void frmPrintFont::Form_Activate() {
  lblFontName_->setText(fromUtf8(surroundings_.font.name));
  lblFontSize_->setText(fromUtf8(fontSizeText(surroundings_.font.size)));
}

void frmPrintFont::btChangeFont_Click() {
  try {
    const QPointer<frmPrintFont> alive(this);
    QFont current(fromUtf8(surroundings_.font.name));
    if (surroundings_.font.size > 0) current.setPointSizeF(surroundings_.font.size);
    const std::optional<QFont> chosen = surroundings_.services->chooseFont(this, current);
    if (!alive || !chosen) return;
    surroundings_.font = {chosen->family().toStdString(), pointsOf(*chosen)};
    Form_Activate();
  } catch (const std::exception&) {
    // As after a cancel: font and labels stay as they were.
    return;
  }
}

void frmPrintFont::btDefault_Click() {
  surroundings_.font = {};
  Form_Activate();
}

}  // namespace korvel::output
