#include "control/forms/comparison_view.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "control/forms/value_field.h"
#include "control/texts.h"
#include "evidence/comparison_words.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/result_table.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

using ui::named;

constexpr int firstWidth = 900;
constexpr int firstHeight = 560;
constexpr int leastLines = 2;
constexpr int mostLines = 6;

QString fullStopped(const std::vector<std::string>& sentences) {
  QString text;
  for (const std::string& sentence : sentences)
    text += (text.isEmpty() ? QString() : QStringLiteral("\n")) + fromUtf8(sentence);
  return text;
}

/// All values of a row that are not empty, a line each.
QString wholeRow(const evidence::RowDifference& difference) {
  QString text;
  for (const evidence::ColumnValue& each : difference.row)
    if (!each.value.value_or("").empty())
      text += (text.isEmpty() ? QString() : QStringLiteral("\n")) + fromUtf8(each.column) + QStringLiteral(": ") +
              fromUtf8(*each.value);
  return text;
}

db::Cell cellOf(const std::optional<std::string>& value) {
  return value ? db::Cell{*value, false} : db::Cell{{}, true};
}

}  // namespace

evidence::ComparisonLanguage comparisonLanguage() {
  return {libraryState().language, [](std::uint64_t count) { return countText(count).toStdString(); }};
}

ComparisonView::ComparisonView(QWidget* owner) : QDialog(owner) {
  setObjectName(QStringLiteral("frmComparisonResult"));
  ui::applyStyle(*this);
  buildContent();
  buildFoot();
  ui::setFirstSize(*this, firstWidth, firstHeight);
}

void ComparisonView::buildContent() {
  auto* column = ui::styleDialog(*this);
  lblSummary_ = named(new QLabel, "lblSummary");
  lblSides_ = named(new QLabel, "lblSides");
  lblBefore_ = named(new QLabel, "lblBefore");
  lblNow_ = named(new QLabel, "lblNow");
  lblNote_ = named(new QLabel, "lblNote");
  for (QLabel* label : {lblSummary_, lblSides_, lblNote_}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
  }
  lblSummary_->setFont(ui::semiBold(font()));
  ui::setMuted(*lblSides_);
  ui::setMuted(*lblNote_);
  table_ = named(new ui::ResultTable, "lvDifferences");
  table_->setModel(&model_);
  table_->header()->setSectionsClickable(false);
  before_ = named(new ValueField(ValueField::Frame::always, leastLines, mostLines), "txtBefore");
  now_ = named(new ValueField(ValueField::Frame::always, leastLines, mostLines), "txtNow");
  lblBefore_->setBuddy(before_);
  lblNow_->setBuddy(now_);
  comparison_.emplace(*before_, *now_, *lblNote_);
  auto* values = new QGridLayout;
  values->setHorizontalSpacing(ui::px(this, ui::space::between));
  values->setVerticalSpacing(ui::px(this, ui::space::inside) / 2);
  values->addWidget(lblBefore_, 0, 0);
  values->addWidget(lblNow_, 0, 1);
  values->addWidget(before_, 1, 0, Qt::AlignTop);
  values->addWidget(now_, 1, 1, Qt::AlignTop);
  values->addWidget(lblNote_, 2, 0, 1, 2);
  column->addWidget(lblSummary_);
  column->addWidget(lblSides_);
  column->addWidget(table_, 1);
  column->addLayout(values);
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](const QModelIndex& current) { showLine(current.isValid() ? current.row() : -1); });
}

void ComparisonView::buildFoot() {
  btSave_ = named(new ui::SecondaryButton, "btSave");
  btClose_ = named(new ui::PrimaryButton, "btClose");
  btSave_->setAutoDefault(false);
  btClose_->setDefault(true);
  connect(btSave_, &QPushButton::clicked, this, [this] { Q_EMIT saveRequested(); });
  connect(btClose_, &QPushButton::clicked, this, &QDialog::reject);
  auto* foot = new QHBoxLayout;
  foot->setSpacing(ui::px(this, ui::space::inside));
  foot->addWidget(btSave_);
  foot->addStretch(1);
  foot->addWidget(btClose_);
  static_cast<QVBoxLayout*>(layout())->addLayout(foot);
}

void ComparisonView::setTexts() {
  const evidence::SnapshotFacts& facts = compared_->snapshot;
  const QString database = fromUtf8(facts.source.database);
  setWindowTitle(ownText("compare.resultTitle").arg(database));
  ui::showSelectable(*lblSummary_, fullStopped(evidence::comparisonSentences(*compared_, comparisonLanguage())));
  ui::showSelectable(*lblSides_,
                     ownText("snapshot.isOne")
                             .arg(database, fromUtf8(facts.source.server), fromUtf8(facts.begun).replace(u'T', u' ')) +
                         QLatin1Char('\n') + ownText("compare.comparedWith") + QLatin1Char(' ') +
                         fromUtf8(compared_->server) + QStringLiteral(", ") + fromUtf8(compared_->database));
  table_->setAccessibleName(ownText("compare.differences"));
  table_->setEmptyText(ownText("compare.noDifferences"));
  lblBefore_->setText(ownText("compare.before"));
  lblNow_->setText(ownText("compare.now"));
  before_->setAccessibleName(lblBefore_->text());
  now_->setAccessibleName(lblNow_->text());
  for (ValueField* field : {before_, now_})
    field->setMenuTexts(ownText("record.copyText"), ownText("record.selectAll"));
  ui::setButtonText(*btSave_, ownText("compare.save"));
  ui::setButtonText(*btClose_, ownText("snapshot.close"));
}

void ComparisonView::showComparison(std::shared_ptr<const evidence::ComparedSnapshot> compared) {
  results::ResultList list =
      evidence::comparisonList(*compared, evidence::ComparisonRows::compact, comparisonLanguage());
  compared_ = std::move(compared);
  lines_ = evidence::comparisonLines(*compared_);
  {
    const ResultListModel::RowsChange change(model_);
    list_ = std::move(list);
  }
  setTexts();
  fitColumns();
  if (lines_.empty())
    showLine(-1);
  else
    table_->selectRow(0);
  for (QWidget* each : std::initializer_list<QWidget*>{lblBefore_, lblNow_, before_, now_, lblNote_})
    each->setVisible(!lines_.empty());
  table_->setFocus();
  open();
}

/// As wide as the contents, and none so wide that the others have no room.
void ComparisonView::fitColumns() {
  const int widest = ui::px(this, firstWidth) * 2 / 5;
  for (int column = 0; column < model_.columnCount(); ++column) {
    table_->resizeColumnToContents(column);
    if (table_->columnWidth(column) > widest) table_->setColumnWidth(column, widest);
  }
}

void ComparisonView::showLine(int row) {
  before_->setMarks(MarkKind::removed, {});
  now_->setMarks(MarkKind::added, {});
  before_->setAccessibleDescription({});
  now_->setAccessibleDescription({});
  lblNote_->clear();
  if (row < 0 || static_cast<std::size_t>(row) >= lines_.size()) {
    before_->setValue({}, {});
    now_->setValue({}, {});
    return;
  }
  const evidence::ComparisonLine& line = lines_[static_cast<std::size_t>(row)];
  const auto placeholder = [](const std::optional<std::string>& value) {
    return ownText(value ? "record.empty" : "record.null");
  };
  if (line.value != nullptr) {
    before_->setValue(fromUtf8(line.value->before.value_or("")), placeholder(line.value->before));
    now_->setValue(fromUtf8(line.value->now.value_or("")), placeholder(line.value->now));
    comparison_->show(cellOf(line.value->before), cellOf(line.value->now));
    return;
  }
  if (line.oddity != nullptr) {
    before_->setValue(fromUtf8(line.oddity->before), {});
    now_->setValue(fromUtf8(line.oddity->now), {});
    return;
  }
  const bool isRemoved = line.difference->kind == evidence::RowDifference::Kind::removed;
  const QString whole = wholeRow(*line.difference);
  before_->setValue(isRemoved ? whole : QString(), isRemoved ? QString() : ownText("compare.rowOnlyNow"));
  now_->setValue(isRemoved ? QString() : whole, isRemoved ? ownText("compare.rowOnlyBefore") : QString());
}

}  // namespace korvel::control
