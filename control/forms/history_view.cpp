#include "control/forms/history_view.h"

#include <QClipboard>
#include <QDateTime>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMimeData>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "control/forms/value_plot.h"
#include "control/row_copy.h"
#include "control/texts.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/result_table.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

using query::ItemChange;
using query::ItemHistory;
using ui::named;

constexpr int firstWidth = 860;
constexpr int firstHeight = 560;

const QKeySequence copyKey(Qt::CTRL | Qt::SHIFT | Qt::Key_C);

/// When the changes were, for an axis: milliseconds, or where a date cannot be read, their place.
std::vector<double> placesOf(const ItemHistory& history) {
  std::vector<double> places;
  for (const ItemChange& change : history.changes) {
    QDateTime time = QDateTime::fromString(fromUtf8(change.time), Qt::ISODateWithMs);
    // The plant's time, whatever clock this computer has.
    time.setTimeSpec(Qt::UTC);
    if (!time.isValid()) {
      places.clear();
      for (std::size_t i = 0; i < history.changes.size(); ++i) places.push_back(static_cast<double>(i));
      return places;
    }
    places.push_back(static_cast<double>(time.toMSecsSinceEpoch()));
  }
  return places;
}

std::optional<double> numberOf(std::string_view text) {
  const auto quantity = query::quantityOf(text);
  return quantity ? std::optional(quantity->number) : std::nullopt;
}

QString orEmpty(std::string_view value) {
  return value.empty() ? QStringLiteral("(%1)").arg(ownText("record.empty").toLower()) : fromUtf8(value).simplified();
}

void setText(QPushButton& button, const char* text, const char* toolTip, const QString& key) {
  ui::setButtonText(button, ownText(text));
  button.setToolTip(ownText(toolTip).remove(QLatin1Char('&')) + QStringLiteral(" (%1)").arg(key));
}

}  // namespace

HistoryView::HistoryView(QWidget* owner) : QDialog(owner) {
  setObjectName(QStringLiteral("frmHistory"));
  ui::applyStyle(*this);
  buildContent();
  buildFoot();
  ui::setFirstSize(*this, firstWidth, firstHeight);
}

void HistoryView::buildContent() {
  auto* column = ui::styleDialog(*this);
  lblItem_ = named(new QLabel, "lblItem");
  lblPlace_ = named(new QLabel, "lblPlace");
  for (QLabel* label : {lblItem_, lblPlace_}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
  }
  lblItem_->setFont(ui::semiBold(font()));
  ui::setMuted(*lblPlace_);
  plot_ = named(new ValuePlot, "plotValues");
  table_ = named(new ui::ResultTable, "lvChanges");
  table_->setModel(&changes_);
  table_->header()->setSectionsClickable(false);
  lblSummary_ = named(new QLabel, "lblSummary");
  lblSummary_->setWordWrap(true);
  column->addWidget(lblItem_);
  column->addWidget(lblPlace_);
  column->addWidget(plot_);
  column->addWidget(table_, 1);
  column->addWidget(lblSummary_);
  connect(plot_, &ValuePlot::currentChanged, this, [this](int change) { setCurrent(change); });
  connect(plot_, &ValuePlot::readoutWanted, this, [this](int change) { plot_->setReadout(readoutOf(change)); });
  connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](const QModelIndex& current) { setCurrent(current.isValid() ? current.row() : -1); });
  connect(table_, &QAbstractItemView::doubleClicked, this, [this] { goToRecord(); });
}

void HistoryView::buildFoot() {
  btCopy_ = named(new ui::SecondaryButton(ui::IconName::Copy, QString()), "btCopy");
  btClose_ = named(new ui::SecondaryButton, "btClose");
  btGoTo_ = named(new ui::PrimaryButton, "btGoTo");
  btGoTo_->setDefault(true);
  btClose_->setAutoDefault(false);
  btCopy_->setAutoDefault(false);
  connect(btCopy_, &QPushButton::clicked, this, [this] { copyHistory(); });
  connect(btGoTo_, &QPushButton::clicked, this, [this] { goToRecord(); });
  connect(btClose_, &QPushButton::clicked, this, &QDialog::reject);
  connect(new QShortcut(copyKey, this), &QShortcut::activated, this, [this] { copyHistory(); });
  auto* foot = new QHBoxLayout;
  foot->setSpacing(ui::px(this, ui::space::inside));
  foot->addWidget(btCopy_);
  foot->addStretch(1);
  foot->addWidget(btClose_);
  foot->addWidget(btGoTo_);
  static_cast<QVBoxLayout*>(layout())->addLayout(foot);
}

void HistoryView::setTexts() {
  const auto keyText = [](const QKeySequence& key) { return key.toString(QKeySequence::NativeText); };
  setText(*btCopy_, "history.copy", "history.copyTip", keyText(copyKey));
  setText(*btGoTo_, "history.goTo", "history.goToTip", keyText(QKeySequence(Qt::Key_Return)));
  setText(*btClose_, "record.close", "record.close", keyText(QKeySequence(Qt::Key_Escape)));
  plot_->setAccessibleName(ownText("history.plot"));
  table_->setAccessibleName(ownText("history.changes"));
}

void HistoryView::showHistory(ResultListView& list, const query::ItemColumns& columns, int row) {
  const results::ResultList& rows = list.listModel().list();
  if (row < 0 || static_cast<std::size_t>(row) >= rows.rowCount()) return;
  const results::RowId record = rows.rowId({static_cast<std::size_t>(row)});
  changes_.show(rows, query::itemHistory(rows, columns, record));
  follow(list);
  setTexts();
  fillHead();
  fillPlot();
  fitColumns();
  const auto& changes = changes_.history().changes;
  const auto current =
      std::find_if(changes.begin(), changes.end(), [&](const ItemChange& change) { return change.record == record; });
  setCurrent(static_cast<int>(current - changes.begin()));
  table_->setFocus();
  open();
}

void HistoryView::follow(ResultListView& list) {
  disconnect(listChange_);
  list_ = &list;
  // The texts that are shown are those of the list's rows.
  listChange_ = connect(&list.listModel(), &QAbstractItemModel::modelAboutToBeReset, this, [this] {
    changes_.clear();
    plot_->setChanges({}, {});
    close();
  });
}

void HistoryView::fillHead() {
  const ItemHistory& history = changes_.history();
  // Without an item id, the innermost that is named.
  const auto named = std::find_if(history.identity.rbegin(), history.identity.rend(),
                                  [](std::string_view part) { return !part.empty(); });
  const QString item = orEmpty(named == history.identity.rend() ? std::string_view() : *named);
  setWindowTitle(ownText("history.title").arg(item));
  lblItem_->setText(item);
  QStringList place;
  for (const std::string_view part : history.identity)
    if (!part.empty()) place << fromUtf8(part).simplified();
  if (!place.isEmpty()) place.removeLast();
  lblPlace_->setText(place.join(QStringLiteral(" \u00B7 ")));
  const auto gaps = static_cast<std::size_t>(std::count_if(history.changes.begin(), history.changes.end(),
                                                           [](const ItemChange& each) { return !each.continues; }));
  const QString judged = !history.namesItem() ? ownText("history.noItemId")
                         : gaps == 0          ? ownText("history.allContinue")
                                              : ownText("history.gaps").arg(countText(gaps));
  lblSummary_->setText(ownText("history.count").arg(countText(history.changes.size())) + QLatin1Char(' ') + judged);
}

void HistoryView::fillPlot() {
  const ItemHistory& history = changes_.history();
  plot_->setVisible(history.isNumeric);
  if (!history.isNumeric) return plot_->setChanges({}, {});
  const std::vector<double> places = placesOf(history);
  std::vector<PlotChange> changes;
  std::string_view highest;
  std::string_view lowest;
  for (std::size_t i = 0; i < history.changes.size(); ++i) {
    const ItemChange& change = history.changes[i];
    changes.push_back({places[i], numberOf(change.oldValue), numberOf(change.newValue), change.continues});
    for (const std::string_view text : {change.oldValue, change.newValue}) {
      const auto number = numberOf(text);
      if (number && (highest.empty() || *number > *numberOf(highest))) highest = text;
      if (number && (lowest.empty() || *number < *numberOf(lowest))) lowest = text;
    }
  }
  constexpr qsizetype dayLength = 10;
  const auto dayOf = [](const ItemChange& change) { return fromUtf8(change.time).left(dayLength); };
  plot_->setChanges(std::move(changes), {fromUtf8(highest), fromUtf8(lowest), dayOf(history.changes.front()),
                                         dayOf(history.changes.back())});
}

/// As wide as the contents of the first rows, and none so wide that the others have no room.
void HistoryView::fitColumns() {
  const int widest = ui::px(this, firstWidth) / 4;
  for (int column = 0; column < changes_.columnCount(); ++column) {
    table_->resizeColumnToContents(column);
    if (table_->columnWidth(column) > widest) table_->setColumnWidth(column, widest);
  }
}

void HistoryView::setCurrent(int change) {
  if (change < 0 || change >= changes_.rowCount()) return;
  if (table_->currentIndex().row() != change) table_->selectRow(change);
  plot_->setCurrent(change);
  btGoTo_->setEnabled(changes_.isShown(change));
}

QString HistoryView::readoutOf(int change) const {
  if (change < 0 || change >= changes_.rowCount()) return {};
  const ItemChange& said = changes_.history().changes[static_cast<std::size_t>(change)];
  QString text = fromUtf8(said.time);
  // Shared accounts have no user's name.
  if (const QString user = changes_.userOf(change).trimmed(); !user.isEmpty()) text += QLatin1String(", ") + user;
  text += QStringLiteral(": %1 \u2192 %2").arg(orEmpty(said.oldValue), orEmpty(said.newValue));
  if (!said.continues) text += QStringLiteral(" (%1)").arg(ownText("history.doesNotContinue"));
  return text;
}

void HistoryView::goToRecord() {
  const int change = table_->currentIndex().row();
  if (list_.isNull() || change < 0 || !changes_.isShown(change)) return;
  const results::RowId record = changes_.history().changes[static_cast<std::size_t>(change)].record;
  const results::ResultList& rows = list_->listModel().list();
  for (std::size_t row = 0; row < rows.rowCount(); ++row) {
    if (rows.rowId({row}) != record) continue;
    accept();
    list_->goToRow(static_cast<int>(row));
    list_->setFocus();
    return;
  }
}

void HistoryView::copyHistory() {
  QString refusal;
  try {
    RowCopy copy(std::numeric_limits<qsizetype>::max());
    copy.beginRow();
    for (int column = 0; column < changes_.columnCount(); ++column)
      copy.addCell(changes_.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(), RowCopy::CellKind::caption);
    copy.endRow();
    for (int row = 0; row < changes_.rowCount(); ++row) {
      copy.beginRow();
      for (int column = 0; column < changes_.columnCount(); ++column)
        copy.addCell(changes_.index(row, column).data().toString());
      copy.endRow();
    }
    QGuiApplication::clipboard()->setMimeData(copy.mimeData());
  } catch (const std::bad_alloc&) {
    refusal = ownText("history.copyNoMemory");
  }
  if (!refusal.isEmpty()) Q_EMIT refused(refusal);
}

}  // namespace korvel::control
