#include "control/forms/summary_view.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "control/texts.h"
#include "control/watched_work.h"
#include "query/audit_record.h"
#include "query/query_failure.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

using results::ColumnIndex;
using results::DatePart;
using results::ResultList;
using results::RowGroup;
using ui::named;

constexpr int firstWidth = 620;
constexpr int firstHeight = 560;
constexpr std::string_view eventColumn = "EventType";

constexpr std::array<std::pair<DatePart, const char*>, 4> dateParts{{{DatePart::day, "summary.byDay"},
                                                                     {DatePart::hour, "summary.byHour"},
                                                                     {DatePart::month, "summary.byMonth"},
                                                                     {DatePart::year, "summary.byYear"}}};

/// Whether the column's first rows that show something show dates.
bool hasDates(const ResultList& list, ColumnIndex column) {
  constexpr std::size_t mostRows = 100;
  for (std::size_t row = 0; row < std::min(list.rowCount(), mostRows); ++row)
    if (const std::string_view text = list.text({row}, column); !text.empty()) return results::isDateText(text);
  return false;
}

/// What the rows of a group show in one of its columns.
results::ColumnCondition conditionOf(const results::GroupKey& key, const results::ShownValue& value) {
  results::ColumnCondition condition{.column = key.column};
  // What is no date is a group by its whole text, whatever part of dates is grouped by.
  constexpr std::string_view restOfDay = "-01-01";
  constexpr auto dayLength = static_cast<std::size_t>(DatePart::day);
  const std::size_t length = value.text.size();
  const bool isPart =
      key.part != DatePart::whole && !value.isNull && length == static_cast<std::size_t>(key.part) &&
      results::isDateText(value.text + std::string(length < dayLength ? restOfDay.substr(length == 4 ? 0 : 3) : ""));
  if (isPart)
    condition.beginnings.push_back(value.text);
  else
    condition.values.push_back(value);
  return condition;
}

}  // namespace

SummaryView::SummaryView(QWidget* owner) : QDialog(owner) {
  setObjectName(QStringLiteral("frmSummary"));
  ui::applyStyle(*this);
  buildContent();
  buildFoot();
  ui::setFirstSize(*this, firstWidth, firstHeight);
}

void SummaryView::buildContent() {
  auto* column = ui::styleDialog(*this);
  auto* choice = new QHBoxLayout;
  choice->setSpacing(ui::px(this, ui::space::inside));
  lblFirst_ = new QLabel;
  lblSecond_ = new QLabel;
  cmbFirst_ = named(new QComboBox, "cmbFirst");
  cmbSecond_ = named(new QComboBox, "cmbSecond");
  for (const auto& [label, box] : {std::pair(lblFirst_, cmbFirst_), std::pair(lblSecond_, cmbSecond_)}) {
    label->setBuddy(box);
    choice->addWidget(label);
    choice->addWidget(box, 1);
    connect(box, &QComboBox::activated, this, [this] { countAgain(); });
  }
  table_ = named(new ResultListView(model_), "lvGroups");
  lblTotal_ = named(new QLabel, "lblTotal");
  ui::setMuted(*lblTotal_);
  lblCut_ = named(new QLabel, "lblCut");
  lblCut_->setWordWrap(true);
  column->addLayout(choice);
  column->addWidget(table_, 1);
  column->addWidget(lblCut_);
  column->addWidget(lblTotal_);
  const auto sort = [this](int section) {
    if (const auto failure = query::failureOf([&] { table_->clickHeader(section); }))
      Q_EMIT refused(failureText(*failure));
  };
  connect(table_->header(), &QHeaderView::sectionClicked, this, sort);
  connect(table_, &ResultListView::sortRequested, this, sort);
  connect(table_, &ResultListView::recordRequested, this, [this](int row) { requestGroup(row); });
  connect(table_, &ResultListView::refused, this, &SummaryView::refused);
}

void SummaryView::buildFoot() {
  btCopy_ = named(new ui::SecondaryButton(ui::IconName::Copy, QString()), "btCopy");
  btExport_ = named(new ui::SecondaryButton, "btExport");
  btClose_ = named(new ui::PrimaryButton, "btClose");
  btClose_->setDefault(true);
  btCopy_->setAutoDefault(false);
  btExport_->setAutoDefault(false);
  connect(btCopy_, &QPushButton::clicked, this, [this] {
    table_->selectAll();
    table_->copySelection();
  });
  connect(btExport_, &QPushButton::clicked, this, &SummaryView::exportRequested);
  connect(btClose_, &QPushButton::clicked, this, &QDialog::reject);
  auto* foot = new QHBoxLayout;
  foot->setSpacing(ui::px(this, ui::space::inside));
  foot->addWidget(btCopy_);
  foot->addWidget(btExport_);
  foot->addStretch(1);
  foot->addWidget(btClose_);
  static_cast<QVBoxLayout*>(layout())->addLayout(foot);
}

void SummaryView::setTexts() {
  setWindowTitle(ownText("summary.title"));
  const auto setText = [](QPushButton& button, const char* text, const char* toolTip) {
    ui::setButtonText(button, ownText(text));
    button.setToolTip(ownText(toolTip).remove(QLatin1Char('&')));
  };
  lblFirst_->setText(ownText("summary.by"));
  lblSecond_->setText(ownText("summary.and"));
  setText(*btCopy_, "summary.copy", "summary.copyTip");
  setText(*btExport_, "summary.export", "summary.exportTip");
  setText(*btClose_, "record.close", "record.close");
  table_->setAccessibleName(ownText("summary.title"));
}

void SummaryView::showSummary(ResultListView& list) {
  if (list.listModel().list().rowCount() == 0) return;
  follow(list);
  setTexts();
  offerColumns();
  if (!count()) return;
  cmbFirst_->setFocus();
  open();
}

void SummaryView::follow(ResultListView& list) {
  disconnect(listChange_);
  list_ = &list;
  listChange_ = connect(&list.listModel(), &QAbstractItemModel::modelAboutToBeReset, this, [this] {
    list_ = nullptr;
    close();
  });
}

void SummaryView::offerColumns() {
  const ResultList& list = list_->listModel().list();
  const ColumnIndex cell{static_cast<std::size_t>(std::max(list_->currentIndex().column(), 0))};
  const ColumnIndex asked = query::auditColumnOf(list, eventColumn).value_or(cell);
  choices_.clear();
  cmbFirst_->clear();
  cmbSecond_->clear();
  cmbSecond_->addItem(ownText("summary.noColumn"));
  int first = 0;
  for (std::size_t i = 0; i < list.columns().size(); ++i) {
    const QString caption = fromUtf8(list.columns()[i].caption);
    if (i == asked.value) first = static_cast<int>(choices_.size());
    if (hasDates(list, {i})) {
      for (const auto& [part, text] : dateParts) choices_.push_back({ownText(text).arg(caption), {{i}, part}});
    } else {
      choices_.push_back({caption, {{i}, DatePart::whole}});
    }
  }
  for (const Choice& each : choices_) {
    cmbFirst_->addItem(each.caption);
    cmbSecond_->addItem(each.caption);
  }
  cmbFirst_->setCurrentIndex(first);
}

std::vector<const SummaryView::Choice*> SummaryView::chosen() const {
  std::vector<const Choice*> keys{&choices_.at(static_cast<std::size_t>(cmbFirst_->currentIndex()))};
  // The same column twice says nothing more.
  const int second = cmbSecond_->currentIndex() - 1;
  if (second >= 0 && second != cmbFirst_->currentIndex())
    keys.push_back(&choices_.at(static_cast<std::size_t>(second)));
  return keys;
}

void SummaryView::countAgain() {
  const QPointer<SummaryView> alive(this);
  bool counted = false;
  const auto failure = query::failureOf([&] { counted = count(); });
  if (!alive) return;
  if (failure) Q_EMIT refused(failureText(*failure));
  // What is chosen would not be what is shown.
  else if (!counted)
    close();
}

bool SummaryView::count() {
  if (list_.isNull()) return false;
  results::GroupQuestion question{.keys = {}, .captions = {}, .countCaption = ownText("summary.count").toStdString()};
  for (const Choice* choice : chosen()) {
    question.keys.push_back(choice->key);
    question.captions.push_back(choice->caption.toStdString());
  }
  const QPointer<SummaryView> alive(this);
  // Of its own: the list may be sorted or get other rows meanwhile.
  auto counted = runWatched([rows = list_->listModel().list(), question](const std::stop_token& /*stop*/) {
    return results::groupListOf(rows, question, mostGroups);
  });
  if (!alive || !counted || list_.isNull()) return false;
  {
    const ResultListModel::RowsChange change(model_);
    shown_ = std::move(*counted);
  }
  table_->applyColumnWidths();
  for (int section = 0; section < model_.columnCount(); ++section) table_->autoSizeColumn(section);
  // The count is the first column of the list, and is shown as the last one.
  table_->header()->moveSection(0, model_.columnCount() - 1);
  table_->showSortIcon();
  if (!shown_.groups.empty()) table_->goToRow(0);
  showTotal(list_->listModel().list());
  return true;
}

void SummaryView::showTotal(const ResultList& rows) {
  filterRemark_ = rows.isFiltered()
                      ? ownText("filter.remarkShown").arg(countText(rows.rowCount()), countText(rows.wholeRowCount()))
                      : QString();
  QStringList said{ownText("summary.total").arg(countText(shown_.total), countText(rows.rowCount()))};
  if (!filterRemark_.isEmpty()) said << filterRemark_;
  lblTotal_->setText(said.join(QStringLiteral(". ")));
  const bool isCut = shown_.groups.size() < shown_.total;
  lblCut_->setText(isCut ? ownText("summary.cut").arg(countText(shown_.groups.size()), countText(shown_.total))
                         : QString());
  lblCut_->setVisible(isCut);
}

void SummaryView::requestGroup(int row) {
  if (list_.isNull() || row < 0 || static_cast<std::size_t>(row) >= shown_.list.rowCount()) return;
  const RowGroup& group = shown_.groups[shown_.list.rowId({static_cast<std::size_t>(row)}).value];
  std::vector<results::ColumnCondition> conditions;
  for (std::size_t i = 0; i < group.values.size(); ++i)
    conditions.push_back(conditionOf(shown_.question.keys[i], group.values[i]));
  ResultListView* const list = list_;
  accept();
  Q_EMIT groupRequested(list, conditions);
}

std::function<ResultList()> SummaryView::allGroups() const {
  return [rows = list_->listModel().list(), question = shown_.question, key = shown_.list.sortKey(),
          order = shown_.list.sortOrder()] {
    results::GroupList all = results::groupListOf(rows, question);
    all.list.sortBy(key, order);
    return results::withCountLast(all);
  };
}

}  // namespace korvel::control
