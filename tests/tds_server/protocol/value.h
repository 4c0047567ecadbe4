#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "tests/tds_server/protocol/column.h"

namespace korvel::test::tds {

/// NULL, as a value of a row.
inline constexpr std::monostate null{};

/// One value of a row. Texts are UTF-8; dates, decimals, money and GUIDs are texts in their usual form
/// ("2024-02-29 13:45:59.1234567 +02:00", "-12.3400"); binary values are texts too, "0xCAFE" or the bytes themselves.
class Value {
 public:
  // Implicit, so that a row can be written as a plain list.
  Value(std::monostate) {}
  template <class Number>
  requires std::is_integral_v<Number> Value(Number number) : value_(static_cast<std::int64_t>(number)) {}
  Value(double number) : value_(number) {}
  Value(std::string text) : value_(std::move(text)) {}
  Value(std::string_view text) : value_(std::string(text)) {}
  Value(const char* text) : value_(std::string(text)) {}

  [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(value_); }
  /// Each throws std::invalid_argument for a value of another kind.
  [[nodiscard]] std::int64_t integer() const;
  [[nodiscard]] double floating() const;
  [[nodiscard]] std::string text() const;
  [[nodiscard]] bool isInteger() const { return std::holds_alternative<std::int64_t>(value_); }

 private:
  std::variant<std::monostate, std::int64_t, double, std::string> value_;
};

/// One value in a row of `column`. `chunkSize` is the size of the chunks in which values of (max) columns are sent.
void writeValue(ByteWriter& out, const Column& column, const Value& value, std::size_t chunkSize);

}  // namespace korvel::test::tds
