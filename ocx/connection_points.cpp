#include "ocx/connection_points.h"

// after windows.h
#include <olectl.h>

#include "ocx/enumerator.h"
#include "ocx/failure.h"

namespace korvel::ocx {
namespace {

using EnumeratedConnections = Enumerator<IEnumConnections, IID_IEnumConnections, Connection, CONNECTDATA>;
using EnumeratedPoints =
    Enumerator<IEnumConnectionPoints, IID_IEnumConnectionPoints, ComPointer<IConnectionPoint>, IConnectionPoint*>;

}  // namespace

CONNECTDATA copyOf(const Connection& connection) {
  return {ComPointer<IUnknown>(connection.sink).handOver(), connection.cookie};
}
IConnectionPoint* copyOf(const ComPointer<IConnectionPoint>& point) {
  return ComPointer<IConnectionPoint>(point).handOver();
}

HRESULT ConnectionPoint::QueryInterface(REFIID wanted, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (!IsEqualIID(wanted, IID_IUnknown) && !IsEqualIID(wanted, IID_IConnectionPoint)) return E_NOINTERFACE;
  *object = static_cast<IConnectionPoint*>(this);
  AddRef();
  return S_OK;
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* identifier) noexcept {
  if (identifier == nullptr) return E_POINTER;
  *identifier = identifier_;
  return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) noexcept {
  if (container == nullptr) return E_POINTER;
  *container = ComPointer<IConnectionPointContainer>::shared(&container_).handOver();
  return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) noexcept {
  if (sink == nullptr || cookie == nullptr) return E_POINTER;
  *cookie = 0;
  return guarded([&] {
    auto wanted = ComPointer<IUnknown>::of(sink, identifier_);
    // Sinks of events need to know no more than how to be called by number.
    if (!wanted && !IsEqualIID(identifier_, IID_IPropertyNotifySink))
      wanted = ComPointer<IUnknown>::of(sink, IID_IDispatch);
    if (!wanted) return CONNECT_E_CANNOTCONNECT;
    connections_.push_back({++lastCookie_, wanted});
    *cookie = lastCookie_;
    return S_OK;
  });
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) noexcept {
  const auto removed = std::erase_if(connections_, [&](const Connection& each) { return each.cookie == cookie; });
  return removed > 0 ? S_OK : CONNECT_E_NOCONNECTION;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** connections) noexcept {
  if (connections == nullptr) return E_POINTER;
  return guarded([&] {
    // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): guarded() catches it
    *connections = new EnumeratedConnections(connections_);
    return S_OK;
  });
}

HRESULT ConnectionPoints::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
  if (points == nullptr) return E_POINTER;
  return guarded([&] {
    // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): guarded() catches it
    *points = new EnumeratedPoints(
        {ComPointer<IConnectionPoint>::shared(&events_), ComPointer<IConnectionPoint>::shared(&changes_)});
    return S_OK;
  });
}

HRESULT ConnectionPoints::FindConnectionPoint(REFIID identifier, IConnectionPoint** point) noexcept {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  for (ConnectionPoint* each : {&events_, &changes_}) {
    IID own{};
    each->GetConnectionInterface(&own);
    if (!IsEqualIID(own, identifier)) continue;
    *point = ComPointer<IConnectionPoint>::shared(each).handOver();
    return S_OK;
  }
  return CONNECT_E_NOCONNECTION;
}

void ConnectionPoints::raise(DISPID event, std::vector<VARIANT> arguments) {
  // A sink may disconnect itself or others.
  const std::vector<Connection> now = events_.connections();
  for (const Connection& each : now) {
    DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    static_cast<IDispatch*>(each.sink.get())
        ->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
  }
}

void ConnectionPoints::announceChange(DISPID property) {
  const std::vector<Connection> now = changes_.connections();
  for (const Connection& each : now) static_cast<IPropertyNotifySink*>(each.sink.get())->OnChanged(property);
}

void ConnectionPoints::disconnectAll() {
  events_.disconnectAll();
  changes_.disconnectAll();
}

}  // namespace korvel::ocx
