#pragma once

#include <QObject>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "control/latest_work.h"
#include "evidence/review_file.h"
#include "evidence/row_reviews.h"

namespace korvel::control {

/// The review file that is open in a control, and its marks. The file is opened for each access and closed again, so
/// that nothing is held in a folder in the network; marks of other reviewers are taken from time to time.
class ReviewSession final : public QObject {
  Q_OBJECT

 public:
  /// Makes the marks that are to be written: on a worker, so it owns all that it uses.
  using MarkMaker = std::function<std::vector<evidence::NewMark>()>;

  explicit ReviewSession(QObject* parent);

  [[nodiscard]] bool isOpen() const noexcept { return file_.has_value(); }
  [[nodiscard]] const std::filesystem::path& file() const { return file_.value(); }
  [[nodiscard]] const evidence::ReviewedTrail& trail() const noexcept { return trail_; }
  [[nodiscard]] const evidence::ReviewMarks& marks() const noexcept { return marks_; }

  // These wait for the file, which may be in a folder in the network: windows are painted meanwhile, and Esc ends the
  // wait. They return false then, and throw Error where the file cannot be used; what was open stays open.

  [[nodiscard]] bool open(const std::filesystem::path& file, const evidence::ReviewedTrail& trail);
  [[nodiscard]] bool create(const std::filesystem::path& file, const evidence::ReviewedTrail& trail);
  /// Writes marks, all or none. Where the wait was ended they may have been written; refresh() finds them.
  [[nodiscard]] bool add(const MarkMaker& marks);

  void close();
  /// Takes the marks that others have written. Returns at once.
  void refresh();

 Q_SIGNALS:
  /// The review was opened or closed, or there are more marks.
  void changed();
  /// What went wrong while marks of others were taken; said once until they can be taken again.
  void failed(const korvel::Error& failure);

 private:
  struct Taken {
    std::vector<evidence::ReviewMark> marks;
    evidence::ReviewPosition position;
  };
  [[nodiscard]] bool openAfter(const std::function<void()>& step, const std::filesystem::path& file,
                               const evidence::ReviewedTrail& trail);
  void take(const Taken& taken);

  std::optional<std::filesystem::path> file_;
  evidence::ReviewedTrail trail_;
  evidence::ReviewMarks marks_;
  evidence::ReviewPosition position_;
  bool hasFailed_ = false;
  QTimer clock_;
  LatestWork refreshing_;
};

}  // namespace korvel::control
