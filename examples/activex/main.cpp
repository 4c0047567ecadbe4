// A program of plain Windows calls with the audit viewer on its form, between elements of its own: the Tab key goes
// through all of them, and the line below shows what the control tells.
// usage: audit_container [--file PATH-OF-KorvelAuditViewerOCX.ocx] [SERVER-OR-FOLDER]
// Without --file the registered control is used.
#include <windows.h>
// after windows.h
#include <olectl.h>
#include <shellapi.h>

#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <memory>
#include <string>

#include "container.h"

namespace {

using example::Container;

// The viewer's class, "KorvelAuditViewerOCX.AuditViewer".
constexpr CLSID auditViewer{0xEB5171F2, 0x0C78, 0x46CE, {0xAD, 0xBF, 0x83, 0x11, 0xDE, 0xD8, 0x2E, 0x15}};

/// What the form has besides the viewer; the numbers are those of WM_COMMAND.
enum Element : int { serverField = 100, openButton, queryButton, exportButton, propertiesButton, designBox, toldLine };
struct Described {
  Element number;
  const wchar_t* windowClass;
  const wchar_t* text;
  DWORD style;
  /// In hundredths of the height of a line.
  int width;
};
constexpr Described elements[] = {
    {serverField, L"EDIT", L"", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, 1400},
    {openButton, L"BUTTON", L"&Open", WS_TABSTOP | BS_PUSHBUTTON, 400},
    {queryButton, L"BUTTON", L"&Query", WS_TABSTOP | BS_PUSHBUTTON, 400},
    {exportButton, L"BUTTON", L"&Export", WS_TABSTOP | BS_PUSHBUTTON, 400},
    {propertiesButton, L"BUTTON", L"&Properties", WS_TABSTOP | BS_PUSHBUTTON, 500},
    {designBox, L"BUTTON", L"&Design", WS_TABSTOP | BS_AUTOCHECKBOX, 400},
    {toldLine, L"STATIC", L"", SS_LEFTNOWORDWRAP | SS_NOPREFIX, 0},
};

/// A new viewer, of the file or of the registered control; null where there is none. The caller releases it.
IUnknown* newViewer(const std::wstring& file) {
  IUnknown* viewer = nullptr;
  if (file.empty()) {
    ::CoCreateInstance(auditViewer, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, reinterpret_cast<void**>(&viewer));
    return viewer;
  }
  // As long as the program runs.
  const HMODULE library = ::LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (library == nullptr) return nullptr;
  const auto classes = reinterpret_cast<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>(
      reinterpret_cast<void*>(::GetProcAddress(library, "DllGetClassObject")));
  IClassFactory* factory = nullptr;
  if (classes == nullptr || FAILED(classes(auditViewer, IID_IClassFactory, reinterpret_cast<void**>(&factory))))
    return nullptr;
  factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&viewer));
  factory->Release();
  return viewer;
}

class Form {
 public:
  Form(IUnknown* viewer, const std::wstring& server);
  ~Form() { ::DeleteObject(font_); }
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  /// Until the window is closed.
  void run();

 private:
  static LRESULT CALLBACK handle(HWND window, UINT message, WPARAM first, LPARAM second);
  void layOut();
  void pressed(int element);
  bool takesKey(const MSG& message);
  [[nodiscard]] HWND element(int number) const { return ::GetDlgItem(window_, number); }
  [[nodiscard]] std::wstring server() const;

  HWND window_ = nullptr;
  HWND place_ = nullptr;
  HFONT font_ = nullptr;
  int line_ = 0;
  std::unique_ptr<Container> container_;
};

Form::Form(IUnknown* viewer, const std::wstring& server) {
  WNDCLASSW description{};
  description.lpfnWndProc = &Form::handle;
  description.hInstance = ::GetModuleHandleW(nullptr);
  description.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
  description.hbrBackground = ::GetSysColorBrush(COLOR_BTNFACE);
  description.lpszClassName = L"AuditContainer";
  ::RegisterClassW(&description);
  NONCLIENTMETRICSW fonts{};
  fonts.cbSize = sizeof(fonts);
  ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(fonts), &fonts, 0);
  font_ = ::CreateFontIndirectW(&fonts.lfMessageFont);
  line_ = std::abs(fonts.lfMessageFont.lfHeight) * 5 / 3;

  window_ =
      ::CreateWindowExW(WS_EX_CONTROLPARENT, L"AuditContainer", L"Audit trail", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                        CW_USEDEFAULT, line_ * 52, line_ * 36, nullptr, nullptr, description.hInstance, nullptr);
  ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  // Its place comes last in the order of the Tab key.
  for (const Described& each : elements) {
    const HWND made =
        ::CreateWindowExW(0, each.windowClass, each.text, WS_CHILD | WS_VISIBLE | each.style, 0, 0, 0, 0, window_,
                          reinterpret_cast<HMENU>(static_cast<INT_PTR>(each.number)), description.hInstance, nullptr);
    ::SendMessageW(made, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
  }
  place_ = ::CreateWindowExW(WS_EX_CONTROLPARENT, L"STATIC", L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 0, 0,
                             window_, nullptr, description.hInstance, nullptr);
  layOut();
  ::SetWindowTextW(element(serverField), server.c_str());
  container_ = std::make_unique<Container>(place_, viewer);
  container_->listen([this](const std::wstring& line) { ::SetWindowTextW(element(toldLine), line.c_str()); });
  container_->takeKeys([this](const MSG& message) { return takesKey(message); });
  container_->connect();
  container_->put(L"DefaultSQLServer", server);
  ::ShowWindow(window_, SW_SHOW);
  // The viewer selects the database when it is shown first.
  container_->doVerb(OLEIVERB_SHOW);
  ::SetFocus(element(serverField));
}

// While the viewer has the focus: Tab leaves it at its ends for an element of the form, and Alt with a letter is for
// the form first.
bool Form::takesKey(const MSG& message) {
  if (message.wParam == VK_TAB) {
    ::SetFocus(element(::GetKeyState(VK_SHIFT) < 0 ? designBox : serverField));
    return true;
  }
  if (message.message != WM_SYSKEYDOWN) return false;
  for (const Described& each : elements) {
    const wchar_t* const mark = std::wcschr(each.text, L'&');
    if (mark == nullptr || std::towupper(mark[1]) != message.wParam) continue;
    ::SetFocus(element(each.number));
    ::SendMessageW(element(each.number), BM_CLICK, 0, 0);
    return true;
  }
  return false;
}

std::wstring Form::server() const {
  std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(element(serverField))), L'\0');
  ::GetWindowTextW(element(serverField), text.data(), static_cast<int>(text.size()) + 1);
  return text;
}

void Form::layOut() {
  RECT inside{};
  ::GetClientRect(window_, &inside);
  const int gap = line_ / 3;
  const int height = line_ * 4 / 3;
  int left = gap;
  for (const Described& each : elements) {
    if (each.number == toldLine) continue;
    const int width = each.width * line_ / 100;
    ::MoveWindow(element(each.number), left, gap, width, height, TRUE);
    left += width + gap;
  }
  const int top = height + 2 * gap;
  const int bottom = inside.bottom - line_ - gap;
  ::MoveWindow(place_, 0, top, inside.right, bottom - top, TRUE);
  ::MoveWindow(element(toldLine), gap, bottom + gap / 2, inside.right - 2 * gap, line_, TRUE);
  if (container_) container_->move({0, 0, inside.right, bottom - top});
}

void Form::pressed(int element) {
  switch (element) {
    case openButton:
      container_->put(L"DefaultSQLServer", server());
      container_->invoke(L"OpenDefaultSQLServer");
      break;
    case queryButton:
      container_->invoke(L"TriggerQuery");
      container_->invoke(L"DisplayNoOfRecords");
      break;
    case exportButton:
      container_->invoke(L"ExportNotepad");
      break;
    case propertiesButton:
      container_->doVerb(OLEIVERB_PROPERTIES);
      break;
    case designBox:
      container_->setRunning(::IsDlgButtonChecked(window_, designBox) != BST_CHECKED);
      break;
    default:
      break;
  }
}

LRESULT CALLBACK Form::handle(HWND window, UINT message, WPARAM first, LPARAM second) {
  auto* form = reinterpret_cast<Form*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
  if (form == nullptr) return ::DefWindowProcW(window, message, first, second);
  switch (message) {
    case WM_SIZE:
      form->layOut();
      return 0;
    case WM_COMMAND:
      if (HIWORD(first) == BN_CLICKED) form->pressed(LOWORD(first));
      return 0;
    case WM_CLOSE:
      // The control goes before its window.
      form->container_->close();
      ::DestroyWindow(window);
      return 0;
    case WM_DESTROY:
      ::PostQuitMessage(0);
      return 0;
    default:
      return ::DefWindowProcW(window, message, first, second);
  }
}

void Form::run() {
  MSG message{};
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (container_->translate(message) || ::IsDialogMessageW(window_, &message) != 0) continue;
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
  // The viewer is as sharp as the program that it is part of.
  ::SetProcessDPIAware();
  if (FAILED(::OleInitialize(nullptr))) return 1;
  std::wstring file;
  std::wstring server;
  int count = 0;
  wchar_t** const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  for (int index = 1; index < count; ++index) {
    if (std::wstring(words[index]) == L"--file" && index + 1 < count)
      file = words[++index];
    else
      server = words[index];
  }
  ::LocalFree(words);
  IUnknown* const viewer = newViewer(file);
  if (viewer == nullptr) {
    ::MessageBoxW(nullptr,
                  L"There is no audit viewer. Register KorvelAuditViewerOCX.ocx, or give its path: --file PATH",
                  L"Audit trail", MB_OK | MB_ICONERROR);
    return 1;
  }
  {
    Form form(viewer, server);
    viewer->Release();
    form.run();
  }
  ::OleUninitialize();
  return 0;
}
