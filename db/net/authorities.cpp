#include "db/net/authorities.h"

#include <cstdint>

#include "settings/string_table.h"

namespace korvel::db::net {

void refuseAuthorities(const std::string& file) {
  constexpr std::int32_t invalidParameter = 87;
  throw settings::localizedError(invalidParameter, "failure.noAuthorities", {file});
}

}  // namespace korvel::db::net
