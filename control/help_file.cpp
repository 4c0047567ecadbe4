#include "control/help_file.h"

#include "base/error.h"

namespace korvel::control {
namespace {

/// The number under which users know "invalid argument".
constexpr std::int32_t invalidArgument = 5;

constexpr QLatin1String viewerFile("KorvelAuditViewer.exe");

struct HelpFileRow {
  const char* offset;
  const char* file;
};
constexpr HelpFileRow helpFiles[] = {
    {"0", "KorvelAuditViewerHelp_Eng.chm"},     {"10000", "KorvelAuditViewerHelp_Ger.chm"},
    {"20000", "KorvelAuditViewerHelp_Fre.chm"}, {"30000", "KorvelAuditViewerHelp_Spa.chm"},
    {"40000", "KorvelAuditViewerHelp_Ita.chm"},
};

}  // namespace

void chooseHelpFile(QString& helpFile, const QString& viewerPath, const settings::LanguageOffset& language) {
  if (viewerPath.size() < viewerFile.size())
    throw Error(invalidArgument, "the viewer's path is shorter than its file name");
  for (const HelpFileRow& row : helpFiles)
    if (language.text() == row.offset) helpFile = viewerPath.chopped(viewerFile.size()) + QLatin1String(row.file);
}

}  // namespace korvel::control
