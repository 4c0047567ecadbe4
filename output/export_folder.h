#pragma once

#include <filesystem>
#include <string_view>

namespace korvel::output {

/// Where the file `name` of an output goes: into the folder that the environment variable "windir" names. Where it is
/// not set, into a folder of the user's own, korvel/export among what programs keep for the user, which is created for
/// the user alone; never into a folder that others share. Throws Error with a FileError where that
/// folder cannot be had, belongs to somebody else, or is reached through a link.
[[nodiscard]] std::filesystem::path exportPath(std::string_view name);

}  // namespace korvel::output
