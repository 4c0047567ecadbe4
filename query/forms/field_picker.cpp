#include "query/forms/field_picker.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QVBoxLayout>
#include <array>
#include <utility>

#include "control/look/buttons.h"
#include "control/look/dialogs.h"
#include "control/look/look.h"
#include "control/look/theme.h"
#include "query/picked_query.h"

namespace korvel::query {
namespace {

constexpr int firstWidth = 300;

QString fromUtf8(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

frmFields::frmFields(QueryFormSurroundings surroundings, QWidget* owner)
    : QDialog(owner),
      surroundings_(std::move(surroundings)),
      ListView1_(new QListWidget),
      Command1_(new look::PrimaryButton) {
  setObjectName(QStringLiteral("frmFields"));
  // Deliberately English in every language, as the button's caption is.
  setWindowTitle(QStringLiteral("Available Fields"));
  setModal(true);
  look::applyLook(*this);
  QVBoxLayout* column = look::dressDialog(*this);

  ListView1_->setObjectName(QStringLiteral("ListView1"));
  ListView1_->setAccessibleName(windowTitle());
  ListView1_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  for (const std::string_view field : pickableFields()) ListView1_->addItem(fromUtf8(field));
  column->addWidget(ListView1_, 1);

  Command1_->setObjectName(QStringLiteral("Command1"));
  Command1_->setText(QStringLiteral("Add Columns"));
  connect(Command1_, &QPushButton::clicked, this, [this] { Command1_Click(); });
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(Command1_, QDialogButtonBox::ActionRole);
  look::addButtons(*this, buttons);
  Command1_->setDefault(true);
  ListView1_->setFocus();

  // All of the fields at once: nothing is to be scrolled.
  const int rows = ListView1_->sizeHintForRow(0) * ListView1_->count();
  ListView1_->setMinimumHeight(ListView1_->sizeHintForRow(0) * 4);
  resize(look::px(this, firstWidth), rows + (sizeHint().height() - ListView1_->sizeHint().height()) +
                                         2 * ListView1_->frameWidth() + look::px(this, look::space::inside));
}

void frmFields::Command1_Click() {
  surroundings_.choices.pickedQuery.clear();
  std::array<bool, auditColumnCount> selected{};
  for (std::size_t i = 0; i < selected.size(); ++i)
    selected.at(i) = ListView1_->item(static_cast<int>(i))->isSelected();
  const auto query = pickedQuery(selected);
  if (!query) {
    const std::shared_ptr<control::ControlServices> services = surroundings_.services;
    services->messageBox(this, control::MessageIcon::information, QStringLiteral("KorvelAudit Viewer Message"),
                         fromUtf8(settings::ownText("fields.none", surroundings_.language)));
    return;
  }
  surroundings_.choices.pickedQuery = *query;
  accept();
}

}  // namespace korvel::query
