#include "ocx/stored_properties.h"

// after windows.h
#include <oleauto.h>

#include <array>
#include <cstddef>
#include <optional>

#include "ocx/failure.h"
#include "ocx/stored_stream.h"

namespace korvel::ocx {
namespace {

constexpr std::array<const wchar_t*, 4> names{L"ViewSideTools", L"ViewToolBar", L"DefaultSQLServer", L"DatabaseType"};
constexpr const wchar_t* streamName = L"KorvelAuditViewer";

/// A place for each property's value.
class Values {
 public:
  Values() {
    for (VARIANT& each : values_) ::VariantInit(&each);
  }
  ~Values() {
    for (VARIANT& each : values_) ::VariantClear(&each);
  }
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;

  VARIANT& operator[](std::size_t index) { return values_.at(index); }
  [[nodiscard]] std::vector<StoredValue> places() {
    std::vector<StoredValue> all;
    for (std::size_t index = 0; index < names.size(); ++index) all.push_back({names.at(index), &values_.at(index)});
    return all;
  }

 private:
  std::array<VARIANT, names.size()> values_{};
};

std::vector<StreamedProperty> streamed(HostedViewer& viewer) {
  Values values;
  const std::vector<StoredValue> places = values.places();
  check(viewer.writeProperties(places.data(), static_cast<unsigned>(places.size())));
  std::vector<StreamedProperty> properties;
  for (const StoredValue& each : places)
    if (const std::optional<PropertyValue> value = valueOf(*each.value)) properties.push_back({each.name, *value});
  return properties;
}

}  // namespace

HRESULT StoredProperties::GetClassID(CLSID* identifier) noexcept {
  if (identifier == nullptr) return E_POINTER;
  *identifier = types().controlId;
  return S_OK;
}

HRESULT StoredProperties::InitNew() noexcept {
  viewer().initProperties();
  dirty_ = true;
  return S_OK;
}

HRESULT StoredProperties::IsDirty() noexcept {
  return dirty_ ? S_OK : S_FALSE;
}

HRESULT StoredProperties::load(const std::vector<StoredValue>& values) {
  BSTR failure = nullptr;
  const HRESULT result = viewer().readProperties(values.data(), static_cast<unsigned>(values.size()), &failure);
  if (FAILED(result)) {
    const std::wstring text(failure != nullptr ? failure : L"", ::SysStringLen(failure));
    ::SysFreeString(failure);
    throw Failure(result, text);
  }
  dirty_ = false;
  return S_OK;
}

HRESULT StoredProperties::Load(IPropertyBag* bag, IErrorLog* log) noexcept {
  if (bag == nullptr) return E_POINTER;
  return guarded([&] {
    Values values;
    for (std::size_t index = 0; index < names.size(); ++index) {
      const HRESULT result = bag->Read(names.at(index), &values[index], log);
      // That is how a bag says that it has no such property.
      if (result == E_INVALIDARG) {
        ::VariantClear(&values[index]);
      } else if (FAILED(result)) {
        return result;
      }
    }
    return load(values.places());
  });
}

HRESULT StoredProperties::Save(IPropertyBag* bag, BOOL clearDirty, BOOL /*all*/) noexcept {
  if (bag == nullptr) return E_POINTER;
  return guarded([&] {
    Values values;
    const std::vector<StoredValue> places = values.places();
    check(viewer().writeProperties(places.data(), static_cast<unsigned>(places.size())));
    for (const StoredValue& each : places)
      if (each.value->vt != VT_EMPTY)
        if (const HRESULT result = bag->Write(each.name, each.value); FAILED(result)) return result;
    if (clearDirty != FALSE) dirty_ = false;
    return S_OK;
  });
}

HRESULT StoredProperties::Load(IStream* stream) noexcept {
  if (stream == nullptr) return E_POINTER;
  return guarded([&] {
    Values values;
    for (const StreamedProperty& each : readProperties(*stream))
      for (std::size_t index = 0; index < names.size(); ++index)
        if (each.name == names.at(index)) {
          ::VariantClear(&values[index]);
          setVariant(values[index], each.value);
        }
    return load(values.places());
  });
}

HRESULT StoredProperties::Save(IStream* stream, BOOL clearDirty) noexcept {
  if (stream == nullptr) return E_POINTER;
  return guarded([&] {
    ocx::writeProperties(*stream, streamed(viewer()));
    if (clearDirty != FALSE) dirty_ = false;
    return S_OK;
  });
}

HRESULT StoredProperties::GetSizeMax(ULARGE_INTEGER* size) noexcept {
  if (size == nullptr) return E_POINTER;
  return guarded([&] {
    size->QuadPart = sizeOf(streamed(viewer()));
    return S_OK;
  });
}

HRESULT StoredProperties::InitNew(IStorage* storage) noexcept {
  return storage != nullptr ? InitNew() : E_POINTER;
}

HRESULT StoredProperties::Load(IStorage* storage) noexcept {
  if (storage == nullptr) return E_POINTER;
  return guarded([&] {
    ComPointer<IStream> stream;
    const HRESULT result =
        storage->OpenStream(streamName, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.receive());
    return FAILED(result) ? result : Load(stream.get());
  });
}

HRESULT StoredProperties::Save(IStorage* storage, BOOL /*sameAsLoad*/) noexcept {
  if (storage == nullptr) return E_POINTER;
  return guarded([&] {
    ComPointer<IStream> stream;
    constexpr DWORD mode = STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE;
    const HRESULT result = storage->CreateStream(streamName, mode, 0, 0, stream.receive());
    return FAILED(result) ? result : Save(stream.get(), FALSE);
  });
}

HRESULT StoredProperties::SaveCompleted(IStorage* /*storage*/) noexcept {
  dirty_ = false;
  return S_OK;
}

// No storage is held between two calls.
HRESULT StoredProperties::HandsOffStorage() noexcept {
  return S_OK;
}

}  // namespace korvel::ocx
