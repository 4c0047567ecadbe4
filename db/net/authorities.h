#pragma once

#include <string>

namespace korvel::db::net {

/// Throws the error for a file of authorities in which no certificate can be read.
[[noreturn]] void refuseAuthorities(const std::string& file);

}  // namespace korvel::db::net
