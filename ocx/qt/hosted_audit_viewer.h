#pragma once

#include "ocx/hosted_viewer.h"
// after windows.h
#include <QObject>
#include <QWindow>
#include <memory>

#include "korvel/AuditViewer.h"

namespace korvel::ocx {

/// The control's widget behind the boundary.
class HostedAuditViewer final : public QObject, public HostedViewer {
 public:
  explicit HostedAuditViewer(ViewerOwner& owner);

#define KORVEL_MEMBER(name, parameters, arguments) HRESULT name parameters noexcept override;
#include "audit_viewer_members.inc"
#undef KORVEL_MEMBER

  void initProperties() noexcept override;
  HRESULT readProperties(const StoredValue* values, unsigned count, BSTR* failure) noexcept override;
  HRESULT writeProperties(const StoredValue* values, unsigned count) noexcept override;
  HRESULT place(HWND parent, SIZE size) noexcept override;
  void resize(SIZE size) noexcept override;
  void remove() noexcept override;
  HRESULT paint(SIZE size, void* pixels) noexcept override;
  void takeFocus(bool last) noexcept override;
  bool isAtEnd(bool backwards) noexcept override;
  void setFont(const wchar_t* family, double points, bool bold, bool italic) noexcept override;
  void stopWaiting() noexcept override;
  void discard() noexcept override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  ~HostedAuditViewer() override;
  /// Shows and hides elements as the stored properties say.
  void applyProperties();
  /// Makes the container's window the owner of a dialog or another window of the viewer.
  void takeWindow(QWidget& window) const;

  ViewerOwner& owner_;
  std::unique_ptr<AuditViewer> viewer_;
  /// The container's window, while the viewer is in it.
  std::unique_ptr<QWindow> container_;
};

}  // namespace korvel::ocx
