#include "ocx/ambient.h"

// after windows.h
#include <oleauto.h>
#include <olectl.h>

#include "ocx/com_pointer.h"

namespace korvel::ocx {
namespace {

/// A property of the container, as `type`; empty where it has none. The caller clears it.
VARIANT ambient(IOleClientSite* site, DISPID property, VARTYPE type) {
  VARIANT value;
  ::VariantInit(&value);
  const auto container = ComPointer<IDispatch>::of(site, IID_IDispatch);
  DISPPARAMS none{};
  if (container && (FAILED(container->Invoke(property, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                             &value, nullptr, nullptr)) ||
                    FAILED(::VariantChangeType(&value, &value, 0, type))))
    ::VariantClear(&value);
  return value;
}

/// `otherwise` where the container does not say.
bool ambientBoolean(IOleClientSite* site, DISPID property, bool otherwise) {
  const VARIANT value = ambient(site, property, VT_BOOL);
  return value.vt == VT_BOOL ? value.boolVal != VARIANT_FALSE : otherwise;
}

}  // namespace

bool isRunning(IOleClientSite* site) {
  return ambientBoolean(site, DISPID_AMBIENT_USERMODE, true);
}

bool isDead(IOleClientSite* site) {
  return ambientBoolean(site, DISPID_AMBIENT_UIDEAD, false);
}

std::optional<COLORREF> ambientBackground(IOleClientSite* site) {
  const VARIANT value = ambient(site, DISPID_AMBIENT_BACKCOLOR, VT_I4);
  COLORREF color = 0;
  if (value.vt != VT_I4 || FAILED(::OleTranslateColor(static_cast<OLE_COLOR>(value.lVal), nullptr, &color)))
    return std::nullopt;
  return color;
}

std::optional<AmbientFont> ambientFont(IOleClientSite* site) {
  VARIANT value = ambient(site, DISPID_AMBIENT_FONT, VT_DISPATCH);
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
