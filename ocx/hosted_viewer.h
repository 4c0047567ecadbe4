#pragma once

#include <windows.h>
// after windows.h
#include <oaidl.h>

/// The boundary between the control's file, which knows containers and not the toolkit, and the library beside it,
/// which knows the toolkit and not containers. Only what the system itself knows crosses it, and no exception does:
/// each of the two has its own copy of the compiler's library. All of it is for the thread that opened the hosting.
namespace korvel::ocx {

/// What a viewer tells its owner. An owner may close its viewer in any of these.
class ViewerOwner {
 public:
  virtual void databaseSelected(const wchar_t* database) noexcept = 0;
  virtual void exitApp() noexcept = 0;
  virtual void propertyChanged(const wchar_t* name) noexcept = 0;
  /// The keyboard's focus has come into the viewer's window.
  virtual void focusEntered() noexcept = 0;
  /// A modal dialog of the viewer has opened, or the last one has closed.
  virtual void dialogOpen(bool open) noexcept = 0;

 protected:
  ~ViewerOwner() = default;
};

/// A property that a container stores. Its value is empty where it equals the default.
struct StoredValue {
  const wchar_t* name;
  VARIANT* value;
};

/// One control: the members of the type library's interface, in their order, and what a window needs.
class HostedViewer {
 public:
#define KORVEL_MEMBER(name, parameters, arguments) virtual HRESULT name parameters noexcept = 0;
#include "audit_viewer_members.inc"
#undef KORVEL_MEMBER

  virtual void initProperties() noexcept = 0;
  /// Reads the stored properties. A value that cannot be read fails; `failure` then says why.
  virtual HRESULT readProperties(const StoredValue* values, unsigned count, BSTR* failure) noexcept = 0;
  virtual HRESULT writeProperties(const StoredValue* values, unsigned count) noexcept = 0;

  /// Shows the viewer as a child window that fills `parent`, `size` pixels large.
  virtual HRESULT place(HWND parent, SIZE size) noexcept = 0;
  virtual void resize(SIZE size) noexcept = 0;
  /// Hides the viewer and takes it out of its parent, which may be destroyed then.
  virtual void remove() noexcept = 0;
  /// Paints the viewer as it is, or would be, into `size` pixels of 32 bits, the upper row first.
  virtual HRESULT paint(SIZE size, void* pixels) noexcept = 0;
  /// Gives the focus to the last element, or the first.
  virtual void takeFocus(bool last) noexcept = 0;
  /// Whether the Tab key would leave the viewer from the element that has the focus.
  virtual bool isAtEnd(bool backwards) noexcept = 0;
  virtual void setFont(const wchar_t* family, double points, bool bold, bool italic) noexcept = 0;
  /// A query that is running is stopped, as the Esc key does.
  virtual void stopWaiting() noexcept = 0;
  /// Destroys the viewer and this object.
  virtual void discard() noexcept = 0;

 protected:
  ~HostedViewer() = default;
};

/// The toolkit in this process.
class Hosting {
 public:
  /// `owner` must outlive the viewer.
  virtual HRESULT createViewer(ViewerOwner& owner, HostedViewer** viewer) noexcept = 0;
  /// A text of the viewer by its key, in the language that the viewer is set to; the caller frees it.
  virtual HRESULT text(const char* key, BSTR* text) noexcept = 0;
  /// Ends the toolkit, so that its library can be unloaded, and returns true; false while it is in use.
  virtual bool end() noexcept = 0;

 protected:
  ~Hosting() = default;
};

/// Changes whenever the above does: files of different versions do not fit together.
inline constexpr unsigned boundaryVersion = 2;
inline constexpr const wchar_t* hostingLibraryName = L"KorvelAuditViewerHosting.dll";
inline constexpr const char* openHostingName = "korvelOpenHosting";
/// What the library exports under that name: opens the hosting, or returns the open one.
using OpenHosting = HRESULT (*)(unsigned version, Hosting** hosting);

}  // namespace korvel::ocx
