#pragma once

#include <string>
#include <vector>

namespace korvel::test {

/// Texts that are difficult for writers and readers of files, all within windows-1252.
inline std::vector<std::string> hostileTexts() {
  const std::string cell = "</td>\r\n<td width=\"100\" height=\"26\">";
  return {"<script>alert(1)</script>",
          "</td>",
          "</td>\r\n",
          "</td>\r\n</td>\r\n",
          "x" + cell + "y",
          cell,
          "x</td>\r\n</tr>\r\n<tr>\r\n\r\n<td width=\"100\" height=\"26\">forged" + cell + "row",
          "</td>\r\n</tr>\r\n</table>\r\n</div>\r\n\r\n\r\n</body>\r\n\r\n\r\n</html>\r\n",
          "<tr>\r\n\r\n",
          "</table>",
          "<td width=\"100\" height=\"26\">",
          "<",
          "</td",
          "</td>\r",
          "\r\n",
          "\r",
          "\n",
          ",|\"';=+-@\t",
          "=1+1",
          "&lt;&#0;",
          std::string("a\0b", 3),
          "\x01\x1B[2J\x7F",
          "größer € é",
          ""};
}

}  // namespace korvel::test
