#include "ocx/qt/automation_values.h"

namespace korvel::ocx {

QString toText(BSTR text) {
  return text != nullptr ? QString::fromWCharArray(text, static_cast<qsizetype>(::SysStringLen(text))) : QString();
}

BSTR toBstr(const QString& text) {
  return ::SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.utf16()), static_cast<UINT>(text.size()));
}

QVariant toVariant(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return {};
    case VT_BOOL:
      return value.boolVal != VARIANT_FALSE;
    case VT_I1:
      return static_cast<int>(value.cVal);
    case VT_UI1:
      return static_cast<int>(value.bVal);
    case VT_I2:
      return static_cast<int>(value.iVal);
    case VT_UI2:
      return static_cast<int>(value.uiVal);
    case VT_I4:
    case VT_INT:
      return static_cast<int>(value.lVal);
    case VT_UI4:
    case VT_UINT:
      return static_cast<uint>(value.ulVal);
    case VT_R4:
      return static_cast<double>(value.fltVal);
    case VT_R8:
      return value.dblVal;
    case VT_BSTR:
      return toText(value.bstrVal);
    default:
      return QVariantList();
  }
}

HRESULT setVariant(VARIANT& place, const QVariant& value) {
  switch (value.typeId()) {
    case QMetaType::Bool:
      place.vt = VT_BOOL;
      place.boolVal = value.toBool() ? VARIANT_TRUE : VARIANT_FALSE;
      return S_OK;
    case QMetaType::Int:
      place.vt = VT_I4;
      place.lVal = value.toInt();
      return S_OK;
    case QMetaType::QString:
      place.bstrVal = toBstr(value.toString());
      if (place.bstrVal == nullptr) return E_OUTOFMEMORY;
      place.vt = VT_BSTR;
      return S_OK;
    default:
      return value.isValid() ? E_UNEXPECTED : S_OK;
  }
}

}  // namespace korvel::ocx
