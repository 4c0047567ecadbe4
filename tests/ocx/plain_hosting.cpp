// A library in the place of the one with the toolkit: a viewer of two plain fields, so that all that the control's file
// does for a container is tested without the toolkit. It notes what it is asked to do.
#include <windows.h>
// after windows.h
#include <oleauto.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "ocx/hosted_viewer.h"

namespace korvel::ocx {
namespace {

std::wstring notes;

void note(const std::wstring& line) {
  notes += line + L'\n';
}

std::wstring textOf(BSTR text) {
  return {text != nullptr ? text : L"", ::SysStringLen(text)};
}

class PlainViewer final : public HostedViewer {
 public:
  explicit PlainViewer(ViewerOwner& owner) : owner_(owner) {}

  HRESULT get_DatabaseType(LONG* value) noexcept override {
    *value = type_;
    return S_OK;
  }
  HRESULT put_DatabaseType(LONG value) noexcept override {
    type_ = value;
    owner_.propertyChanged(L"DatabaseType");
    return S_OK;
  }
  HRESULT SelectALL() noexcept override { return called(L"SelectALL"); }
  HRESULT UnselectALL() noexcept override { return called(L"UnselectALL"); }
  HRESULT ExportNotepad() noexcept override { return called(L"ExportNotepad"); }
  HRESULT ExportExcel() noexcept override { return called(L"ExportExcel"); }
  HRESULT GetExportPath(BSTR dialogtext, short files, BSTR* result) noexcept override {
    *result = ::SysAllocString((textOf(dialogtext) + L'|' + std::to_wstring(files)).c_str());
    return S_OK;
  }
  HRESULT ChangeFont() noexcept override {
    owner_.dialogOpen(true);
    note(::IsWindowEnabled(::GetAncestor(parent_, GA_ROOT)) != 0 ? L"enabled" : L"disabled");
    owner_.dialogOpen(false);
    note(::IsWindowEnabled(::GetAncestor(parent_, GA_ROOT)) != 0 ? L"enabled" : L"disabled");
    return S_OK;
  }
  HRESULT DisplayNoOfRecords() noexcept override { return called(L"DisplayNoOfRecords"); }
  /// Waits until it is stopped, while messages arrive.
  HRESULT TriggerQuery() noexcept override {
    stopped_ = false;
    MSG message{};
    while (!stopped_ && ::GetMessageW(&message, nullptr, 0, 0) > 0) ::DispatchMessageW(&message);
    return called(L"TriggerQuery");
  }
  HRESULT ExpandAll() noexcept override { return called(L"ExpandAll"); }
  HRESULT SelectDatabase() noexcept override {
    owner_.databaseSelected(L"PLANT1 - [Korvel_Audit]");
    return S_OK;
  }
  HRESULT UnlockControls() noexcept override { return called(L"UnlockControls"); }
  HRESULT LockControls() noexcept override {
    owner_.exitApp();
    return S_OK;
  }
  HRESULT ViewTools(VARIANT_BOOL visable) noexcept override {
    return called(visable != VARIANT_FALSE ? L"ViewTools True" : L"ViewTools False");
  }
  HRESULT get_ViewSideTools(VARIANT_BOOL* value) noexcept override {
    *value = sideTools_;
    return S_OK;
  }
  HRESULT put_ViewSideTools(VARIANT_BOOL value) noexcept override {
    sideTools_ = value;
    owner_.propertyChanged(L"ViewSideTools");
    return S_OK;
  }
  HRESULT get_ViewToolBar(VARIANT_BOOL* value) noexcept override {
    *value = toolBar_;
    return S_OK;
  }
  HRESULT put_ViewToolBar(VARIANT_BOOL value) noexcept override {
    toolBar_ = value;
    owner_.propertyChanged(L"ViewToolBar");
    return S_OK;
  }
  HRESULT get_DefaultSQLServer(BSTR* value) noexcept override {
    *value = ::SysAllocString(server_.c_str());
    return S_OK;
  }
  HRESULT put_DefaultSQLServer(BSTR value) noexcept override {
    server_ = textOf(value);
    owner_.propertyChanged(L"DefaultSQLServer");
    return S_OK;
  }
  HRESULT BuildMenu() noexcept override { return called(L"BuildMenu"); }
  HRESULT BuildToolbar() noexcept override { return called(L"BuildToolbar"); }
  HRESULT ShowKeyField(VARIANT_BOOL vis) noexcept override {
    return called(vis != VARIANT_FALSE ? L"ShowKeyField True" : L"ShowKeyField False");
  }
  HRESULT ListViewColSetup() noexcept override { return called(L"ListViewColSetup"); }
  HRESULT BuildPopup(BSTR PopupItem) noexcept override { return called(L"BuildPopup " + textOf(PopupItem)); }
  /// Fails as a viewer would that has no memory.
  HRESULT TriggerAdvancedQuery(BSTR) noexcept override { return E_OUTOFMEMORY; }
  HRESULT SwitchLanguage() noexcept override { return called(L"SwitchLanguage"); }
  HRESULT BuildMisc() noexcept override { return called(L"BuildMisc"); }
  HRESULT OpenDefaultSQLServer() noexcept override { return called(L"OpenDefaultSQLServer"); }

  void initProperties() noexcept override {
    note(L"initProperties");
    sideTools_ = VARIANT_TRUE;
    toolBar_ = VARIANT_TRUE;
    server_ = L"(None)";
    type_ = 0;
  }
  HRESULT readProperties(const StoredValue* values, unsigned count, BSTR* failure) noexcept override {
    note(L"readProperties");
    for (const StoredValue* each = values; each != values + count; ++each) {
      const std::wstring name = each->name;
      if (each->value->vt == VT_EMPTY) continue;
      if (name == L"DatabaseType" && each->value->vt != VT_I4) {
        *failure = ::SysAllocString(L"13:Type mismatch");
        return E_FAIL;
      }
      if (name == L"ViewSideTools") sideTools_ = each->value->boolVal;
      if (name == L"ViewToolBar") toolBar_ = each->value->boolVal;
      if (name == L"DefaultSQLServer") server_ = textOf(each->value->bstrVal);
      if (name == L"DatabaseType") type_ = each->value->lVal;
    }
    return S_OK;
  }
  HRESULT writeProperties(const StoredValue* values, unsigned count) noexcept override {
    for (const StoredValue* each = values; each != values + count; ++each) {
      const std::wstring name = each->name;
      if (name == L"ViewSideTools" || name == L"ViewToolBar") {
        each->value->vt = VT_BOOL;
        each->value->boolVal = name == L"ViewToolBar" ? toolBar_ : sideTools_;
      }
      if (name == L"DefaultSQLServer" && server_ != L"(None)") {
        each->value->vt = VT_BSTR;
        each->value->bstrVal = ::SysAllocString(server_.c_str());
      }
      if (name == L"DatabaseType" && type_ != 0) {
        each->value->vt = VT_I4;
        each->value->lVal = type_;
      }
    }
    return S_OK;
  }

  HRESULT place(HWND parent, SIZE size) noexcept override {
    note(L"place " + textOfSize(size));
    parent_ = parent;
    const auto field = [&](int top) {
      return ::CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, top, size.cx, 20, parent, nullptr, nullptr,
                               nullptr);
    };
    first_ = field(0);
    last_ = field(20);
    return S_OK;
  }
  void resize(SIZE size) noexcept override { note(L"resize " + textOfSize(size)); }
  void remove() noexcept override {
    note(L"remove");
    for (HWND* each : {&first_, &last_}) ::DestroyWindow(std::exchange(*each, nullptr));
    parent_ = nullptr;
  }
  /// Rows of one colour, and the upper left corner in another.
  HRESULT paint(SIZE size, void* pixels) noexcept override {
    auto* const places = static_cast<std::uint32_t*>(pixels);
    std::fill_n(places, size.cx * size.cy, 0x00336699U);
    places[0] = 0x00FF0000U;
    return S_OK;
  }
  void takeFocus(bool last) noexcept override {
    note(last ? L"takeFocus last" : L"takeFocus first");
    ::SetFocus(last ? last_ : first_);
    owner_.focusEntered();
  }
  bool isAtEnd(bool backwards) noexcept override { return ::GetFocus() == (backwards ? first_ : last_); }
  void setFont(const wchar_t* family, double, bool, bool) noexcept override {
    note(std::wstring(L"setFont ") + family);
  }
  void stopWaiting() noexcept override {
    stopped_ = true;
    note(L"stopWaiting");
  }
  void discard() noexcept override {
    note(L"discard");
    delete this;
  }

 private:
  ~PlainViewer() = default;

  static HRESULT called(const std::wstring& member) noexcept {
    note(member);
    return S_OK;
  }
  static std::wstring textOfSize(SIZE size) { return std::to_wstring(size.cx) + L'x' + std::to_wstring(size.cy); }

  ViewerOwner& owner_;
  HWND parent_ = nullptr;
  HWND first_ = nullptr;
  HWND last_ = nullptr;
  bool stopped_ = false;
  VARIANT_BOOL sideTools_ = VARIANT_FALSE;
  VARIANT_BOOL toolBar_ = VARIANT_FALSE;
  std::wstring server_;
  LONG type_ = -1;
};

class PlainHosting final : public Hosting {
 public:
  HRESULT createViewer(ViewerOwner& owner, HostedViewer** viewer) noexcept override {
    *viewer = new PlainViewer(owner);
    return S_OK;
  }
  /// The key itself: which text is where is seen from that.
  HRESULT text(const char* key, BSTR* text) noexcept override {
    const std::string shown(key);
    *text = ::SysAllocString(std::wstring(shown.begin(), shown.end()).c_str());
    return S_OK;
  }
  bool end() noexcept override { return true; }
};

PlainHosting hosting;

}  // namespace
}  // namespace korvel::ocx

extern "C" {

__declspec(dllexport) HRESULT korvelOpenHosting(unsigned version, korvel::ocx::Hosting** hosting) {
  if (version != korvel::ocx::boundaryVersion) return E_INVALIDARG;
  *hosting = &korvel::ocx::hosting;
  return S_OK;
}

/// What was noted since it was asked last; the caller frees it.
__declspec(dllexport) BSTR takeNotes() {
  return ::SysAllocString(std::exchange(korvel::ocx::notes, {}).c_str());
}

}  // extern "C"
