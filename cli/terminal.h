#pragma once

#include <filesystem>

namespace korvel::cli {

/// Whether standard output appears on a terminal.
[[nodiscard]] bool standardOutputIsTerminal();
/// Whether a device is a terminal.
[[nodiscard]] bool deviceIsTerminal(const std::filesystem::path& device);

}  // namespace korvel::cli
