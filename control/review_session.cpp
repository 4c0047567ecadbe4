#include "control/review_session.h"

#include <QPointer>
#include <chrono>
#include <memory>
#include <utility>

#include "base/error.h"
#include "control/watched_work.h"

namespace korvel::control {

namespace {

using evidence::ReviewedTrail;
using evidence::ReviewFile;

constexpr std::chrono::seconds betweenRefreshes{15};
/// Nobody waits for a refresh: a file that is locked is read the next time.
constexpr std::chrono::seconds refreshPatience{2};
constexpr const char* program = "Korvel Audit Viewer " KORVEL_VERSION;

}  // namespace

ReviewSession::ReviewSession(QObject* parent) : QObject(parent), clock_(this), refreshing_(nullptr) {
  clock_.setInterval(betweenRefreshes);
  connect(&clock_, &QTimer::timeout, this, &ReviewSession::refresh);
}

bool ReviewSession::openAfter(const std::function<void()>& step, const std::filesystem::path& file,
                              const ReviewedTrail& trail) {
  // Queued calls run while it is waited for.
  const QPointer<ReviewSession> alive(this);
  const auto taken = runWatched([step, file, trail](const std::stop_token& /*stop*/) {
    if (step) step();
    ReviewFile review(file, trail, ReviewFile::Use::mark);
    Taken all;
    all.marks = review.takeNewMarks();
    all.position = review.position();
    return all;
  });
  if (!alive || !taken) return false;
  refreshing_.stop();
  file_ = file;
  trail_ = trail;
  marks_ = {};
  hasFailed_ = false;
  clock_.start();
  take(*taken);
  return true;
}

bool ReviewSession::open(const std::filesystem::path& file, const ReviewedTrail& trail) {
  return openAfter({}, file, trail);
}

bool ReviewSession::create(const std::filesystem::path& file, const ReviewedTrail& trail) {
  return openAfter([file, trail] { ReviewFile::create(file, trail, program); }, file, trail);
}

bool ReviewSession::add(const MarkMaker& marks) {
  const QPointer<ReviewSession> alive(this);
  refreshing_.stop();
  const auto taken = runWatched([marks, file = file(), trail = trail_, position = position_](const std::stop_token&) {
    ReviewFile review(file, trail, ReviewFile::Use::mark);
    review.continueAfter(position);
    review.add(marks());
    Taken more;
    more.marks = review.takeNewMarks();
    more.position = review.position();
    return more;
  });
  if (!alive) return false;
  if (!taken) {
    refresh();
    return false;
  }
  take(*taken);
  return true;
}

void ReviewSession::close() {
  if (!file_) return;
  refreshing_.stop();
  clock_.stop();
  file_.reset();
  marks_ = {};
  position_ = {};
  Q_EMIT changed();
}

void ReviewSession::refresh() {
  // The one under way is not stopped by its successor: it may be waiting for the network.
  if (!file_ || refreshing_.isRunning()) return;
  struct Refreshed {
    Taken taken;
    std::optional<Error> failure;
  };
  const auto refreshed = std::make_shared<Refreshed>();
  refreshing_.start(
      [refreshed, file = *file_, trail = trail_, position = position_](const std::stop_token& /*stop*/) {
        try {
          ReviewFile review(file, trail, ReviewFile::Use::read, refreshPatience);
          review.continueAfter(position);
          refreshed->taken.marks = review.takeNewMarks();
          refreshed->taken.position = review.position();
        } catch (const Error& failure) {
          refreshed->failure = failure;
        } catch (const std::exception& failure) {
          refreshed->failure = Error(unspecifiedFailure, failure.what());
        }
      },
      [this, refreshed] {
        if (!refreshed->failure) {
          hasFailed_ = false;
          if (!refreshed->taken.marks.empty()) take(refreshed->taken);
        } else if (!std::exchange(hasFailed_, true)) {
          Q_EMIT failed(*refreshed->failure);
        }
      });
}

void ReviewSession::take(const Taken& taken) {
  marks_.add(taken.marks);
  position_ = taken.position;
  Q_EMIT changed();
}

}  // namespace korvel::control
