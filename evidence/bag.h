#pragma once

#include <filesystem>
#include <string_view>

namespace korvel::evidence {

/// The folder of a bag that holds what it is for.
inline constexpr std::string_view payloadFolder = "data";

/// Makes a folder, whose payload is complete, a bag as RFC 8493 describes it: manifests with the SHA-256 of all files,
/// and the declaration, which comes last. Throws Error with the system's error number.
void writeBag(const std::filesystem::path& folder, std::string_view description);

/// Whether a folder is a bag, as far as its declaration and its tag files tell, whose manifest names this file of its
/// payload. False also where they cannot be read.
[[nodiscard]] bool isBagWith(const std::filesystem::path& folder, const std::filesystem::path& payloadFile);

}  // namespace korvel::evidence
