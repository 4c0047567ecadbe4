#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "demo/activity.h"
#include "demo/audit_row.h"
#include "demo/change_kinds.h"
#include "demo/plant.h"
#include "demo/random.h"
#include "demo/story.h"

namespace korvel::demo {

/// The audit trail of a plant, row by row in order of time. What is changed has a state: the old value of a change is
/// the new value of the change before it.
class Trail {
 public:
  /// `story` is woven in where there are rows enough for it not to stand out.
  Trail(const Plant& plant, std::uint64_t rows, std::uint64_t seed, std::span<const StoryRow> story);

  /// The next row, or null after the last one. Valid until the next call.
  const AuditRow* next();

 private:
  /// The thing that a kind of change changes.
  struct Subject {
    int value = 0;
    bool exists = true;
  };
  /// Some rows that one person or service makes in one go.
  struct Burst {
    Work work = Work::engineering;
    std::uint32_t changesLeft = 0;
    bool checkOutFirst = false;
    bool checkInLast = false;
    std::size_t project = 0;
    std::size_t document = 0;
    Moment limit;  ///< when the next burst starts
  };

  Subject& subjectOf(std::size_t kind, std::size_t project, std::size_t item);
  void startBurst();
  void choosePerson(const WallTime& wall);
  void signRow();
  void makeDocumentRow(std::string_view event, int newVersion);
  void makeChangeRow();
  void advanceClock();
  /// Gives the row its number, time and summer flag.
  const AuditRow* stamped(AuditRow& row, Moment moment);

  const Plant& plant_;
  Random random_;
  Activity activity_;
  std::span<const StoryRow> story_;  // what is left of it
  std::uint64_t drawnRows_;          // rows that are not the story's
  std::uint64_t drawn_ = 0;
  std::uint64_t number_ = 0;

  std::vector<Subject> subjects_;
  std::vector<int> documentVersions_;
  std::vector<std::vector<std::uint32_t>> kindWeights_;  // one list a work, one weight a kind

  Burst burst_;
  std::uint64_t rowsOfBurstLeft_ = 0;
  std::vector<const Person*> present_;  // candidates for the next burst
  Moment now_;
  bool rowWaits_ = false;  // a drawn row is ready but a row of the story comes first
  AuditRow row_;
  AuditRow storyRow_;

  AuditRow::Text pc_;
  AuditRow::Text osUser_;
  AuditRow::Text appUser_;
  AuditRow::Text userName_;
  AuditRow::Text comment_;
  std::string osUserText_;
  std::string timeText_;
  std::string itemText_;
  std::string oldText_;
  std::string newText_;
};

}  // namespace korvel::demo
