// Writes the manual pages of both programs and the completion of the tool into a folder, made of the programs' own
// options: korvel_write_reference FOLDER DAY
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "base/atomic_file.h"
#include "host/options.h"
#include "packaging/reference/roff.h"
#include "packaging/reference/tool_reference.h"

namespace {

using namespace korvel::packaging;

std::string viewerManual(const std::string& day, const std::string& version) {
  const korvel::ViewerLanguage english;
  std::string page = roffHead("KorvelAuditViewer", day, version, "read audit trails in a window");
  page += ".SH SYNOPSIS\n\\fBKorvelAuditViewer\\fR [\\fIOPTION\\fR]... [\\fIFILE.vqf\\fR]\n";
  page += ".SH DESCRIPTION\n" +
          roffText(
              "Shows the records of changes that plant-supervision software keeps: by category and date, filtered, "
              "searched, and compared with a copy from before. It only reads. F1 shows the help.") +
          "\n.SH OPTIONS\n";
  for (const korvel::host::OptionLine& line : korvel::host::optionLines(english))
    page += roffItem(line.name.toStdString(), line.value.toStdString(), line.text.toStdString());
  page += ".SH EXIT STATUS\n" + roffText(english.text("host.help.status").toStdString()) + '\n';
  return page + ".SH SEE ALSO\n.BR korvel\\-audit (1)\n";
}

}  // namespace

int main(int count, char** arguments) {
  try {
    if (count != 3) throw std::runtime_error("usage: korvel_write_reference FOLDER DAY");
    const std::filesystem::path folder(arguments[1]);
    const std::string day = arguments[2];
    const korvel::cli::ToolParser parser;
    korvel::writeFileAtomically(folder / "korvel-audit.1", toolManual(parser, day, KORVEL_VERSION));
    korvel::writeFileAtomically(folder / "KorvelAuditViewer.1", viewerManual(day, KORVEL_VERSION));
    korvel::writeFileAtomically(folder / "korvel-audit.bash", toolCompletion(parser));
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
  }
}
