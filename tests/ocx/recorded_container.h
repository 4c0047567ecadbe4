#pragma once

#include <string>
#include <vector>

#include "examples/activex/container.h"

namespace korvel::test {

/// The container of the examples, with a record of what the control tells. It takes all keys that the control leaves to
/// it.
class RecordedContainer : public example::Container {
 public:
  RecordedContainer(HWND window, IUnknown* control, bool running = true) : Container(window, control, running) {
    listen([this](const std::wstring& line) { told_.push_back(line); });
    takeKeys([](const MSG&) { return true; });
  }
  // What is told at the end is recorded, too.
  ~RecordedContainer() { close(); }

  /// One line for each call of the control.
  [[nodiscard]] const std::vector<std::wstring>& told() const { return told_; }
  void forget() { told_.clear(); }

 private:
  std::vector<std::wstring> told_;
};

}  // namespace korvel::test
