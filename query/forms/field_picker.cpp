#include "query/forms/field_picker.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QListWidget>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <array>
#include <utility>

#include "query/query_choices.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"
#include "ui/texts.h"

namespace korvel::query {
namespace {

constexpr int firstWidth = 300;

/// Shows what is selected as ticked.
class TickDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const auto* view = qobject_cast<const QAbstractItemView*>(option->widget);
    const bool selected = view != nullptr && view->selectionModel()->isSelected(index);
    option->features |= QStyleOptionViewItem::HasCheckIndicator;
    option->checkState = selected ? Qt::Checked : Qt::Unchecked;
  }
};

bool movesOn(int key) {
  return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_Home || key == Qt::Key_End ||
         key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

/// A list in which a click, or space, selects a name or takes it back and leaves the others as they are.
class TickedList final : public QListWidget {
 public:
  TickedList() {
    setSelectionMode(MultiSelection);
    setItemDelegate(new TickDelegate(this));
  }

 protected:
  [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                                     const QEvent* event) const override {
    // With Shift all that lies between is selected, as in other lists.
    const bool press = event != nullptr && event->type() == QEvent::MouseButtonPress;
    const bool move =
        event != nullptr && event->type() == QEvent::KeyPress && movesOn(static_cast<const QKeyEvent*>(event)->key());
    if ((press || move) && static_cast<const QInputEvent*>(event)->modifiers().testFlag(Qt::ShiftModifier))
      return QItemSelectionModel::Select | QItemSelectionModel::Current;
    return QListWidget::selectionCommand(index, event);
  }
};

}  // namespace

frmFields::frmFields(QueryDialogContext context, QWidget* owner)
    : QDialog(owner), context_(std::move(context)), ListView1_(new TickedList), Command1_(new ui::PrimaryButton) {
  setObjectName(QStringLiteral("frmFields"));
  // Deliberately English in every language, as the button's caption is.
  setWindowTitle(QStringLiteral("Available Fields"));
  setModal(true);
  ui::applyStyle(*this);
  QVBoxLayout* column = ui::styleDialog(*this);

  ListView1_->setObjectName(QStringLiteral("ListView1"));
  ListView1_->setAccessibleName(windowTitle());
  for (const std::string_view field : pickableFields()) ListView1_->addItem(ui::fromUtf8(field));
  column->addWidget(ListView1_, 1);

  Command1_->setObjectName(QStringLiteral("Command1"));
  Command1_->setText(QStringLiteral("Add Columns"));
  connect(Command1_, &QPushButton::clicked, this, [this] { Command1_Click(); });
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(Command1_, QDialogButtonBox::ActionRole);
  ui::addButtons(*this, buttons);
  Command1_->setDefault(true);
  ListView1_->setFocus();

  // High enough for all fields: no scrolling.
  const int rows = ListView1_->sizeHintForRow(0) * ListView1_->count();
  ListView1_->setMinimumHeight(ListView1_->sizeHintForRow(0) * 4);
  resize(ui::px(this, firstWidth), rows + (sizeHint().height() - ListView1_->sizeHint().height()) +
                                       2 * ListView1_->frameWidth() + ui::px(this, ui::space::inside));
}

void frmFields::Command1_Click() {
  context_.choices.pickedQuery.clear();
  std::array<bool, auditColumnCount> selected{};
  for (std::size_t i = 0; i < selected.size(); ++i)
    selected.at(i) = ListView1_->item(static_cast<int>(i))->isSelected();
  const auto query = pickedQuery(selected);
  if (!query) {
    const std::shared_ptr<ui::DialogServices> services = context_.services;
    services->messageBox(this, ui::MessageIcon::information, QStringLiteral("KorvelAudit Viewer Message"),
                         ui::ownText("fields.none", context_.language));
    return;
  }
  context_.choices.pickedQuery = *query;
  accept();
}

}  // namespace korvel::query
