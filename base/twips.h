#pragma once

#include <compare>

namespace korvel {

/// A length on the control's surface: 1440 to the inch, whatever the screen's resolution.
struct Twips {
  int value = 0;

  friend constexpr auto operator<=>(Twips, Twips) = default;
  friend constexpr Twips operator+(Twips a, Twips b) noexcept { return {a.value + b.value}; }
  friend constexpr Twips operator-(Twips a, Twips b) noexcept { return {a.value - b.value}; }
};

inline constexpr int twipsPerInch = 1440;

/// Place and size of an element, relative to the element it lies in.
struct Box {
  Twips left;
  Twips top;
  Twips width;
  Twips height;

  friend bool operator==(const Box&, const Box&) = default;
};

}  // namespace korvel
