#include "control/viewer_help.h"

#include <memory>

#include "base/error.h"
#include "control/library_state.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"
#include "settings/registry.h"

namespace korvel::control {
namespace {

/// The number of "invalid argument".
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

void ViewerHelp::chooseFile() {
  const auto backend = platform().openSettings();
  const std::string viewerPath = settings::Registry(*backend).GetSetting(
      std::string(settings::applicationName), std::string(settings::viewerSection), "ViewerAppPath", "0");
  chooseHelpFile(libraryState().helpFile, fromUtf8(viewerPath), libraryState().language);
}

void ViewerHelp::HelpContents() {
  openHelp(HelpCommand::contents);
}

void ViewerHelp::HelpSearch() {
  openHelp(HelpCommand::index);
}

void ViewerHelp::openHelp(HelpCommand command) {
  const std::shared_ptr<ControlServices> services = platform().services;
  // Also with an empty path: the platform's viewer then shows nothing.
  services->openHelp(&viewer_, libraryState().helpFile, command);
}

void ViewerHelp::ShowAbout() {
  const std::shared_ptr<ControlServices> services = platform().services;
  services->showForm(&viewer_, form_name::about);
}

}  // namespace korvel::control
