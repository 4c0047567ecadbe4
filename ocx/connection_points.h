#pragma once

#include <windows.h>
// after windows.h
#include <ocidl.h>

#include <vector>

#include "ocx/com_pointer.h"

namespace korvel::ocx {

/// Who listens: a container's sink and the number that ends the connection.
struct Connection {
  DWORD cookie = 0;
  ComPointer<IUnknown> sink;
};

/// What an enumeration gives its caller, who releases it.
[[nodiscard]] CONNECTDATA copyOf(const Connection& connection);
[[nodiscard]] IConnectionPoint* copyOf(const ComPointer<IConnectionPoint>& point);

/// One kind of sinks that can be connected to the control. Lives as long as the control, which counts for it.
class ConnectionPoint final : public IConnectionPoint {
 public:
  /// `container` is the control; `identifier` the interface of the sinks.
  ConnectionPoint(IConnectionPointContainer& container, REFIID identifier)
      : container_(container), identifier_(identifier) {}

  /// The sinks that are connected now; telling one of them may connect and disconnect others.
  [[nodiscard]] const std::vector<Connection>& connections() const noexcept { return connections_; }
  void disconnectAll() { connections_.clear(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return container_.AddRef(); }
  ULONG STDMETHODCALLTYPE Release() noexcept override { return container_.Release(); }
  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* identifier) noexcept override;
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override;
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) noexcept override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) noexcept override;
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) noexcept override;

 private:
  IConnectionPointContainer& container_;
  const IID identifier_;
  std::vector<Connection> connections_;
  DWORD lastCookie_ = 0;
};

/// The control's sinks: for its events, and for changes of its properties.
class ConnectionPoints : public IConnectionPointContainer {
 public:
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID identifier, IConnectionPoint** point) noexcept override;

 protected:
  explicit ConnectionPoints(REFIID eventsId) : events_(*this, eventsId), changes_(*this, IID_IPropertyNotifySink) {}
  ~ConnectionPoints() = default;

  /// Raises an event of the type library by its number, with its arguments, the last one first.
  void raise(DISPID event, std::vector<VARIANT> arguments);
  void announceChange(DISPID property);
  void disconnectAll();

 private:
  ConnectionPoint events_;
  ConnectionPoint changes_;
};

}  // namespace korvel::ocx
