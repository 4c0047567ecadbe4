#include "control/find_and_filter.h"

#include <QMenu>
#include <QPersistentModelIndex>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "control/answer_status.h"
#include "control/audit_queries.h"
#include "control/command_menus.h"
#include "control/message_boxes.h"
#include "control/surface.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"

namespace korvel::control {

using results::SearchDirection;

FindAndFilter::FindAndFilter(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
                             AuditQueries& queries)
    : viewer_(viewer), messages_(messages), surface_(surface) {
  for (std::size_t i = 0; i < finding_.size(); ++i) {
    ListArea& area = *surface_.areas.at(i);
    finding_.at(i) = std::make_unique<ListFinding>(
        area, ListFinding::Hooks{.filter =
                                     [this, i](const ui::FindRequest& request, const results::MatchingCells& cells) {
                                       messages_.trapped("FilterText",
                                                         [&] { filters_.at(i)->keepOnlyText(request, cells); });
                                     },
                                 .closed = [this, i] { filters_.at(i)->endChange(); }});
    filters_.at(i) = std::make_unique<ListFilters>(
        area, ListFilters::Hooks{
                  .trapped = [this](std::string_view handler,
                                    const std::function<void()>& operation) { messages_.trapped(handler, operation); },
                  .changed =
                      [this, i, &answers, &queries] {
                        answers.showEmptyTexts();
                        if (surface_.currentTab() == i) queries.DisplayNoOfRecords();
                      },
                  .find = [this, i](const ui::FindRequest& request) { finding_.at(i)->change(request); }});
  }
  connectKeys();
}

FindAndFilter::~FindAndFilter() = default;

void FindAndFilter::connectKeys() {
  const auto onKey = [this](const QKeySequence& key, const std::function<void(ListFinding&)>& action) {
    auto* shortcut = new QShortcut(key, &viewer_);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    QObject::connect(shortcut, &QShortcut::activated, &viewer_, [this, action] {
      messages_.trapped("Find", [&] { action(*finding_.at(surface_.currentTab())); });
    });
  };
  onKey(Qt::CTRL | Qt::Key_F, [](ListFinding& finding) { finding.open(); });
  onKey(Qt::Key_F3, [](ListFinding& finding) { finding.step(SearchDirection::forward); });
  onKey(Qt::SHIFT | Qt::Key_F3, [](ListFinding& finding) { finding.step(SearchDirection::backward); });
}

void FindAndFilter::showTexts() {
  for (std::size_t i = 0; i < finding_.size(); ++i) {
    finding_.at(i)->showTexts();
    filters_.at(i)->showTexts();
  }
}

void FindAndFilter::keepOnlyGroup(const ResultListView& list, const std::vector<results::ColumnCondition>& group) {
  const std::size_t place = placeOf(list);
  if (place < filters_.size()) filters_.at(place)->keepOnlyGroup(group);
}

void FindAndFilter::keepOnlyRange(const ResultListView& list, const results::ColumnIndex& column,
                                  const std::optional<results::TextRange>& range) {
  const std::size_t place = placeOf(list);
  if (place < filters_.size()) filters_.at(place)->keepOnlyRange(column, range);
}

void FindAndFilter::keepOnlyRecords(const ResultListView& list, const std::string& name,
                                    std::vector<std::uint8_t> records) {
  const std::size_t place = placeOf(list);
  if (place < filters_.size()) filters_.at(place)->keepOnlyRecords(name, std::move(records));
}

void FindAndFilter::showAllRecords(const ResultListView& list, const std::string& name) {
  const std::size_t place = placeOf(list);
  if (place < filters_.size()) filters_.at(place)->showAllRecords(name);
}

bool FindAndFilter::keepsRecords(const ResultListView& list, const std::string& name) const {
  const std::size_t place = placeOf(list);
  return place < filters_.size() && filters_.at(place)->keepsRecords(name);
}

std::size_t FindAndFilter::placeOf(const ResultListView& list) const {
  const auto& lists = surface_.lvListView;
  return static_cast<std::size_t>(std::find(lists.begin(), lists.end(), &list) - lists.begin());
}

void FindAndFilter::addEntries(CommandPopup& menu, const ResultListView& list, const QModelIndex& cell) {
  const std::size_t place = placeOf(list);
  if (!cell.isValid() || place >= filters_.size()) return;
  ListFilters& filters = *filters_.at(place);
  ListFinding& finding = *finding_.at(place);
  const QPersistentModelIndex kept(cell);
  const auto add = [&](const char* key, const char* keys, const std::function<void()>& action) {
    QAction* const entry = menu.addOwnEntry(ownText(key), QKeySequence::fromString(QLatin1String(keys)));
    QObject::connect(entry, &QAction::triggered, &viewer_,
                     [this, action] { messages_.trapped("SmartPopup_Click", action); });
  };
  add("filter.only", "Ctrl+K", [&filters, kept] { filters.keepOnlyValue(kept); });
  add("filter.without", "Ctrl+Shift+K", [&filters, kept] { filters.leaveOutValue(kept); });
  add("filter.byColumn", "Alt+Down", [&filters, column = cell.column()] { filters.showValues(column); });
  add("filter.find", "Ctrl+F", [&finding] { finding.open(); });
}

}  // namespace korvel::control
