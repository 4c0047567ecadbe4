#include "control/watched_work.h"

#include <memory>

#include "control/library_state.h"
#include "ui/query_watch.h"

namespace korvel::control {

bool whileWatched(const std::function<void(const db::WaitCallback& onWait)>& run) {
  const std::shared_ptr<ControlServices> services = platform().services;
  const ui::BusyPointer busy(*services);
  ui::QueryWatch watch;
  bool wanted = true;
  run([&] { return wanted = watch.goOn(); });
  return wanted;
}

}  // namespace korvel::control
