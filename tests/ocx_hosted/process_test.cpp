// The process around the control belongs to another program: nothing of it changes.
#include <gtest/gtest.h>

#include <array>
#include <cfloat>
#include <clocale>
#include <map>
#include <string>

#include "base/wide_text_windows.h"
#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

template <typename Function>
std::string textFrom(const Function& fill) {
  std::array<wchar_t, 4096> text{};
  const DWORD length = fill(static_cast<DWORD>(text.size()), text.data());
  return utf8FromWide(std::wstring_view(text.data(), length));
}

/// The variables by which the toolkit and the loader find files.
std::string environment() {
  std::string all;
  for (const wchar_t* name : {L"PATH", L"TEMP", L"QT_PLUGIN_PATH", L"QT_QPA_PLATFORM", L"QT_QPA_PLATFORM_PLUGIN_PATH",
                              L"QT_SCALE_FACTOR", L"LANG"})
    all += textFrom([name](DWORD size, wchar_t* text) { return ::GetEnvironmentVariableW(name, text, size); }) + '\n';
  return all;
}

/// What a process and its thread are set to, by name.
std::map<std::string, std::string> processState() {
  const LPTOP_LEVEL_EXCEPTION_FILTER crash = ::SetUnhandledExceptionFilter(nullptr);
  ::SetUnhandledExceptionFilter(crash);
  return {
      {"locale of C", std::setlocale(LC_ALL, nullptr)},
      {"locale of the thread", std::to_string(::GetThreadLocale())},
      {"error mode", std::to_string(::GetErrorMode())},
      {"error mode of the thread", std::to_string(::GetThreadErrorMode())},
      {"current folder", textFrom([](DWORD size, wchar_t* text) { return ::GetCurrentDirectoryW(size, text); })},
      {"folder of libraries", textFrom([](DWORD size, wchar_t* text) { return ::GetDllDirectoryW(size, text); })},
      {"environment", environment()},
      {"density awareness", std::to_string(::IsProcessDPIAware())},
      {"density awareness of the thread",
       std::to_string(::GetAwarenessFromDpiAwarenessContext(::GetThreadDpiAwarenessContext()))},
      {"floating point", std::to_string(::_controlfp(0, 0))},
      {"crash filter", std::to_string(reinterpret_cast<std::uintptr_t>(crash))},
      {"priority", std::to_string(::GetPriorityClass(::GetCurrentProcess())) + ' ' +
                       std::to_string(::GetThreadPriority(::GetCurrentThread()))},
      {"code pages", std::to_string(::GetConsoleCP()) + ' ' + std::to_string(::GetConsoleOutputCP())},
  };
}

/// What this process was set to before any test loaded the control.
class AtStart final : public testing::Environment {
 public:
  void SetUp() override { state() = processState(); }
  static std::map<std::string, std::string>& state() {
    static std::map<std::string, std::string> taken;
    return taken;
  }
};
// The test framework owns it.
[[maybe_unused]] const testing::Environment* const atStart = testing::AddGlobalTestEnvironment(new AtStart);

TEST(ForeignProcess, IsAsBeforeWhileAControlIsThereAndAfterwards) {
  {
    const LoadedControl file(KORVEL_PACKAGE_FOLDER);
    const ContainerWindow window;
    const ocx::ComPointer<IUnknown> control = file.make();
    RecordedContainer container(window.handle(), control.get());
    ASSERT_EQ(container.doVerb(OLEIVERB_UIACTIVATE), S_OK);
    EXPECT_EQ(processState(), AtStart::state());
  }
  EXPECT_EQ(processState(), AtStart::state());
}

}  // namespace
}  // namespace korvel::test
