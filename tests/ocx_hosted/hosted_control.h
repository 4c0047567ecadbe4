#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/ocx/loaded_control.h"
#include "tests/ocx/recorded_container.h"
#include "tests/ocx_hosted/looking_glass.h"
#include "tests/support/own_settings.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {

/// Delivers messages as the loop of a program does until `done` says so. False where that takes half a minute.
bool deliverMessages(const std::function<bool()>& done);

/// A control with the real viewer in a container, and the way to look into the viewer.
class HostedControl : public testing::Test {
 protected:
  HostedControl();
  ~HostedControl() override;

  /// How many records the trail below has.
  static constexpr int records = 300;
  /// A folder with a demo trail, as the name of a server.
  [[nodiscard]] std::wstring trail() const;

  /// The control's window in the container, and the viewer's in that.
  [[nodiscard]] HWND ownWindow() const;
  [[nodiscard]] HWND viewerWindow() const;
  [[nodiscard]] std::wstring textOf(const wchar_t* element) const;
  /// The name of the viewer's element that has the focus, empty for none.
  [[nodiscard]] std::wstring focus() const;
  template <typename Function>
  [[nodiscard]] static Function look(const char* name) {
    return reinterpret_cast<Function>(lookUp(name));
  }

  TemporaryFolder folder_;
  OwnSettings settings_{folder_.path()};
  LoadedControl file_;
  ContainerWindow window_;
  ocx::ComPointer<IUnknown> control_;
  RecordedContainer container_;

 private:
  static void (*lookUp(const char* name))();
};

}  // namespace korvel::test
