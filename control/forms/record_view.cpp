#include "control/forms/record_view.h"

#include <QClipboard>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QScrollArea>
#include <QShortcut>
#include <algorithm>
#include <initializer_list>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

#include "base/text.h"
#include "base/utf16.h"
#include "control/forms/record_text.h"
#include "control/forms/value_field.h"
#include "control/texts.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

using results::ColumnIndex;
using results::RowPosition;
using ui::named;

constexpr int firstWidth = 760;
constexpr int firstHeight = 620;
constexpr int maxLines = 6;
constexpr int minLinesOfChange = 3;
constexpr int maxLinesOfChange = 12;

// The keys, beside the marked letters of the buttons.
const QKeySequence nextKey(Qt::CTRL | Qt::Key_PageDown);
const QKeySequence previousKey(Qt::CTRL | Qt::Key_PageUp);
const QKeySequence copyKey(Qt::CTRL | Qt::SHIFT | Qt::Key_C);
const QKeySequence closeKey(Qt::Key_Escape);

QString withKey(QString text, const QKeySequence& key) {
  return text.remove(QLatin1Char('&')) + QStringLiteral(" (%1)").arg(key.toString(QKeySequence::NativeText));
}

void setMenuTexts(ValueField& field) {
  field.setMenuTexts(ownText("record.copyText"), ownText("record.selectAll"));
}

QLayout* below(std::initializer_list<QWidget*> widgets) {
  auto* stack = new QVBoxLayout;
  stack->setSpacing(0);
  for (QWidget* each : widgets) stack->addWidget(each);
  stack->addStretch(1);
  return stack;
}

/// What is known of a time stamp, in sentences.
QString timeText(const std::optional<query::PlantTime>& time) {
  using query::Season;
  using Shown = query::PlantTime::Shown;
  if (!time) return {};
  if (time->offset) return ownText("record.timeWithOffset").arg(fromUtf8(query::offsetText(*time->offset)));
  QString text = ownText(time->season == Season::summer     ? "record.timeSummer"
                         : time->season == Season::standard ? "record.timeStandard"
                                                            : "record.timeUnknown");
  if (time->shown == Shown::unknown) return text;
  return text + QLatin1String(". ") + ownText(time->shown == Shown::first ? "record.timeFirst" : "record.timeSecond");
}

}  // namespace

RecordView::RecordView(QWidget* owner) : QDialog(owner), area_(named(new QScrollArea(this), "areaFields")) {
  setObjectName(QStringLiteral("frmRecordView"));
  ui::applyStyle(*this);
  auto* column = ui::styleDialog(*this);
  area_->setWidgetResizable(true);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // Always on: a scroll bar that appears and disappears would change the line breaks of the values each time.
  area_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  // The fields inside of it take the focus.
  area_->setFocusPolicy(Qt::NoFocus);
  column->addWidget(area_, 1);
  buildReview();
  buildFoot();
  addShortcuts();

  ui::setFirstSize(*this, firstWidth, firstHeight);
}

void RecordView::buildReview() {
  lblReview_ = named(new QLabel, "lblReview");
  ui::setMuted(*lblReview_);
  // A record may have many marks, with comments of any length.
  review_ = named(new ValueField(ValueField::Frame::always, 1, maxLines), "txtReview");
  lblReview_->setBuddy(review_);
  auto* lines = new QVBoxLayout;
  lines->setSpacing(ui::px(this, ui::space::inGroup));
  lines->addWidget(lblReview_);
  lines->addWidget(review_);
  static_cast<QVBoxLayout*>(layout())->addLayout(lines);
}

void RecordView::buildFoot() {
  btPrevious_ = named(new ui::SecondaryButton(ui::IconName::PreviousPage, QString()), "btPrevious");
  btNext_ = named(new ui::SecondaryButton(ui::IconName::NextPage, QString()), "btNext");
  lblPlace_ = named(new QLabel, "lblPlace");
  ui::setMuted(*lblPlace_);
  btCopy_ = named(new ui::SecondaryButton(ui::IconName::Copy, QString()), "btCopy");
  btClose_ = named(new ui::PrimaryButton, "btClose");
  btClose_->setDefault(true);
  connect(btPrevious_, &QPushButton::clicked, this, [this] { showPrevious(); });
  connect(btNext_, &QPushButton::clicked, this, [this] { showNext(); });
  connect(btCopy_, &QPushButton::clicked, this, [this] { copyRecord(); });
  connect(btClose_, &QPushButton::clicked, this, &QDialog::reject);

  auto* foot = new QHBoxLayout;
  foot->setSpacing(ui::px(this, ui::space::inside));
  foot->addWidget(btPrevious_);
  foot->addWidget(btNext_);
  foot->addWidget(lblPlace_, 1);
  foot->addWidget(btCopy_);
  foot->addWidget(btClose_);
  static_cast<QVBoxLayout*>(layout())->addLayout(foot);
}

void RecordView::addShortcuts() {
  const auto onKey = [this](const QKeySequence& key, int by) {
    connect(new QShortcut(key, this), &QShortcut::activated, this, [this, by] { step(by); });
  };
  onKey(nextKey, 1);
  onKey(QKeySequence(Qt::ALT | Qt::Key_Down), 1);
  onKey(previousKey, -1);
  onKey(QKeySequence(Qt::ALT | Qt::Key_Up), -1);
  connect(new QShortcut(copyKey, this), &QShortcut::activated, this, [this] { copyRecord(); });
}

void RecordView::setTexts() {
  const auto setText = [](QPushButton& button, std::string_view text, std::string_view toolTip,
                          const QKeySequence& key) {
    ui::setButtonText(button, ownText(text));
    button.setToolTip(withKey(ownText(toolTip), key));
  };
  setText(*btPrevious_, "record.previous", "record.previousTip", previousKey);
  setText(*btNext_, "record.next", "record.nextTip", nextKey);
  setText(*btCopy_, "record.copy", "record.copyTip", copyKey);
  setText(*btClose_, "record.close", "record.close", closeKey);
  for (const Field& field : fields_) setMenuTexts(*field.value);
  lblReview_->setText(ownText("review.menu"));
  review_->setAccessibleName(lblReview_->text());
  setMenuTexts(*review_);
}

void RecordView::showRecord(ResultListView& list, int row) {
  if (row < 0 || row >= list.listModel().rowCount()) return;
  follow(list);
  record_ = list.listModel().index(row, 0);
  fill();
  setTexts();
  btClose_->setFocus();
  open();
}

void RecordView::follow(ResultListView& list) {
  for (const QMetaObject::Connection& connection : connections_) disconnect(connection);
  connections_.clear();
  list_ = &list;
  times_.emplace(list.listModel().list().sharedStore());
  const QAbstractItemModel* const model = &list.listModel();
  connections_ = {
      // Its record is not in the list any more.
      connect(model, &QAbstractItemModel::modelAboutToBeReset, this,
              [this] {
                record_ = QPersistentModelIndex();
                close();
              }),
      connect(model, &QAbstractItemModel::layoutChanged, this, [this] { fillFoot(); }),
      // Marks have come.
      connect(model, &QAbstractItemModel::headerDataChanged, this,
              [this](Qt::Orientation orientation) {
                if (orientation == Qt::Vertical) fillReview();
              }),
  };
}

void RecordView::step(int by) {
  if (list_.isNull() || !record_.isValid()) return;
  const int to = record_.row() + by;
  if (to < 0 || to >= list_->listModel().rowCount()) return;
  record_ = list_->listModel().index(to, 0);
  list_->goToRow(to);
  fill();
}

void RecordView::makeField(std::size_t place, const QString& caption, bool framed) {
  Field& field = fields_[place];
  field.caption = caption;
  // A field may have an "&" in its name, which marks no letter.
  field.label = new QLabel(QString(caption).replace(QLatin1Char('&'), QLatin1String("&&")));
  field.label->setTextFormat(Qt::PlainText);
  ui::setMuted(*field.label);
  field.value = framed ? new ValueField(ValueField::Frame::always, minLinesOfChange, maxLinesOfChange)
                       : new ValueField(ValueField::Frame::none, 1, maxLines);
  field.value->setAccessibleName(caption);
  setMenuTexts(*field.value);
  field.value->setObjectName(QStringLiteral("value%1").arg(place));
  field.label->setBuddy(field.value);
  field.note = new QLabel;
  field.note->setObjectName(QStringLiteral("note%1").arg(place));
  field.note->setWordWrap(true);
  // It begins where the value does.
  const int margin = static_cast<int>(field.value->document()->documentMargin());
  field.note->setContentsMargins(margin, 0, margin, 0);
  ui::setMuted(*field.note);
}

/// Old and new value side by side, and under them what differs.
QLayout* RecordView::pairLayout(const Pair& pair, const std::vector<QString>& captions) {
  const int inGroup = ui::px(this, ui::space::inGroup);
  sides_ = new QHBoxLayout;
  sides_->setSpacing(ui::px(this, ui::space::inside));
  for (const std::size_t place : {pair.before, pair.after}) {
    makeField(place, captions[place], true);
    const Field& field = fields_[place];
    field.label->setContentsMargins(0, 0, 0, inGroup);
    sides_->addLayout(below({field.label, field.value, field.note}), 1);
  }
  auto* note = named(new QLabel, "lblDifference");
  note->setWordWrap(true);
  ui::setMuted(*note);
  comparison_.emplace(*fields_[pair.before].value, *fields_[pair.after].value, *note);
  auto* stack = new QVBoxLayout;
  stack->setContentsMargins(0, inGroup, 0, inGroup);
  stack->setSpacing(inGroup);
  stack->addLayout(sides_);
  stack->addWidget(note);
  return stack;
}

void RecordView::arrangeFields(const std::vector<QString>& captions, std::optional<Pair> pair) {
  const bool same =
      pair_ == pair && std::equal(captions.begin(), captions.end(), fields_.begin(), fields_.end(),
                                  [](const QString& caption, const Field& field) { return caption == field.caption; });
  if (same) return;
  // The field with the focus may be replaced by one of the other record: the focus must not be lost with it.
  if (const QWidget* const focused = focusWidget(); focused != nullptr && area_->isAncestorOf(focused))
    btClose_->setFocus();
  comparison_.reset();
  sides_ = nullptr;
  fields_.assign(captions.size(), {});
  pair_ = pair;
  auto* form = new QWidget;
  form->setBackgroundRole(QPalette::Base);
  auto* grid = new QGridLayout(form);
  const int inside = ui::px(this, ui::space::inside);
  grid->setContentsMargins(inside, inside, ui::px(this, ui::space::inGroup), inside);
  grid->setHorizontalSpacing(inside);
  grid->setVerticalSpacing(ui::px(this, 2));
  grid->setColumnStretch(1, 1);
  int line = 0;
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < captions.size(); ++i) {
    if (pair && i == std::max(pair->before, pair->after)) continue;
    if (pair && i == std::min(pair->before, pair->after)) {
      grid->addLayout(pairLayout(*pair, captions), line++, 0, 1, 2);
      order.insert(order.end(), {pair->before, pair->after});
      continue;
    }
    makeField(i, captions[i], false);
    const Field& field = fields_[i];
    // The caption stands beside the first line of its value.
    field.label->setContentsMargins(0, static_cast<int>(field.value->document()->documentMargin()), 0, 0);
    grid->addWidget(field.label, line, 0, Qt::AlignTop);
    grid->addLayout(below({field.value, field.note}), line++, 1);
    order.push_back(i);
  }
  grid->setRowStretch(line, 1);
  area_->setWidget(form);
  placePair();
  setTabOrderOf(order);
}

void RecordView::placePair() {
  if (sides_ == nullptr) return;
  constexpr int charactersOfALine = 44;
  const int wide = 2 * charactersOfALine * fontMetrics().averageCharWidth();
  sides_->setDirection(width() < wide ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
}

void RecordView::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  placePair();
}

void RecordView::setTabOrderOf(const std::vector<std::size_t>& places) {
  std::vector<QWidget*> order;
  order.reserve(places.size() + 5);
  for (const std::size_t place : places) order.push_back(fields_[place].value);
  order.insert(order.end(), {review_, btPrevious_, btNext_, btCopy_, btClose_});
  for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
}

void RecordView::fill() {
  const results::RowStore& store = *list().store();
  const results::RowId id = list().rowId(RowPosition{static_cast<std::size_t>(record_.row())});
  const auto fields = store.fieldsOf(id);
  std::vector<QString> captions;
  std::optional<std::size_t> before;
  std::optional<std::size_t> after;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const auto& columns = list().columns();
    captions.push_back(fromUtf8(i < columns.size() ? columns[i].caption : fields[i].name));
    if (!before && equalsIgnoringAsciiCase(fields[i].name, "OldValue")) before = i;
    if (!after && equalsIgnoringAsciiCase(fields[i].name, "NewValue")) after = i;
  }
  arrangeFields(captions, before && after ? std::optional(Pair{*before, *after}) : std::nullopt);
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const db::Cell cell = store.cell(id, ColumnIndex{i});
    Field& field = fields_[i];
    field.isNull = cell.isNull;
    // The record as it is stored: blanks around it, leading zeros and a byte order mark belong to it.
    field.value->setValue(QStringView(utf16FromUtf8(cell.text)).toString(),
                          ownText(cell.isNull ? "record.null" : "record.empty"));
    const QString note = noteOn(i, id);
    field.note->setVisible(!note.isEmpty());
    field.note->setText(note);
    if (!note.isEmpty()) field.value->setAccessibleDescription(note);
  }
  if (comparison_)
    comparison_->show(store.cell(id, ColumnIndex{pair_->before}), store.cell(id, ColumnIndex{pair_->after}));
  fillReview();
  fillFoot();
}

void RecordView::fillReview() {
  if (list_.isNull() || !record_.isValid()) return;
  const QString marks = list_->listModel().headerData(record_.row(), Qt::Vertical, Qt::AccessibleTextRole).toString();
  const bool isReviewed = !marks.isEmpty();
  if (!isReviewed && focusWidget() == review_) btClose_->setFocus();
  lblReview_->setVisible(isReviewed);
  review_->setVisible(isReviewed);
  if (review_->value() != marks) review_->setValue(marks, {});
}

QString RecordView::noteOn(std::size_t place, results::RowId record) {
  const ValueField& value = *fields_[place].value;
  if (value.isCut())
    return ownText("record.cut")
        .arg(countText(static_cast<std::size_t>(value.shown())),
             countText(static_cast<std::size_t>(value.value().size())));
  return times_ && times_->stampColumn(record) == place ? timeText(times_->of(record)) : QString();
}

void RecordView::fillFoot() {
  if (list_.isNull() || !record_.isValid()) return;
  const int count = list_->listModel().rowCount();
  const QString place =
      ownText("record.place")
          .arg(countText(static_cast<std::size_t>(record_.row()) + 1), countText(static_cast<std::size_t>(count)));
  setWindowTitle(place);
  lblPlace_->setText(place);
  const bool hadFocus = btNext_->hasFocus() || btPrevious_->hasFocus();
  btPrevious_->setEnabled(record_.row() > 0);
  btNext_->setEnabled(record_.row() + 1 < count);
  // At the end of the list the focus moves to the button for the other direction.
  if (hadFocus && !btNext_->isEnabled()) btPrevious_->setFocus();
  if (hadFocus && !btPrevious_->isEnabled()) btNext_->setFocus();
}

void RecordView::copyRecord() {
  QString refusal;
  try {
    RecordText text;
    RowCopy table(std::numeric_limits<qsizetype>::max());
    for (const Field& field : fields_) {
      text.addField(field.caption, field.value->value(), field.isNull);
      table.beginRow();
      table.addCell(field.caption, RowCopy::CellKind::caption);
      table.addCell(field.value->value());
      table.endRow();
    }
    auto copied = std::make_unique<QMimeData>();
    copied->setText(text.text());
    copied->setHtml(table.html());
    QGuiApplication::clipboard()->setMimeData(copied.release());
  } catch (const std::bad_alloc&) {
    refusal = ownText("record.copyNoMemory");
  }
  if (!refusal.isEmpty()) Q_EMIT refused(refusal);
}

}  // namespace korvel::control
