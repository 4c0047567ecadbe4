#include "ocx/property_value.h"

// after windows.h
#include <oleauto.h>

#include <new>

namespace korvel::ocx {

std::optional<PropertyValue> valueOf(const VARIANT& variant) {
  switch (variant.vt) {
    case VT_BOOL:
      return variant.boolVal != VARIANT_FALSE;
    case VT_I4:
      return variant.lVal;
    case VT_BSTR:
      return std::wstring(variant.bstrVal != nullptr ? variant.bstrVal : L"", ::SysStringLen(variant.bstrVal));
    default:
      return std::nullopt;
  }
}

void setVariant(VARIANT& variant, const PropertyValue& value) {
  if (const bool* boolean = std::get_if<bool>(&value)) {
    variant.vt = VT_BOOL;
    variant.boolVal = *boolean ? VARIANT_TRUE : VARIANT_FALSE;
  } else if (const LONG* number = std::get_if<LONG>(&value)) {
    variant.vt = VT_I4;
    variant.lVal = *number;
  } else {
    const auto& text = std::get<std::wstring>(value);
    variant.bstrVal = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (variant.bstrVal == nullptr) throw std::bad_alloc();
    variant.vt = VT_BSTR;
  }
}

}  // namespace korvel::ocx
