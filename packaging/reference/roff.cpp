#include "packaging/reference/roff.h"

namespace korvel::packaging {

std::string roffText(std::string_view text) {
  std::string written;
  bool atLineStart = true;
  for (const char c : text) {
    // A dot or an apostrophe would begin a request.
    if (atLineStart && (c == '.' || c == '\'')) written += "\\&";
    atLineStart = c == '\n';
    switch (c) {
      case '\\':
        written += "\\e";
        break;
      // Copied from the page, these must be the characters that a shell knows.
      case '-':
        written += "\\-";
        break;
      case '\'':
        written += "\\(aq";
        break;
      case '`':
        written += "\\(ga";
        break;
      case '^':
        written += "\\(ha";
        break;
      case '~':
        written += "\\(ti";
        break;
      default:
        written += c;
    }
  }
  return written;
}

std::string roffLines(std::string_view text) {
  while (text.ends_with('\n')) text.remove_suffix(1);
  while (text.starts_with('\n')) text.remove_prefix(1);
  if (text.empty()) return {};
  return ".PP\n.EX\n" + roffText(text) + "\n.EE\n";
}

std::string roffItem(std::string_view name, std::string_view value, std::string_view text) {
  std::string item = ".TP\n\\fB" + roffText(name) + "\\fR";
  if (!value.empty()) item += " \\fI" + roffText(value) + "\\fR";
  return item + '\n' + roffText(text) + '\n';
}

std::string roffHead(std::string_view name, std::string_view day, std::string_view version, std::string_view summary) {
  std::string head = ".TH \"";
  head.append(name).append("\" 1 \"").append(day).append("\" \"Korvel Audit Viewer ").append(version);
  head.append("\" \"User Commands\"\n.nh\n.ad l\n.SH NAME\n").append(roffText(name)).append(" \\- ");
  return head + roffText(summary) + '\n';
}

}  // namespace korvel::packaging
