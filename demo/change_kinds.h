#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "demo/plant.h"

namespace korvel::demo {

/// What a person or a service is busy with; a burst of rows has one work.
enum class Work { engineering, operating, recipes, corrections, auditSystem, unattributed };
inline constexpr std::size_t workCount = 6;

/// How the items of a kind of change are named.
enum class ItemNames { measuringPoint, valve, motor, message, archive, recipe, picture, tag, account, auditService };

/// The values that an item can have. The number of a value is what the generator keeps and moves; its text is what the
/// audit trail shows.
struct ValueRange {
  enum class Form { measure, number, choice } form;
  /// For a measure: the part of the quantity's range in thousandths; for a number: the range itself.
  int lowest = 0;
  int highest = 0;
  std::string_view unit;                      ///< of a number, with its leading blank
  std::span<const std::string_view> choices;  ///< of a choice
};

struct ChangeKind {
  Work work;
  std::string_view auditType;
  std::string_view application;
  std::string_view table;
  std::string_view field;
  ItemNames items;
  ValueRange values;
  std::uint32_t weight;  ///< among the kinds of the same work
};

[[nodiscard]] std::span<const ChangeKind> changeKinds() noexcept;

inline constexpr std::size_t itemsPerKind = 24;

/// The name of item `item` (0 .. itemsPerKind - 1) of project `project`, written over `text`.
void writeItemName(ItemNames names, std::size_t project, std::size_t item, std::string& text);

/// Lowest and highest value number of an item.
struct Bounds {
  int lowest;
  int highest;
};
[[nodiscard]] Bounds boundsOf(const ValueRange& values, std::size_t item) noexcept;
/// The text of a value number, such as "82.5 °C", written over `text`.
void writeValueText(const ValueRange& values, std::size_t item, int value, std::string& text);

}  // namespace korvel::demo
