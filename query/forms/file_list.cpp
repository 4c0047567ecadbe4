#include "query/forms/file_list.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QPainter>
#include <QVBoxLayout>
#include <utility>

#include "query/file_names.h"
#include "query/query_failure.h"
#include "query/query_file.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"
#include "ui/texts.h"

namespace korvel::query {
namespace {

constexpr int firstWidth = 380;
constexpr int firstHeight = 320;

/// A list with a text for the empty state.
class NamesList final : public QListWidget {
 public:
  QString emptyText;

 protected:
  void focusInEvent(QFocusEvent* event) override {
    QListWidget::focusInEvent(event);
    // The toolkit makes the first name current without selecting it: it would look selected, and the arrow keys would
    // move on from it, nowhere where it is the only one.
    if (selectedItems().isEmpty()) selectionModel()->clearCurrentIndex();
  }
  void paintEvent(QPaintEvent* event) override {
    QListWidget::paintEvent(event);
    if (count() == 0) ui::paintEmptyMessage(*this, emptyText);
  }
};

}  // namespace

frmFileList::frmFileList(QueryDialogContext context, QWidget* owner)
    : QDialog(owner),
      context_(std::move(context)),
      btOK_(new ui::PrimaryButton),
      btCancel_(new ui::SecondaryButton(QStringLiteral("Cancel"))) {
  setObjectName(QStringLiteral("frmFileList"));
  // Deliberately English in every language, as the captions of the buttons are.
  setWindowTitle(QStringLiteral("Custom Query File List"));
  setModal(true);
  ui::applyStyle(*this);
  QVBoxLayout* column = ui::styleDialog(*this);

  auto* list = new NamesList;
  list->emptyText = ui::ownText("files.none", context_.language);
  List1_ = list;
  List1_->setObjectName(QStringLiteral("List1"));
  List1_->setAccessibleName(windowTitle());
  connect(List1_, &QListWidget::itemDoubleClicked, this, [this] { btOK_Click(); });
  column->addWidget(List1_, 1);

  btOK_->setObjectName(QStringLiteral("btOK"));
  btOK_->setText(QStringLiteral("OK"));
  btCancel_->setObjectName(QStringLiteral("btCancel"));
  btCancel_->setAutoDefault(false);
  connect(btOK_, &QPushButton::clicked, this, [this] { btOK_Click(); });
  connect(btCancel_, &QPushButton::clicked, this, &QDialog::reject);
  connect(this, &QDialog::rejected, this, [this] { btCancel_Click(); });
  auto* buttons = new QDialogButtonBox;
  // Both in a role that does not close the dialog: OK without a selection does nothing.
  buttons->addButton(btOK_, QDialogButtonBox::ActionRole);
  buttons->addButton(btCancel_, QDialogButtonBox::ActionRole);
  ui::addButtons(*this, buttons);
  btOK_->setDefault(true);
  List1_->setFocus();
  resize(ui::px(this, firstWidth), ui::px(this, firstHeight));
}

void frmFileList::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (!std::exchange(loaded_, true)) Form_Load();
}

void frmFileList::Form_Load() {
  const auto failure = failureOf([this] { names_ = listedFiles(context_.choices.folder, queryFileExtension); });
  for (const std::string& name : names_) List1_->addItem(ui::fromUtf8(name));
  if (!failure) return;
  const QString text = QString::number(failure->number()) + QStringLiteral(":Error in frmFileList.  Error Message: ") +
                       ui::describe(*failure, context_.language);
  // Deferred until the dialog is visible.
  QMetaObject::invokeMethod(
      this,
      [this, text] {
        const std::shared_ptr<ui::DialogServices> services = context_.services;
        services->messageBox(this, ui::MessageIcon::critical, QString(), text);
      },
      Qt::QueuedConnection);
}

void frmFileList::btOK_Click() {
  const QList<QListWidgetItem*> selected = List1_->selectedItems();
  if (selected.isEmpty()) return;
  context_.choices.fileName = names_.at(static_cast<std::size_t>(List1_->row(selected.first())));
  accept();
}

void frmFileList::btCancel_Click() {
  context_.choices.fileName.clear();
}

}  // namespace korvel::query
