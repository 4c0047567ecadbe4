#pragma once

#include <windows.h>
// after windows.h
#include <oaidl.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ocx/com_pointer.h"
#include "ocx/property_value.h"

namespace korvel::ocx {

/// A property of one control or several, as a person edits it.
struct EditedProperty {
  std::wstring name;
  /// VT_BOOL, VT_I4 or VT_BSTR.
  VARTYPE type = VT_EMPTY;
  /// Nothing where the controls have different values.
  std::optional<PropertyValue> value;
  bool changed = false;
};

/// Why a control did not take a value.
struct Refusal {
  /// The property, by its place in the list.
  std::size_t property = 0;
  HRESULT number = E_FAIL;
  std::wstring text;
};

/// The properties of several controls at once. Controls are called by the names of their properties, so that those that
/// stand between a container and its control serve as well.
class EditedProperties {
 public:
  /// Each has its name and type.
  explicit EditedProperties(std::vector<EditedProperty> properties) : properties_(std::move(properties)) {}

  /// Takes the controls and reads their properties; what was changed before is forgotten. No controls let the former
  /// ones go. Throws Failure where one lacks a property; all is as before then.
  void setControls(std::vector<ComPointer<IDispatch>> controls);
  [[nodiscard]] bool hasControls() const noexcept { return !controls_.empty(); }

  [[nodiscard]] const EditedProperty& operator[](std::size_t index) const { return properties_.at(index); }
  [[nodiscard]] std::size_t size() const noexcept { return properties_.size(); }
  [[nodiscard]] bool isChanged() const noexcept;

  /// `value` is to be written to all controls.
  void change(std::size_t index, PropertyValue value);
  /// The controls keep their values, which are different.
  void leaveDifferent(std::size_t index);

  /// Writes what was changed to the controls, in their order, and reads all properties again. Stops at the first that a
  /// control refuses: that one and those that follow stay changed. Throws Failure where reading fails.
  [[nodiscard]] std::optional<Refusal> apply();

 private:
  std::vector<EditedProperty> properties_;
  std::vector<ComPointer<IDispatch>> controls_;
};

}  // namespace korvel::ocx
