#include "control/viewer_help.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <memory>

#include "base/error.h"
#include "control/help_topics.h"
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

/// Whether a widget or a window around it is ours. The program of a host may have dialogs of the toolkit of its own.
bool isOurs(const QWidget* widget) {
  for (; widget != nullptr; widget = widget->parentWidget())
    if (QByteArray(widget->metaObject()->className()).startsWith("korvel::")) return true;
  return false;
}

/// The topic of the widget with the keyboard is taken before an open menu is closed: it would keep the browser from it.
void openHelpAt(QWidget* owner, const QWidget* widget) {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QString topic = helpTopicAt(widget);
  while (QWidget* const popup = QApplication::activePopupWidget())
    if (!popup->close()) break;
  const QString& file = libraryState().helpFile;
  if (topic.isEmpty())
    services->openHelp(owner, file, HelpCommand::contents);
  else
    services->openHelpTopic(owner, file, topic);
}

class HelpKey final : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return false;
    const auto* const key = static_cast<QKeyEvent*>(event);
    auto* const widget = qobject_cast<QWidget*>(watched);
    if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier || widget == nullptr) return false;
    if (!isOurs(widget) || helpTopicFor(widget).isEmpty()) return false;
    // A popup is closed by this.
    QWidget* owner = widget->window();
    while (owner->windowType() == Qt::Popup && owner->parentWidget() != nullptr)
      owner = owner->parentWidget()->window();
    openHelpAt(owner, widget);
    return true;
  }
};

}  // namespace

void provideHelpKey() {
  static QPointer<HelpKey> provided;
  if (provided || qApp == nullptr) return;
  provided = new HelpKey(qApp);
  qApp->installEventFilter(provided);
}

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

void ViewerHelp::HelpOnFocus() {
  const QWidget* widget = QApplication::activePopupWidget();
  if (widget == nullptr) widget = QApplication::focusWidget();
  openHelpAt(&viewer_, widget != nullptr ? widget : QApplication::activeWindow());
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
