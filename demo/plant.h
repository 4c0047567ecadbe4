#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace korvel::demo {

enum class Role { engineer, operatorOnShift, quality, administrator };

/// The language a person writes comments in.
enum class Tongue { german, english, french, spanish, italian, greek, russian, chinese, japanese, arabic, polish };

struct Person {
  std::string_view login;
  std::string_view fullName;
  Role role;
  Tongue tongue;
  std::size_t crew = 0;  ///< shift crew 0..3, for operators
};

struct Project {
  std::string_view guid;
  std::string_view engineeringDatabase;
  std::string_view runtimeDatabase;
};

/// A physical quantity that measuring points of the plant show; values are whole numbers of the last decimal.
struct Quantity {
  std::string_view tagLetters;
  std::string_view unit;
  int decimals;
  int lowest;
  int highest;
};

/// An invented plant: who works there, on what, and at which computers.
struct Plant {
  std::string_view domain;
  std::span<const Project> projects;
  std::span<const Person> people;
  std::span<const std::string_view> engineeringPcs;
  std::span<const std::string_view> operatorPcs;
  std::string_view serverPc;
  /// Of 100 change sets of engineers, those that are checked out before and checked in afterwards.
  std::uint32_t checkedOutOf100;
  /// Tells the random numbers of this plant from those of another one with the same seed.
  std::uint64_t seedMark;
};

/// The plant of Korvel_Audit.db: one dairy.
[[nodiscard]] const Plant& singleUserPlant() noexcept;
/// The plant of Korvel_Audit_MU.db: engineers of several sites work on the same projects at the same time.
[[nodiscard]] const Plant& multiUserPlant() noexcept;

[[nodiscard]] std::span<const Quantity> quantities() noexcept;
[[nodiscard]] std::span<const std::string_view> commentsIn(Tongue tongue) noexcept;

}  // namespace korvel::demo
