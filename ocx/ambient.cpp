#include "ocx/ambient.h"

// after windows.h
#include <olectl.h>

#include "ocx/com_pointer.h"

namespace korvel::ocx {
namespace {

/// A property of the container. `value` is empty where it has none; the caller clears it.
void readAmbient(IOleClientSite* site, DISPID property, VARIANT& value) {
  ::VariantInit(&value);
  const auto container = ComPointer<IDispatch>::of(site, IID_IDispatch);
  DISPPARAMS none{};
  if (container && FAILED(container->Invoke(property, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                            &value, nullptr, nullptr)))
    ::VariantClear(&value);
}

}  // namespace

bool isRunning(IOleClientSite* site) {
  VARIANT value;
  readAmbient(site, DISPID_AMBIENT_USERMODE, value);
  const bool designing = value.vt == VT_BOOL && value.boolVal == VARIANT_FALSE;
  ::VariantClear(&value);
  return !designing;
}

std::optional<AmbientFont> ambientFont(IOleClientSite* site) {
  VARIANT value;
  readAmbient(site, DISPID_AMBIENT_FONT, value);
  const auto font = ComPointer<IFont>::of(value.vt == VT_DISPATCH ? value.pdispVal : nullptr, IID_IFont);
  ::VariantClear(&value);
  BSTR name = nullptr;
  CY points{};
  BOOL bold = FALSE;
  BOOL italic = FALSE;
  if (!font || FAILED(font->get_Name(&name))) return std::nullopt;
  AmbientFont found;
  found.family.assign(name, ::SysStringLen(name));
  ::SysFreeString(name);
  if (FAILED(font->get_Size(&points)) || FAILED(font->get_Bold(&bold)) || FAILED(font->get_Italic(&italic)))
    return std::nullopt;
  found.points = static_cast<double>(points.int64) / 10000;
  found.bold = bold != FALSE;
  found.italic = italic != FALSE;
  return found;
}

}  // namespace korvel::ocx
