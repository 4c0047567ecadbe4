#include "ocx/edited_properties.h"

// after windows.h
#include <oleauto.h>

#include <algorithm>

#include "ocx/failure.h"

namespace korvel::ocx {
namespace {

/// The texts of a failure that a called object describes.
class Description {
 public:
  Description() = default;
  ~Description() {
    ::SysFreeString(described_.bstrSource);
    ::SysFreeString(described_.bstrDescription);
    ::SysFreeString(described_.bstrHelpFile);
  }
  Description(const Description&) = delete;
  Description& operator=(const Description&) = delete;

  [[nodiscard]] EXCEPINFO* receive() noexcept { return &described_; }
  /// `result` is what the call returned.
  [[nodiscard]] HRESULT number(HRESULT result) const noexcept {
    return result == DISP_E_EXCEPTION && FAILED(described_.scode) ? described_.scode : result;
  }
  [[nodiscard]] std::wstring text(HRESULT result) {
    if (result == DISP_E_EXCEPTION && described_.pfnDeferredFillIn != nullptr)
      described_.pfnDeferredFillIn(&described_);
    const std::wstring own(described_.bstrDescription != nullptr ? described_.bstrDescription : L"",
                           ::SysStringLen(described_.bstrDescription));
    return own.empty() ? systemText(number(result)) : own;
  }

 private:
  EXCEPINFO described_{};
};

DISPID numberOf(IDispatch& control, const std::wstring& property) {
  std::wstring name(property);
  LPOLESTR text = name.data();
  DISPID number = DISPID_UNKNOWN;
  check(control.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &number));
  return number;
}

PropertyValue read(IDispatch& control, const EditedProperty& property) {
  DISPPARAMS none{};
  OwnVariant value;
  Description failure;
  const HRESULT result = control.Invoke(numberOf(control, property.name), IID_NULL, LOCALE_USER_DEFAULT,
                                        DISPATCH_PROPERTYGET, &none, &value.get(), failure.receive(), nullptr);
  if (FAILED(result)) throw Failure(failure.number(result), failure.text(result));
  check(::VariantChangeType(&value.get(), &value.get(), 0, property.type));
  return valueOf(value.get()).value_or(false);
}

/// Nothing where the control takes it.
std::optional<Refusal> write(IDispatch& control, const EditedProperty& property, std::size_t index) {
  OwnVariant value;
  setVariant(value.get(), *property.value);
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS arguments{&value.get(), &named, 1, 1};
  Description failure;
  const HRESULT result = control.Invoke(numberOf(control, property.name), IID_NULL, LOCALE_USER_DEFAULT,
                                        DISPATCH_PROPERTYPUT, &arguments, nullptr, failure.receive(), nullptr);
  if (SUCCEEDED(result)) return std::nullopt;
  return Refusal{index, failure.number(result), failure.text(result)};
}

/// `properties` as all the controls have them, nothing changed.
std::vector<EditedProperty> readAll(const std::vector<ComPointer<IDispatch>>& controls,
                                    std::vector<EditedProperty> properties) {
  for (EditedProperty& property : properties) {
    property.changed = false;
    property.value.reset();
    for (const ComPointer<IDispatch>& control : controls) {
      const PropertyValue value = read(*control.get(), property);
      if (&control == &controls.front()) property.value = value;
      if (property.value != value) property.value.reset();
    }
  }
  return properties;
}

}  // namespace

void EditedProperties::setControls(std::vector<ComPointer<IDispatch>> controls) {
  properties_ = readAll(controls, properties_);
  controls_ = std::move(controls);
}

bool EditedProperties::isChanged() const noexcept {
  return std::any_of(properties_.begin(), properties_.end(), [](const EditedProperty& each) { return each.changed; });
}

void EditedProperties::change(std::size_t index, PropertyValue value) {
  properties_.at(index).value = std::move(value);
  properties_.at(index).changed = true;
}

void EditedProperties::leaveDifferent(std::size_t index) {
  properties_.at(index).value.reset();
  properties_.at(index).changed = false;
}

std::optional<Refusal> EditedProperties::apply() {
  // A control that is written to may let its container take the controls away.
  const std::vector<ComPointer<IDispatch>> controls = controls_;
  for (std::size_t index = 0; index < properties_.size(); ++index) {
    if (!properties_[index].changed) continue;
    const EditedProperty written = properties_[index];
    for (const ComPointer<IDispatch>& control : controls)
      if (std::optional<Refusal> refusal = write(*control.get(), written, index)) return refusal;
    properties_[index].changed = false;
  }
  properties_ = readAll(controls_, properties_);
  return std::nullopt;
}

}  // namespace korvel::ocx
