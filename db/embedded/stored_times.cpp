#include "db/embedded/stored_times.h"

#include <sqlite3.h>

#include <optional>

#include "db/embedded/server_date.h"

namespace korvel::db {
namespace {

std::optional<std::string_view> textOf(sqlite3_value* value) noexcept {
  if (sqlite3_value_type(value) != SQLITE_TEXT) return std::nullopt;
  const unsigned char* const text = sqlite3_value_text(value);
  if (text == nullptr) return std::nullopt;
  return std::string_view(reinterpret_cast<const char*>(text), static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

bool isWithin(sqlite3_value** values) noexcept {
  const auto stored = textOf(values[0]);
  const auto from = textOf(values[1]);
  const auto to = textOf(values[2]);
  if (!stored || !from || !to) return false;
  const auto time = canonicalStoredTime(*stored);
  if (!time) return false;
  const std::string_view moment(time->data(), time->size());
  return *from <= moment && moment <= *to;
}

}  // namespace

int addStoredTimeFunction(sqlite3* handle) noexcept {
  return sqlite3_create_function_v2(
      handle, storedTimeFunction.data(), 3, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY, nullptr,
      [](sqlite3_context* context, int, sqlite3_value** values) {
        sqlite3_result_int(context, isWithin(values) ? 1 : 0);
      },
      nullptr, nullptr, nullptr);
}

}  // namespace korvel::db
