#include "ocx/property_page.h"

// after windows.h
#include <oleauto.h>
#include <olectl.h>

#include <algorithm>
#include <array>
#include <cwctype>
#include <optional>
#include <utility>
#include <vector>

#include "ocx/allocated_text.h"
#include "ocx/enumeration_choices.h"
#include "ocx/failure.h"
#include "ocx/hosting_library.h"
#include "ocx/property_page_elements.h"

namespace korvel::ocx {
namespace {

/// A property's field, in the order of the properties.
struct Field {
  const wchar_t* property;
  VARTYPE type;
  int element;
  /// The element with the caption, and the caption in the viewer's table of texts.
  int label;
  const char* caption;
};

constexpr std::array<Field, 4> fields{{
    {L"ViewSideTools", VT_BOOL, KORVEL_PAGE_SIDE_TOOLS, KORVEL_PAGE_SIDE_TOOLS, "propertyPage.sideTools"},
    {L"ViewToolBar", VT_BOOL, KORVEL_PAGE_TOOL_BAR, KORVEL_PAGE_TOOL_BAR, "propertyPage.toolBar"},
    {L"DefaultSQLServer", VT_BSTR, KORVEL_PAGE_SERVER, KORVEL_PAGE_SERVER_LABEL, "propertyPage.server"},
    {L"DatabaseType", VT_I4, KORVEL_PAGE_TYPE, KORVEL_PAGE_TYPE_LABEL, "propertyPage.databaseType"},
}};

std::vector<EditedProperty> editedProperties() {
  std::vector<EditedProperty> all;
  all.reserve(fields.size());
  for (const Field& field : fields) all.push_back({field.property, field.type, std::nullopt, false});
  return all;
}

/// A text of the viewer, in its language.
std::wstring viewerText(const char* key) {
  BSTR given = nullptr;
  check(hosting().text(key, &given));
  std::wstring text(given != nullptr ? given : L"", ::SysStringLen(given));
  ::SysFreeString(given);
  return text;
}

std::wstring textOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(::GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

/// Whether an element of the dialog has this letter, which Alt leads to.
bool hasLetter(HWND dialog, wchar_t letter) {
  for (const Field& field : fields) {
    const std::wstring caption = textOf(::GetDlgItem(dialog, field.label));
    const std::size_t mark = caption.find(L'&');
    if (mark != std::wstring::npos && mark + 1 < caption.size() &&
        std::towlower(caption[mark + 1]) == std::towlower(letter))
      return true;
  }
  return false;
}

/// Makes the dialog, without being shown. `page` is null for one that is only measured.
HWND makeDialog(HWND parent, PropertyPage* page, DLGPROC procedure) {
  const HWND made = ::CreateDialogParamW(ownInstance(), MAKEINTRESOURCEW(KORVEL_PAGE), parent, procedure,
                                         reinterpret_cast<LPARAM>(page));
  if (made == nullptr) check(HRESULT_FROM_WIN32(::GetLastError()));
  return made;
}

}  // namespace

PropertyPage::PropertyPage(std::shared_ptr<const ControlTypes> types)
    : types_(std::move(types)), properties_(editedProperties()) {}

PropertyPage::~PropertyPage() {
  Deactivate();
}

ComPointer<IUnknown> PropertyPage::create(IUnknown* outer) {
  if (outer != nullptr) check(CLASS_E_NOAGGREGATION);
  ComPointer<IUnknown> page;
  // It counts one reference from the beginning, which the caller gets.
  *page.receive() = new PropertyPage(controlTypes());
  return page;
}

HRESULT PropertyPage::QueryInterface(REFIID identifier, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualIID(identifier, IID_IUnknown) && !IsEqualIID(identifier, IID_IPropertyPage) &&
      !IsEqualIID(identifier, IID_IPropertyPage2))
    return E_NOINTERFACE;
  *object = static_cast<IPropertyPage2*>(this);
  AddRef();
  return S_OK;
}

ULONG PropertyPage::Release() noexcept {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT PropertyPage::SetPageSite(IPropertyPageSite* site) noexcept {
  if (site != nullptr && site_) return E_UNEXPECTED;
  site_ = ComPointer<IPropertyPageSite>::shared(site);
  return S_OK;
}

HRESULT PropertyPage::Activate(HWND parent, LPCRECT place, BOOL /*modal*/) noexcept {
  if (place == nullptr) return E_POINTER;
  if (parent == nullptr) return E_INVALIDARG;
  if (dialog_ != nullptr || !properties_.hasControls()) return E_UNEXPECTED;
  const HRESULT result = guarded([&] {
    makeDialog(parent, this, &PropertyPage::handleMessage);
    fill();
    return Move(place);
  });
  if (FAILED(result)) Deactivate();
  return result;
}

HRESULT PropertyPage::Deactivate() noexcept {
  if (dialog_ == nullptr) return E_UNEXPECTED;
  const HWND closed = std::exchange(dialog_, nullptr);
  ::SetWindowLongPtrW(closed, DWLP_USER, 0);
  ::DestroyWindow(closed);
  return S_OK;
}

HRESULT PropertyPage::GetPageInfo(PROPPAGEINFO* information) noexcept {
  if (information == nullptr) return E_POINTER;
  return guarded([&]() -> HRESULT {
    // The size depends on the font, which the system puts into a dialog.
    RECT all{};
    const HWND measured = makeDialog(HWND_MESSAGE, nullptr, &PropertyPage::handleMessage);
    ::GetClientRect(measured, &all);
    ::DestroyWindow(measured);
    const ULONG size = information->cb;
    *information = {};
    information->cb = size;
    information->size = {all.right, all.bottom};
    information->pszTitle = allocated(viewerText("propertyPage.title"));
    return information->pszTitle != nullptr ? S_OK : E_OUTOFMEMORY;
  });
}

HRESULT PropertyPage::SetObjects(ULONG count, IUnknown** objects) noexcept {
  if (count > 0 && objects == nullptr) return E_POINTER;
  return guarded([&]() -> HRESULT {
    std::vector<ComPointer<IDispatch>> controls;
    for (ULONG index = 0; index < count; ++index) {
      controls.push_back(ComPointer<IDispatch>::of(objects[index], IID_IDispatch));
      if (!controls.back()) return E_NOINTERFACE;
    }
    properties_.setControls(std::move(controls));
    if (dialog_ != nullptr && count > 0) fill();
    return S_OK;
  });
}

HRESULT PropertyPage::Show(UINT command) noexcept {
  if (dialog_ == nullptr) return E_UNEXPECTED;
  if (command != SW_SHOW && command != SW_SHOWNORMAL && command != SW_HIDE) return E_INVALIDARG;
  ::ShowWindow(dialog_, static_cast<int>(command));
  return S_OK;
}

HRESULT PropertyPage::Move(LPCRECT place) noexcept {
  if (place == nullptr) return E_POINTER;
  if (dialog_ == nullptr) return E_UNEXPECTED;
  ::SetWindowPos(dialog_, nullptr, place->left, place->top, place->right - place->left, place->bottom - place->top,
                 SWP_NOACTIVATE | SWP_NOZORDER);
  return S_OK;
}

HRESULT PropertyPage::IsPageDirty() noexcept {
  return properties_.isChanged() ? S_OK : S_FALSE;
}

HRESULT PropertyPage::Apply() noexcept {
  if (!properties_.hasControls()) return E_UNEXPECTED;
  if (!properties_.isChanged()) return S_OK;
  // A control that is written to may let its container release the page.
  const auto alive = ComPointer<IUnknown>::shared(this);
  return guarded([&] {
    const std::optional<Refusal> refusal = properties_.apply();
    if (dialog_ != nullptr) {
      fill();
      if (refusal) {
        showFailure(refusal->text);
        focus(refusal->property);
      }
    }
    return refusal ? fail(refusal->number, refusal->text.c_str()) : S_OK;
  });
}

// The window has no help button for a page without help.
HRESULT PropertyPage::Help(LPCOLESTR /*folder*/) noexcept {
  return E_NOTIMPL;
}

HRESULT PropertyPage::TranslateAccelerator(MSG* message) noexcept {
  if (message == nullptr) return E_POINTER;
  if (dialog_ == nullptr) return E_UNEXPECTED;
  if (message->message < WM_KEYFIRST || message->message > WM_KEYLAST || ::IsChild(dialog_, message->hwnd) == 0)
    return S_FALSE;
  const auto forFrame = [&] {
    if (message->message == WM_SYSCHAR || message->message == WM_SYSKEYDOWN)
      return message->message == WM_SYSCHAR && !hasLetter(dialog_, static_cast<wchar_t>(message->wParam));
    if (message->message != WM_KEYDOWN) return false;
    const HWND list = ::GetDlgItem(dialog_, KORVEL_PAGE_TYPE);
    const bool withCtrl = ::GetKeyState(VK_CONTROL) < 0;
    switch (message->wParam) {
      case VK_F1:
        return true;
      case VK_PRIOR:
      case VK_NEXT:
        // With Ctrl they lead to another page, as Tab does.
        return withCtrl;
      case VK_RETURN:
      case VK_ESCAPE:
        // They close an open list first.
        return ::SendMessageW(list, CB_GETDROPPEDSTATE, 0, 0) == FALSE;
      case VK_TAB: {
        const bool backwards = ::GetKeyState(VK_SHIFT) < 0;
        const HWND first = ::GetNextDlgTabItem(dialog_, nullptr, FALSE);
        const HWND last = ::GetNextDlgTabItem(dialog_, first, TRUE);
        return withCtrl || ::GetFocus() == (backwards ? first : last);
      }
      default:
        return false;
    }
  };
  // The frame may close the page.
  const ComPointer<IPropertyPageSite> site = site_;
  if (forFrame()) return site && site->TranslateAccelerator(message) == S_OK ? S_OK : S_FALSE;
  return ::IsDialogMessageW(dialog_, message) != FALSE ? S_OK : S_FALSE;
}

HRESULT PropertyPage::EditProperty(DISPID property) noexcept {
  if (dialog_ == nullptr) return E_UNEXPECTED;
  return guarded([&]() -> HRESULT {
    for (std::size_t index = 0; index < fields.size(); ++index) {
      std::wstring name(fields.at(index).property);
      LPOLESTR text = name.data();
      DISPID number = DISPID_UNKNOWN;
      check(types_->members->GetIDsOfNames(&text, 1, &number));
      if (number != property) continue;
      focus(index);
      return S_OK;
    }
    return DISP_E_MEMBERNOTFOUND;
  });
}

INT_PTR CALLBACK PropertyPage::handleMessage(HWND dialog, UINT message, WPARAM first, LPARAM second) noexcept {
  if (message == WM_INITDIALOG) {
    if (second == 0) return FALSE;
    auto* page = reinterpret_cast<PropertyPage*>(second);
    ::SetWindowLongPtrW(dialog, DWLP_USER, second);
    [[maybe_unused]] const HRESULT result = guarded([&] {
      page->opened(dialog);
      return S_OK;
    });
    // The frame has its own idea of who gets the focus.
    return FALSE;
  }
  auto* page = reinterpret_cast<PropertyPage*>(::GetWindowLongPtrW(dialog, DWLP_USER));
  if (page == nullptr) return FALSE;
  switch (message) {
    case WM_COMMAND: {
      // The site may release the page when it hears of a change.
      const auto alive = ComPointer<IUnknown>::shared(page);
      [[maybe_unused]] const HRESULT result = guarded([&] {
        page->commanded(LOWORD(first), HIWORD(first));
        return S_OK;
      });
      return TRUE;
    }
    case WM_DESTROY:
      // The frame's window goes, and this one with it.
      page->dialog_ = nullptr;
      ::SetWindowLongPtrW(dialog, DWLP_USER, 0);
      return TRUE;
    default:
      return FALSE;
  }
}

void PropertyPage::opened(HWND dialog) {
  dialog_ = dialog;
  const HWND list = ::GetDlgItem(dialog, KORVEL_PAGE_TYPE);
  for (const Choice& each : choicesOf(*types_->databaseTypes.get())) {
    const LRESULT place = ::SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(each.name.c_str()));
    ::SendMessageW(list, CB_SETITEMDATA, static_cast<WPARAM>(place), each.value);
  }
}

void PropertyPage::commanded(int element, UINT notification) {
  if (filling_) return;
  const auto* const field =
      std::find_if(fields.begin(), fields.end(), [&](const Field& each) { return each.element == element; });
  if (field == fields.end()) return;
  const auto index = static_cast<std::size_t>(field - fields.begin());
  const HWND window = ::GetDlgItem(dialog_, element);
  const bool wasKnown = properties_[index].value.has_value();
  if (field->type == VT_BOOL && notification == BN_CLICKED) {
    const LRESULT tick = ::SendMessageW(window, BM_GETCHECK, 0, 0);
    if (tick == BST_INDETERMINATE)
      properties_.leaveDifferent(index);
    else
      properties_.change(index, tick == BST_CHECKED);
  } else if (field->type == VT_BSTR && notification == EN_CHANGE) {
    properties_.change(index, textOf(window));
  } else if (field->type == VT_I4 && notification == CBN_SELCHANGE) {
    const LRESULT place = ::SendMessageW(window, CB_GETCURSEL, 0, 0);
    if (place == CB_ERR) return;
    properties_.change(index, static_cast<LONG>(::SendMessageW(window, CB_GETITEMDATA, static_cast<WPARAM>(place), 0)));
  } else {
    return;
  }
  if (wasKnown != properties_[index].value.has_value()) showCaption(index);
  if (const ComPointer<IPropertyPageSite> site = site_)
    site->OnStatusChange(properties_.isChanged() ? PROPPAGESTATUS_DIRTY : PROPPAGESTATUS_CLEAN);
}

void PropertyPage::fill() {
  filling_ = true;
  const HRESULT result = guarded([&] {
    for (std::size_t index = 0; index < fields.size(); ++index) fill(index);
    return S_OK;
  });
  filling_ = false;
  check(result);
  ::SetDlgItemTextW(dialog_, KORVEL_PAGE_FAILURE, L"");
}

void PropertyPage::fill(std::size_t field) {
  const std::optional<PropertyValue>& value = properties_[field].value;
  const HWND window = ::GetDlgItem(dialog_, fields.at(field).element);
  if (fields.at(field).type == VT_BOOL) {
    // A third state only where there is one.
    ::SendMessageW(window, BM_SETSTYLE, value ? BS_AUTOCHECKBOX : BS_AUTO3STATE, TRUE);
    const int tick = !value ? BST_INDETERMINATE : std::get<bool>(*value) ? BST_CHECKED : BST_UNCHECKED;
    ::SendMessageW(window, BM_SETCHECK, static_cast<WPARAM>(tick), 0);
  } else if (fields.at(field).type == VT_BSTR) {
    ::SetWindowTextW(window, value ? std::get<std::wstring>(*value).c_str() : L"");
  } else {
    LRESULT wanted = -1;
    if (value) {
      const LONG number = std::get<LONG>(*value);
      const LRESULT count = ::SendMessageW(window, CB_GETCOUNT, 0, 0);
      for (LRESULT place = 0; place < count; ++place)
        if (::SendMessageW(window, CB_GETITEMDATA, static_cast<WPARAM>(place), 0) == number) wanted = place;
      if (wanted < 0) {
        // A value without a name: a control takes any number.
        wanted = ::SendMessageW(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(std::to_wstring(number).c_str()));
        ::SendMessageW(window, CB_SETITEMDATA, static_cast<WPARAM>(wanted), number);
      }
    }
    ::SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(wanted), 0);
  }
  showCaption(field);
}

void PropertyPage::showCaption(std::size_t field) {
  std::wstring caption = viewerText(fields.at(field).caption);
  if (!properties_[field].value) caption += L' ' + viewerText("propertyPage.severalValues");
  ::SetDlgItemTextW(dialog_, fields.at(field).label, caption.c_str());
}

void PropertyPage::showFailure(const std::wstring& text) {
  const HWND line = ::GetDlgItem(dialog_, KORVEL_PAGE_FAILURE);
  ::SetWindowTextW(line, text.c_str());
  // For screen readers, which do not watch a line of text.
  ::NotifyWinEvent(EVENT_SYSTEM_ALERT, line, OBJID_CLIENT, CHILDID_SELF);
}

void PropertyPage::focus(std::size_t field) {
  ::SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(::GetDlgItem(dialog_, fields.at(field).element)),
                 TRUE);
}

}  // namespace korvel::ocx
