// The toolkit in a process that belongs to another program: what the library exports.
#include "ocx/hosted_viewer.h"
// after windows.h
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <array>
#include <memory>
#include <string>

#include "korvel/ViewerApplication.h"
#include "ocx/qt/automation_values.h"
#include "ocx/qt/hosted_audit_viewer.h"

namespace korvel::ocx {
namespace {

/// Counts the events that are being delivered: while there is one, nothing may be unloaded.
class HostedApplication final : public QApplication {
 public:
  using QApplication::QApplication;
  bool notify(QObject* receiver, QEvent* event) override {
    ++delivering_;
    const bool result = QApplication::notify(receiver, event);
    --delivering_;
    return result;
  }
  [[nodiscard]] bool isIdle() const { return delivering_ == 0; }

 private:
  int delivering_ = 0;
};

/// This library. `flags` say whether it stays in the process from now on.
HMODULE ownLibrary(DWORD flags) {
  static const char ofThisFile = 0;
  HMODULE module = nullptr;
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, reinterpret_cast<LPCWSTR>(&ofThisFile), &module);
  return module;
}

QString ownFolder() {
  std::wstring path(32768, L'\0');
  const DWORD length = ::GetModuleFileNameW(ownLibrary(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT), path.data(),
                                            static_cast<DWORD>(path.size()));
  return QFileInfo(QString::fromWCharArray(path.data(), static_cast<qsizetype>(length))).absolutePath();
}

// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): it destroys itself, as what it is
class ToolkitHosting final : public Hosting {
 public:
  ToolkitHosting() {
    // The toolkit stays by itself, and keeps pointers into libraries that use it: to plug-ins that they contain and to
    // types that they have registered. It cannot be told that one of them goes; so this one stays with all it needs.
    ownLibrary(GET_MODULE_HANDLE_EX_FLAG_PIN);
    // A program that uses the same toolkit has its own application object, which is used then.
    if (QCoreApplication::instance() != nullptr) return;
    QCoreApplication::setLibraryPaths({ownFolder()});
    // The process keeps its own settings, such as how it deals with the density of screens.
    QCoreApplication::setAttribute(Qt::AA_PluginApplication);
    // Whatever the environment says of platforms is meant for other programs.
    application_ = std::make_unique<HostedApplication>(count_, arguments_.data());
    // It has added the folder of the program, which is not the viewer's.
    QCoreApplication::setLibraryPaths({ownFolder()});
    QApplication::setQuitOnLastWindowClosed(false);
    // From now on messages of the container's loop wake the toolkit.
    QCoreApplication::processEvents();
  }

  HRESULT createViewer(ViewerOwner& owner, HostedViewer** viewer) noexcept override {
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) return E_FAIL;
    try {
      *viewer = new HostedAuditViewer(owner);
      return S_OK;
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

  HRESULT text(const char* key, BSTR* text) noexcept override {
    try {
      *text = toBstr(ViewerLanguage::current().text(key));
      return *text != nullptr ? S_OK : E_OUTOFMEMORY;
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

  bool end() noexcept override;

 private:
  std::array<char, 21> name_{"KorvelAuditViewerOCX"};
  std::array<char, 10> platform_{"-platform"};
  std::array<char, 8> windows_{"windows"};
  std::array<char, 20> path_{"-platformpluginpath"};
  std::array<char, 1> none_{""};
  // The application object takes out what it has read, and needs the rest as long as it lives.
  std::array<char*, 6> arguments_{name_.data(), platform_.data(), windows_.data(), path_.data(), none_.data(), nullptr};
  int count_ = 5;
  std::unique_ptr<HostedApplication> application_;
};

/// The open hosting. Not owned by the library: what is left when a process ends must not be destroyed any more.
ToolkitHosting*& opened() {
  // NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): end() forgets it
  static ToolkitHosting* hosting = nullptr;
  return hosting;
}

bool ToolkitHosting::end() noexcept {
  if (application_ && !application_->isIdle()) return false;
  opened() = nullptr;
  delete this;
  return true;
}

}  // namespace
}  // namespace korvel::ocx

extern "C" __declspec(dllexport) HRESULT korvelOpenHosting(unsigned version, korvel::ocx::Hosting** hosting) {
  using namespace korvel::ocx;
  constexpr DWORD otherVersion = ERROR_REVISION_MISMATCH;
  if (version != boundaryVersion) return HRESULT_FROM_WIN32(otherVersion);
  try {
    if (opened() == nullptr) opened() = new ToolkitHosting();
    *hosting = opened();
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}
