#pragma once

#include <string_view>

namespace korvel::output::layout {

// The lines of a report file, each with its CR LF. The oddities (no blank before an attribute, the letter P behind the
// size, the THEAD that is never closed) are deliberate. An empty line is a CR LF written as a line of its own and
// therefore two line breaks; so are the ones behind <tr> and </tr> of the header row and behind a row's <tr>.

inline constexpr std::string_view start =
    "<html>\r\n"
    "\r\n\r\n"
    "<head>\r\n"
    "<meta http-equiv=\"Content-Language\" content=\"en-us\">\r\n"
    "<meta http-equiv=\"Content-Type\"content=\"text/html; charset=windows-1252\">\r\n"
    "<title>KorvelAudit Report</title>\r\n"
    "</head>\r\n"
    "\r\n\r\n"
    "<body>\r\n"
    "\r\n\r\n";
/// Only in the report of all lists; the labels have no values, deliberately.
inline constexpr std::string_view project =
    "<address align=\"left\">Project Name - </address>\r\n"
    "<address align=\"left\">Project GUID - </address>\r\n";
inline constexpr std::string_view captionStart = "<p align=\"center\">";
inline constexpr std::string_view captionEnd = " Audits</p>\r\n";
inline constexpr std::string_view tableStart =
    "<div align=\"left\">\r\n"
    "<table border=\"1\"id=\"AutoNumber1\"height=\"100\"align=\"center\"cellspacing=\"0\"width=\"500\" "
    "cellpadding=\"2\" style=\"border-collapse: collapse\">\r\n";
inline constexpr std::string_view fontStart = "<THEAD STYLE=\"FONT:";
inline constexpr std::string_view fontSizeEnd = "P ";
inline constexpr std::string_view fontEnd = "\">\r\n";
inline constexpr std::string_view rowStart = "<tr>\r\n\r\n";
inline constexpr std::string_view headerStart = "<th width=\"100\" height=\"26\">";
inline constexpr std::string_view headerEnd = "</th>\r\n";
inline constexpr std::string_view headerRowEnd = "</tr>\r\n\r\n";
inline constexpr std::string_view cellStart = "<td width=\"100\" height=\"26\">";
inline constexpr std::string_view cellEnd = "</td>\r\n";
inline constexpr std::string_view rowEnd = "</tr>\r\n";
inline constexpr std::string_view tableEnd =
    "</table>\r\n"
    "</div>\r\n";
inline constexpr std::string_view end =
    "\r\n\r\n"
    "</body>\r\n"
    "\r\n\r\n"
    "</html>\r\n";

}  // namespace korvel::output::layout
