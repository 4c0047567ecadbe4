#pragma once

#include <string>
#include <string_view>

namespace korvel::packaging {

/// A text as it stands in the source of a manual page: nothing in it is a request or an escape.
[[nodiscard]] std::string roffText(std::string_view text);
/// Lines that are shown as they are, in a face of equal widths.
[[nodiscard]] std::string roffLines(std::string_view text);
/// An item: what it is called, what stands for its value (or nothing), what it does.
[[nodiscard]] std::string roffItem(std::string_view name, std::string_view value, std::string_view text);
/// The first lines of a page in section 1. `day` is YYYY-MM-DD.
[[nodiscard]] std::string roffHead(std::string_view name, std::string_view day, std::string_view version,
                                   std::string_view summary);

}  // namespace korvel::packaging
