#include "ocx/failure.h"

// after windows.h
#include <oleauto.h>

#include <exception>
#include <new>

#include "ocx/com_pointer.h"

namespace korvel::ocx {

std::wstring systemText(HRESULT result) {
  wchar_t* allocated = nullptr;
  constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  const DWORD length = ::FormatMessageW(flags, nullptr, static_cast<DWORD>(result), 0,
                                        reinterpret_cast<wchar_t*>(&allocated), 0, nullptr);
  std::wstring text(allocated != nullptr ? allocated : L"", length);
  ::LocalFree(allocated);
  while (!text.empty() && (text.back() == L'\r' || text.back() == L'\n')) text.pop_back();
  return text;
}

void check(HRESULT result, const wchar_t* text) {
  if (FAILED(result)) throw Failure(result, text != nullptr ? text : systemText(result));
}

HRESULT fail(HRESULT number, const wchar_t* text) noexcept {
  ComPointer<ICreateErrorInfo> created;
  if (FAILED(::CreateErrorInfo(created.receive()))) return number;
  std::wstring source(L"KorvelAuditViewerOCX");
  std::wstring description(text);
  created->SetSource(source.data());
  created->SetDescription(description.data());
  const auto information = ComPointer<IErrorInfo>::of(created.get(), IID_IErrorInfo);
  if (information) ::SetErrorInfo(0, information.get());
  return number;
}

HRESULT handledFailure() noexcept {
  try {
    throw;
  } catch (const Failure& failure) {
    return fail(failure.number(), failure.text().c_str());
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace korvel::ocx
