#pragma once

#include <windows.h>
// after windows.h
#include <oaidl.h>

#include <optional>
#include <string>
#include <variant>

namespace korvel::ocx {

/// The value of a stored property.
using PropertyValue = std::variant<bool, LONG, std::wstring>;

/// Nothing for a value of another type.
[[nodiscard]] std::optional<PropertyValue> valueOf(const VARIANT& variant);

/// Fills an empty variant, which the caller clears. Throws std::bad_alloc.
void setVariant(VARIANT& variant, const PropertyValue& value);

/// A variant that is cleared at the end.
class OwnVariant {
 public:
  OwnVariant() { ::VariantInit(&variant_); }
  ~OwnVariant() { ::VariantClear(&variant_); }
  OwnVariant(const OwnVariant&) = delete;
  OwnVariant& operator=(const OwnVariant&) = delete;

  [[nodiscard]] VARIANT& get() noexcept { return variant_; }

 private:
  VARIANT variant_{};
};

}  // namespace korvel::ocx
