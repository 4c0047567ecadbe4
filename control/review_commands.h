#pragma once

#include <QString>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "control/latest_work.h"
#include "control/mark_header.h"
#include "control/review_session.h"
#include "query/standard_query.h"

class QAction;
class QMenu;

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class CommandPopup;
class FindAndFilter;
class MessageBoxes;
class ResultListView;
class Surface;

/// Reviewing the records of the lists: opens review files, marks records, shows the marks and how far the review has
/// come, filters by what is open, and writes the report. Keys mean the list in front.
class ReviewCommands {
 public:
  /// All must outlive the commands.
  ReviewCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
                 FindAndFilter& findAndFilter);
  ReviewCommands(const ReviewCommands&) = delete;
  ReviewCommands& operator=(const ReviewCommands&) = delete;

  /// Adds the submenu to the context menu of the list, and returns it; it goes with the entries of the menu.
  QMenu& addEntries(CommandPopup& menu, ResultListView& list);

 private:
  /// What the marks say of the records that a list shows.
  struct Judged {
    std::weak_ptr<const results::RowStore> store;
    evidence::ListReview review;
  };

  void connectKeys();
  void connectList(std::size_t page);
  [[nodiscard]] std::size_t pageOf(const ResultListView& list) const;
  /// The trail that the records of a list are of; nothing where there is none, or nothing to review.
  [[nodiscard]] std::optional<evidence::ReviewedTrail> trailOf(std::size_t page) const;

  void openFile(ResultListView& list, bool isNew);
  void closeFile();
  void mark(ResultListView& list, evidence::MarkKind kind);
  void markAllShown(ResultListView& list);
  /// Marks the records; false where they were not.
  bool mark(ResultListView& list, std::vector<results::RowId> records, evidence::MarkKind kind, const QString& comment);
  void showColumn(bool shown);
  /// The name of the filter by what is not reviewed.
  [[nodiscard]] static std::string openFilter();
  void filterOpen(ResultListView& list, bool isOn);
  void writeReport(ResultListView& list);

  void followRows(std::size_t page);
  void judge(std::size_t page);
  void showJudged(std::size_t page);
  [[nodiscard]] const evidence::ListReview* reviewOf(std::size_t page) const;
  [[nodiscard]] RowMark markOf(std::size_t page, int row) const;
  [[nodiscard]] QString markText(std::size_t page, int row) const;
  /// How far the review of the list in front has come.
  [[nodiscard]] QString progress() const;

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  AnswerStatus& answers_;
  FindAndFilter& findAndFilter_;
  ReviewSession session_{nullptr};
  std::array<MarkHeader*, query::listCount> headers_{};
  std::array<std::optional<Judged>, query::listCount> judged_;
  std::array<std::unique_ptr<LatestWork>, query::listCount> judging_;
  bool showsColumn_ = false;
};

}  // namespace korvel::control
