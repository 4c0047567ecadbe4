#pragma once

#include <windows.h>
// after windows.h
#include <oleauto.h>

#include <QString>
#include <QVariant>

/// The system's values for callers by name, and the toolkit's.
namespace korvel::ocx {

[[nodiscard]] QString toText(BSTR text);
/// A text that the caller frees; null without memory.
[[nodiscard]] BSTR toBstr(const QString& text);
/// Not valid for an empty value. A kind of value that no stored property has becomes one that none reads.
[[nodiscard]] QVariant toVariant(const VARIANT& value);
/// Sets an empty `place`, which stays empty for a value that is not valid.
[[nodiscard]] HRESULT setVariant(VARIANT& place, const QVariant& value);

}  // namespace korvel::ocx
