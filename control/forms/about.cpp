#include "control/forms/about.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/icons/application_icon.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {

LibraryVersion libraryVersion() noexcept {
  return {KORVEL_VERSION_MAJOR, KORVEL_VERSION_MINOR, KORVEL_VERSION_REVISION};
}

QString aboutText(const LibraryVersion& version) {
  // One number after the other in plain digits, whatever the locale.
  return QStringLiteral("Korvel Audit Viewer - v") + QString::number(version.majorNumber) + QLatin1Char('.') +
         QString::number(version.minorNumber) + QLatin1Char('.') + QString::number(version.revision);
}

frmAbout::frmAbout(const LibraryVersion& version, QWidget* owner)
    : QDialog(owner),
      Image1_(new ui::ApplicationIconPicture),
      lblVersion_(new QLabel(aboutText(version))),
      btOk_(new ui::PrimaryButton) {
  setObjectName(QStringLiteral("frmAbout"));
  // Deliberately not the name on the version label.
  setWindowTitle(QStringLiteral("About velAudit Viewer"));
  setModal(true);
  ui::applyStyle(*this);
  Image1_->setObjectName(QStringLiteral("Image1"));
  Image1_->setAccessibleName(QStringLiteral("Korvel Audit Viewer"));
  lblVersion_->setObjectName(QStringLiteral("lblVersion"));
  lblVersion_->setTextFormat(Qt::PlainText);
  lblVersion_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblVersion_->setFont(ui::semiBold(lblVersion_->font()));
  btOk_->setObjectName(QStringLiteral("btOk"));
  btOk_->setText(QStringLiteral("OK"));
  connect(btOk_, &QPushButton::clicked, this, &QDialog::accept);

  QVBoxLayout* column = ui::styleDialog(*this);
  auto* row = new QHBoxLayout;
  row->setSpacing(2 * ui::px(this, ui::space::between));
  row->addWidget(Image1_);
  row->addWidget(lblVersion_, 1);
  column->addLayout(row);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(btOk_, QDialogButtonBox::AcceptRole);
  ui::addButtons(*this, buttons);
  btOk_->setDefault(true);
  btOk_->setFocus();
  column->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace korvel::control
