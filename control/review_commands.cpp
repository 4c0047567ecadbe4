#include "control/review_commands.h"

#include <QAction>
#include <QGuiApplication>
#include <QMenu>
#include <QPointer>
#include <QShortcut>
#include <algorithm>
#include <set>
#include <utility>

#include "base/atomic_file.h"
#include "control/answer_status.h"
#include "control/command_menus.h"
#include "control/find_and_filter.h"
#include "control/message_boxes.h"
#include "control/printed_list.h"
#include "control/surface.h"
#include "control/texts.h"
#include "control/watched_work.h"
#include "evidence/review_report.h"
#include "korvel/AuditViewer.h"
#include "output/pages/pdf.h"

namespace korvel::control {

namespace {

using evidence::ListReview;
using evidence::MarkKind;
using evidence::NewMark;
using evidence::RecordIdentifier;
using evidence::ReviewFile;
using evidence::ReviewMark;
using evidence::ReviewMarks;
using evidence::RowReview;
using results::RowId;

const QString reviewEnding = QStringLiteral(".review");
const QString jsonEnding = QStringLiteral(".json");

struct MarkCommand {
  MarkKind kind;
  const char* textKey;
  const char* questionKey;  ///< what the user is asked to say; empty where nothing is
  Qt::Key key;
};
constexpr std::array<MarkCommand, evidence::markKindCount> markCommands = {
    {{MarkKind::reviewed, "review.markReviewed", "", Qt::Key_F7},
     {MarkKind::question, "review.markQuestion", "review.askQuestion", Qt::Key_F8},
     {MarkKind::comment, "review.markComment", "review.askComment", Qt::Key_F9}}};
const QKeySequence openOnlyKey(Qt::SHIFT | Qt::Key_F7);

/// The marks for records, each once: a record may be several rows.
std::vector<NewMark> marksFor(RecordIdentifier& identifier, const std::vector<RowId>& records, MarkKind kind,
                              const std::string& comment) {
  std::vector<NewMark> marks;
  std::set<evidence::Digest> known;
  for (const RowId record : records) {
    const evidence::RecordIdentity identity = identifier.identityOf(record);
    if (known.insert(identity.digest).second) marks.push_back({identity.number, identity.digest, kind, comment});
  }
  return marks;
}

std::vector<RowId> selectedRecords(const ResultListView& list) {
  const results::ResultList& rows = list.listModel().list();
  std::vector<RowId> records;
  for (const RowSpan& span : list.selectedSpans())
    for (int row = span.first; row <= span.last; ++row) records.push_back(rows.rowId({static_cast<std::size_t>(row)}));
  if (const int current = list.currentIndex().row(); records.empty() && current >= 0)
    records.push_back(rows.rowId({static_cast<std::size_t>(current)}));
  return records;
}

std::string counted(std::size_t count) {
  return countText(count).toStdString();
}

}  // namespace

ReviewCommands::ReviewCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface,
                               AnswerStatus& answers, FindAndFilter& findAndFilter)
    : viewer_(viewer), messages_(messages), surface_(surface), answers_(answers), findAndFilter_(findAndFilter) {
  for (std::size_t page = 0; page < headers_.size(); ++page) connectList(page);
  connectKeys();
  answers_.setReviewText([this] { return progress(); });
  QObject::connect(&session_, &ReviewSession::changed, &viewer_, [this] {
    for (std::size_t page = 0; page < headers_.size(); ++page) judge(page);
  });
  // Who comes back to the window wants to see what others did meanwhile.
  QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &session_, [this](Qt::ApplicationState state) {
    if (state == Qt::ApplicationActive) session_.refresh();
  });
  QObject::connect(&session_, &ReviewSession::failed, &viewer_,
                   [this](const Error& failure) { answers_.showNotice([failure] { return failureText(failure); }); });
}

void ReviewCommands::connectList(std::size_t page) {
  ResultListView& list = *surface_.lvListView.at(page);
  judging_.at(page) = std::make_unique<LatestWork>(nullptr);
  auto* const header = new MarkHeader(&list);
  list.setRowHeader(header);
  header->setMarks([this, page](int row) { return markOf(page, row); });
  headers_.at(page) = header;
  list.listModel().setRowTexts([this, page](int row) { return markText(page, row); });
  // The answer's record is there once the query is through.
  QObject::connect(
      &list.listModel(), &QAbstractItemModel::modelReset, &viewer_, [this, page] { followRows(page); },
      Qt::QueuedConnection);
}

void ReviewCommands::connectKeys() {
  const auto onKey = [this](ResultListView& list, const QKeySequence& key, const std::function<void()>& action) {
    auto* const shortcut = new QShortcut(key, &list);
    shortcut->setContext(Qt::WidgetShortcut);
    shortcut->setAutoRepeat(false);
    QObject::connect(shortcut, &QShortcut::activated, &viewer_,
                     [this, action] { messages_.trapped("Review", action); });
  };
  for (ResultListView* list : surface_.lvListView) {
    for (const MarkCommand& command : markCommands)
      onKey(*list, QKeySequence(command.key), [this, list, &command] { mark(*list, command.kind); });
    onKey(*list, openOnlyKey, [this, list] { filterOpen(*list, !findAndFilter_.keepsRecords(*list, openFilter())); });
  }
}

std::size_t ReviewCommands::pageOf(const ResultListView& list) const {
  const auto& lists = surface_.lvListView;
  return static_cast<std::size_t>(std::find(lists.begin(), lists.end(), &list) - lists.begin());
}

std::optional<evidence::ReviewedTrail> ReviewCommands::trailOf(std::size_t page) const {
  const evidence::Manifest* const record = answers_.record(page);
  if (record == nullptr || !RecordIdentifier::of(surface_.lvListView.at(page)->listModel().list())) return std::nullopt;
  return evidence::trailOf(record->source);
}

QMenu& ReviewCommands::addEntries(CommandPopup& menu, ResultListView& list) {
  const std::size_t page = pageOf(list);
  QAction* const entry = menu.addOwnEntry(ownText("review.menu"));
  auto* const review = new QMenu(&menu);
  entry->setMenu(review);
  // The entry goes when the menu is built anew.
  QObject::connect(entry, &QObject::destroyed, review, &QObject::deleteLater);
  const auto add = [&](const char* key, bool isEnabled, const std::function<void()>& action) {
    QAction* const each = review->addAction(ownText(key));
    each->setEnabled(isEnabled);
    QObject::connect(each, &QAction::triggered, &viewer_,
                     [this, action] { messages_.trapped("SmartPopup_Click", action); });
    return each;
  };
  const bool hasTrail = trailOf(page).has_value();
  const bool isOpen = session_.isOpen();
  add("review.open", hasTrail, [this, &list] { openFile(list, false); });
  add("review.new", hasTrail, [this, &list] { openFile(list, true); });
  add("review.close", isOpen, [this] { closeFile(); });
  review->addSeparator();
  for (const MarkCommand& command : markCommands) {
    QAction* const each =
        add(command.textKey, isOpen && hasTrail, [this, &list, &command] { mark(list, command.kind); });
    each->setShortcut(command.key);
    each->setShortcutContext(Qt::WidgetShortcut);
  }
  add("review.markAll", isOpen && hasTrail, [this, &list] { markAllShown(list); });
  review->addSeparator();
  const bool isFiltered = findAndFilter_.keepsRecords(list, openFilter());
  QAction* const onlyOpen =
      add("review.onlyOpen", isOpen && hasTrail, [this, &list, isFiltered] { filterOpen(list, !isFiltered); });
  onlyOpen->setCheckable(true);
  onlyOpen->setChecked(isFiltered);
  onlyOpen->setShortcut(openOnlyKey);
  onlyOpen->setShortcutContext(Qt::WidgetShortcut);
  QAction* const column = add("review.column", isOpen, [this] { showColumn(!showsColumn_); });
  column->setCheckable(true);
  column->setChecked(showsColumn_);
  review->addSeparator();
  add("review.report", isOpen && hasTrail, [this, &list] { writeReport(list); });
  return *review;
}

void ReviewCommands::openFile(ResultListView& list, bool isNew) {
  const auto trail = trailOf(pageOf(list));
  if (!trail) return messages_.inform(messageTitle(), ownText("reviewReport.noRecords"));
  const QPointer<AuditViewer> alive(&viewer_);
  const auto chosen = platform().services->chooseFile(
      &viewer_, ownText(isNew ? "review.new" : "review.open"),
      ownText("review.fileKind") + QStringLiteral(" (*") + reviewEnding + QLatin1Char(')'),
      isNew ? ui::ChosenFile::written : ui::ChosenFile::read);
  if (!alive || !chosen) return;
  const std::filesystem::path file = toPath(*chosen);
  const bool isDone = isNew ? session_.create(file, *trail) : session_.open(file, *trail);
  if (alive && isDone) showColumn(true);
}

void ReviewCommands::closeFile() {
  for (ResultListView* list : surface_.lvListView) findAndFilter_.showAllRecords(*list, openFilter());
  session_.close();
  showColumn(false);
}

void ReviewCommands::mark(ResultListView& list, MarkKind kind) {
  if (!session_.isOpen()) return messages_.inform(messageTitle(), ownText("review.noFile"));
  std::vector<RowId> records = selectedRecords(list);
  if (records.empty()) return;
  const MarkCommand& command = markCommands.at(static_cast<std::size_t>(kind));
  const QPointer<AuditViewer> alive(&viewer_);
  QString comment;
  if (*command.questionKey != '\0') {
    comment = platform().services->inputBox(&viewer_, ownText(command.questionKey), ownText(command.textKey)).trimmed();
    if (!alive || comment.isEmpty()) return;
  }
  const bool isOne = records.size() == 1;
  if (!mark(list, std::move(records), kind, comment) || !alive || !isOne) return;
  // The next row is to be looked at now.
  if (const int row = list.currentIndex().row(); row + 1 < list.listModel().rowCount()) list.goToRow(row + 1);
}

void ReviewCommands::markAllShown(ResultListView& list) {
  const results::ResultList& rows = list.listModel().list();
  const QPointer<AuditViewer> alive(&viewer_);
  if (rows.rowCount() == 0 ||
      !platform().services->confirm(&viewer_, messageTitle(),
                                    ownText("review.confirmAll").arg(countText(rows.rowCount()))))
    return;
  if (!alive) return;
  std::vector<RowId> records;
  for (std::size_t row = 0; row < rows.rowCount(); ++row) records.push_back(rows.rowId({row}));
  mark(list, std::move(records), MarkKind::reviewed, {});
}

bool ReviewCommands::mark(ResultListView& list, std::vector<RowId> records, MarkKind kind, const QString& comment) {
  auto identifier = RecordIdentifier::of(list.listModel().list());
  const auto trail = trailOf(pageOf(list));
  if (!identifier || !trail || !isSameTrail(*trail, session_.trail())) {
    messages_.inform(messageTitle(), ownText("reviewReport.noRecords"));
    return false;
  }
  const auto shared = std::make_shared<RecordIdentifier>(*std::move(identifier));
  return session_.add([shared, records = std::move(records), kind, text = comment.toStdString()] {
    return marksFor(*shared, records, kind, text);
  });
}

void ReviewCommands::showColumn(bool shown) {
  showsColumn_ = shown;
  for (MarkHeader* header : headers_) header->setVisible(shown);
}

std::string ReviewCommands::openFilter() {
  return "review.none";
}

void ReviewCommands::filterOpen(ResultListView& list, bool isOn) {
  const std::size_t page = pageOf(list);
  if (!isOn) return findAndFilter_.showAllRecords(list, openFilter());
  const ListReview* const review = reviewOf(page);
  if (review == nullptr) {
    messages_.inform(messageTitle(), ownText(session_.isOpen() ? "reviewReport.noRecords" : "review.noFile"));
    return;
  }
  std::vector<std::uint8_t> open(review->reviews.size());
  std::transform(review->reviews.begin(), review->reviews.end(), open.begin(),
                 [](RowReview each) { return static_cast<std::uint8_t>(each == RowReview::reviewed ? 0 : 1); });
  findAndFilter_.keepOnlyRecords(list, openFilter(), std::move(open));
}

void ReviewCommands::writeReport(ResultListView& list) {
  const QPointer<AuditViewer> alive(&viewer_);
  const auto chosen = platform().services->chooseFile(
      &viewer_, ownText("review.report"), QStringLiteral("PDF (*.pdf);;JSON (*.json)"), ui::ChosenFile::written);
  const evidence::Manifest* const record = answers_.record(pageOf(list));
  if (!alive || !chosen || record == nullptr) return;
  const settings::LanguageOffset language = libraryState().language;
  const bool isJson = chosen->endsWith(jsonEnding, Qt::CaseInsensitive);
  const auto answer = std::make_shared<const results::ResultList>(list.listModel().list().unfiltered());
  PrintedList printed{.caption = std::string(settings::ownText("reviewReport.caption", language)), .manifest = *record};
  printed.part.caption = printed.caption;
  const auto written = runWatched([=, file = session_.file(), trail = session_.trail(),
                                   target = toPath(*chosen)](const std::stop_token& stop) mutable {
    ReviewFile review(file, trail, ReviewFile::Use::read);
    ReviewMarks marks;
    marks.add(review.takeNewMarks());
    const evidence::ReviewReport report = evidence::makeReviewReport(review, marks, answer.get());
    AtomicFile output(target);
    const auto sink = [&output](std::string_view bytes) { output.write(bytes); };
    if (isJson) {
      sink(evidence::reviewReportJson(report));
    } else {
      printed.list = std::make_shared<const results::ResultList>(evidence::reviewReportList(report, language));
      printed.part.rows = printed.part.ofRows = printed.list->rowCount();
      for (const std::string& sentence : evidence::reviewReportSentences(report, language, counted))
        printed.part.remark.append(printed.part.remark.empty() ? "" : ". ").append(sentence);
      output::pages::PageTexts texts = pageTextsOf(printed);
      evidence::addReviewFacts(texts.head, report, language, counted);
      const auto source = sourceOf(printed);
      output::pages::writePdf(*source, texts, sink, [&stop](int, int) { return !stop.stop_requested(); });
    }
    if (stop.stop_requested()) return false;
    output.commit();
    return true;
  });
  if (!alive || !written.value_or(false)) return;
  answers_.showNotice([file = *chosen] { return ownText("export.written").arg(file); });
}

void ReviewCommands::followRows(std::size_t page) {
  if (!session_.isOpen()) return;
  const auto trail = trailOf(page);
  if (trail && !isSameTrail(*trail, session_.trail())) {
    const QString database = fromUtf8(session_.trail().database);
    const QString server = fromUtf8(session_.trail().server);
    closeFile();
    answers_.showNotice([database, server] { return ownText("review.closedOther").arg(database, server); });
    return;
  }
  const results::RowStore* const store = surface_.lvListView.at(page)->listModel().list().store();
  // A filter shows other rows of the same records.
  if (judged_.at(page) && store != nullptr && judged_.at(page)->store.lock().get() == store) return;
  judge(page);
}

void ReviewCommands::judge(std::size_t page) {
  ResultListView& list = *surface_.lvListView.at(page);
  if (!session_.isOpen() || list.listModel().list().wholeRowCount() == 0) {
    judging_.at(page)->stop();
    judged_.at(page).reset();
    showJudged(page);
    return;
  }
  struct Work {
    results::ResultList list;
    ReviewMarks marks;
    std::optional<ListReview> review;
  };
  const auto work = std::make_shared<Work>(Work{list.listModel().list().unfiltered(), session_.marks(), {}});
  judging_.at(page)->start(
      [work](const std::stop_token& /*stop*/) {
        // Where memory runs out, nothing is said of the rows.
        skipFailing([&] { work->review = evidence::reviewOf(work->list, work->marks); });
      },
      [this, page, work] {
        judged_.at(page).reset();
        if (work->review) judged_.at(page) = Judged{work->list.sharedStore(), std::move(*work->review)};
        showJudged(page);
      });
}

void ReviewCommands::showJudged(std::size_t page) {
  ResultListView& list = *surface_.lvListView.at(page);
  if (findAndFilter_.keepsRecords(list, openFilter()))
    messages_.trapped("FilterReview", [&] { filterOpen(list, judged_.at(page).has_value()); });
  // The record window, too, says what the marks are.
  if (const int rows = list.listModel().rowCount(); rows > 0)
    Q_EMIT list.listModel().headerDataChanged(Qt::Vertical, 0, rows - 1);
  if (surface_.currentTab() == page) answers_.followRestingText();
}

const ListReview* ReviewCommands::reviewOf(std::size_t page) const {
  const std::optional<Judged>& judged = judged_.at(page);
  return judged && isStoreOf(judged->store, surface_.lvListView.at(page)->listModel().list()) ? &judged->review
                                                                                              : nullptr;
}

RowMark ReviewCommands::markOf(std::size_t page, int row) const {
  const ListReview* const review = reviewOf(page);
  const results::ResultList& list = surface_.lvListView.at(page)->listModel().list();
  if (review == nullptr || row < 0 || static_cast<std::size_t>(row) >= list.rowCount()) return {};
  const RowId record = list.rowId({static_cast<std::size_t>(row)});
  return {review->of(record), review->hasComment.at(record.value)};
}

QString ReviewCommands::markText(std::size_t page, int row) const {
  const results::ResultList& list = surface_.lvListView.at(page)->listModel().list();
  if (reviewOf(page) == nullptr || row < 0 || static_cast<std::size_t>(row) >= list.rowCount()) return {};
  QStringList lines(ownText(evidence::rowReviewTexts.at(static_cast<std::size_t>(markOf(page, row).review))));
  const auto identifier = RecordIdentifier::of(list);
  if (!identifier) return lines.front();
  const auto number = identifier->numberOf(list.rowId({static_cast<std::size_t>(row)}));
  constexpr std::size_t mostMarks = 10;
  const auto marks = session_.marks().under(number);
  for (std::size_t i = marks.size() - std::min(marks.size(), mostMarks); number && i < marks.size(); ++i) {
    const ReviewMark& mark = *marks[i];
    QString line = ownText(evidence::markKinds().at(static_cast<std::size_t>(mark.kind)).textKey) +
                   QStringLiteral(", ") + fromUtf8(mark.user) + QStringLiteral(", ") + fromUtf8(mark.time);
    if (!mark.comment.empty()) line += QStringLiteral(": ") + fromUtf8(mark.comment);
    lines.append(line);
  }
  return lines.join(QLatin1Char('\n'));
}

QString ReviewCommands::progress() const {
  if (!session_.isOpen()) return {};
  const ListReview* const review = reviewOf(surface_.currentTab());
  if (review == nullptr) return {};
  QStringList sentences(
      ownText("reviewReport.progress").arg(countText(review->count(RowReview::reviewed)), countText(review->records)));
  const auto add = [&](const char* key, RowReview which) {
    if (const std::size_t count = review->count(which); count > 0) sentences.append(ownText(key).arg(countText(count)));
  };
  add("reviewReport.openQuestions", RowReview::question);
  add("reviewReport.changed", RowReview::changed);
  return sentences.join(QStringLiteral(". "));
}

}  // namespace korvel::control
