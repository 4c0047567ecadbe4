#pragma once

#include <windows.h>

#include <string>

namespace korvel::test {

/// A key with everything below it, one line for each key and each value; nothing for a key that does not exist. Values
/// that are not texts are shown as their bytes.
[[nodiscard]] std::string registryText(HKEY parent, const std::wstring& key);

}  // namespace korvel::test
