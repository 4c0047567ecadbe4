#include "control/review_rule_commands.h"

#include <QAction>
#include <QMenu>
#include <QShortcut>

#include "control/find_and_filter.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/size_memory.h"
#include "control/surface.h"
#include "control/texts.h"
#include "control/working_hours.h"
#include "korvel/AuditViewer.h"

namespace korvel::control {
namespace {

const QKeySequence exceptionsKey(Qt::CTRL | Qt::SHIFT | Qt::Key_R);

}  // namespace

ReviewRuleCommands::ReviewRuleCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface,
                                       AnswerStatus& answers, FindAndFilter& findAndFilter)
    : viewer_(viewer), messages_(messages), surface_(surface), answers_(answers), findAndFilter_(findAndFilter) {
  auto* key = new QShortcut(exceptionsKey, &viewer_);
  key->setContext(Qt::WidgetWithChildrenShortcut);
  key->setAutoRepeat(false);
  QObject::connect(key, &QShortcut::activated, &viewer_, [this] { open(); });
  QObject::connect(surface_.SSTab1, &QTabWidget::currentChanged, &viewer_, [this] {
    if (!view_.isNull() && view_->isVisible()) messages_.trapped("ReviewByException", [this] { followPage(); });
  });
}

void ReviewRuleCommands::addEntry(QMenu& review) {
  QAction* const rest = review.insertSeparator(review.actions().value(0));
  auto* const entry = new QAction(ownText("exceptions.command"), &review);
  entry->setShortcut(exceptionsKey);
  entry->setShortcutContext(Qt::WidgetShortcut);
  review.insertAction(rest, entry);
  QObject::connect(entry, &QAction::triggered, &viewer_, [this] { open(); });
}

void ReviewRuleCommands::open() {
  messages_.trapped("ReviewByException", [this] {
    if (view_.isNull()) make();
    view_->setTexts();
    view_->showHours(libraryState().workingHours);
    followPage();
    view_->show();
    view_->raise();
    view_->activateWindow();
  });
}

void ReviewRuleCommands::make() {
  view_ = new ExceptionView(&viewer_);
  rememberSize(*view_);
  exceptions_ = std::make_unique<ListExceptions>(*view_, messages_, answers_, findAndFilter_);
  QObject::connect(view_, &ExceptionView::hoursChosen, &viewer_, [this](const evidence::WorkingHours& hours) {
    messages_.trapped("ChooseWorkingHours", [&] {
      libraryState().workingHours = hours;
      // Lists go on showing no records that were outside of other hours.
      for (const ResultListView* list : surface_.lvListView)
        findAndFilter_.showAllRecords(*list, "exception.outsideHours");
      followPage();
      chooseWorkingHours(hours);
    });
  });
  QObject::connect(view_, &QDialog::finished, &viewer_, [this] {
    exceptions_->leave();
    surface_.currentList().setFocus();
  });
}

void ReviewRuleCommands::followPage() {
  exceptions_->follow(surface_.currentList(), surface_.currentTab());
}

void ReviewRuleCommands::showTexts() {
  if (exceptions_ != nullptr) exceptions_->showTexts();
}

}  // namespace korvel::control
