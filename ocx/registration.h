#pragma once

#include <windows.h>

#include <string>

/// The control among the classes of a machine or of a user. The identifiers come from the type library in its file.
namespace korvel::ocx {

/// Registers the control in `file`, a full path, below `classes`, all or nothing. Registering again is no error; the
/// last file is the one that counts.
[[nodiscard]] HRESULT registerControl(HKEY classes, const std::wstring& file);

/// Removes everything that registerControl wrote for `file`. What belongs to another file stays: a copy elsewhere that
/// was registered later, or the entry of the other processor width in the type library.
[[nodiscard]] HRESULT unregisterControl(HKEY classes, const std::wstring& file);

}  // namespace korvel::ocx
