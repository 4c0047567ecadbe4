#pragma once

#include <windows.h>

#include <string>
#include <utility>

/// How failures reach a container: as a number, with a text and the control's name beside it. No exception leaves a
/// method that a container calls.
namespace korvel::ocx {

/// A failure with the text that a person shall read.
class Failure {
 public:
  Failure(HRESULT number, std::wstring text) : number_(number), text_(std::move(text)) {}
  [[nodiscard]] HRESULT number() const noexcept { return number_; }
  [[nodiscard]] const std::wstring& text() const noexcept { return text_; }

 private:
  HRESULT number_;
  std::wstring text_;
};

/// Throws Failure for a result that is one, with the system's words where there are no better ones.
void check(HRESULT result, const wchar_t* text = nullptr);

/// The system's words for a result.
[[nodiscard]] std::wstring systemText(HRESULT result);

/// Makes `text` the description of the failure that the running method returns. Returns `number`.
HRESULT fail(HRESULT number, const wchar_t* text) noexcept;

/// The number of the exception that is being handled, described as fail() does.
[[nodiscard]] HRESULT handledFailure() noexcept;

/// Runs `action`, which returns an HRESULT, and translates what it throws.
template <typename Action>
[[nodiscard]] HRESULT guarded(const Action& action) noexcept {
  try {
    return action();
  } catch (...) {
    return handledFailure();
  }
}

}  // namespace korvel::ocx
