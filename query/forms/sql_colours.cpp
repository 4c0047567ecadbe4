#include "query/forms/sql_colours.h"

#include <algorithm>
#include <array>

#include "ui/style/theme.h"

namespace korvel::query {
namespace {

constexpr double readableContrast = 4.5;

/// `wanted`, moved towards the text colour until it can be read on all grounds.
QColor readable(const QColor& wanted, const ui::Theme& theme, const std::array<QColor, 3>& grounds) {
  constexpr int steps = 20;
  for (int step = 0; step <= steps; ++step) {
    const QColor colour = ui::mixed(wanted, theme.text, double(step) / steps);
    if (std::all_of(grounds.begin(), grounds.end(),
                    [&](const QColor& ground) { return ui::contrastRatio(colour, ground) >= readableContrast; }))
      return colour;
  }
  return theme.text;
}

}  // namespace

SqlColours SqlColours::of(const ui::Theme& theme) {
  const QColor red(theme.dark ? 0xff6b6b : 0xd1242f);
  const QColor amber(theme.dark ? 0xe3b07a : 0x8a4b08);
  SqlColours colours;
  colours.errorLine = ui::mixed(theme.surface, red, theme.dark ? 0.18 : 0.12);
  colours.pair = theme.selection;
  const std::array grounds = {theme.surface, colours.errorLine, colours.pair};
  colours.keyword = readable(theme.accent, theme, grounds);
  colours.literal = readable(amber, theme, grounds);
  colours.comment = readable(theme.muted, theme, grounds);
  return colours;
}

}  // namespace korvel::query
