#include "control/recent_queries.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>

#include "control/library_state.h"
#include "control/texts.h"
#include "ui/shown_text.h"

namespace korvel::control {
namespace {

constexpr int longestLine = 80;

/// A text on one line, shortened in its middle: queries differ at their ends as often as at their beginnings.
QString lineOf(const QString& text) {
  QString line = ui::visibleFormats(text.simplified());
  if (line.size() > longestLine)
    line = line.left(longestLine / 2) + QStringLiteral(" … ") + line.right(longestLine / 2);
  return line.replace(u'&', QStringLiteral("&&"));
}

void addEntry(QMenu& menu, const QString& text, const QString& toolTip, const std::function<void()>& action) {
  QAction* const entry = menu.addAction(lineOf(text));
  entry->setToolTip(toolTip.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>")));
  QObject::connect(entry, &QAction::triggered, &menu, action);
}

void addNote(QMenu& menu, const char* key) {
  menu.addAction(ownText(key))->setEnabled(false);
}

}  // namespace

QMenu* makeRecentQueriesMenu(QWidget* owner, const RecentQueryChoice& choice) {
  auto* const menu = new QMenu(owner);
  menu->setObjectName(QStringLiteral("RecentQueries"));
  menu->setToolTipsVisible(true);
  const Remembered& remembered = libraryState().remembered;
  const QStringList texts = remembered.texts(Remembered::Texts::queries);
  const QStringList files = remembered.texts(Remembered::Texts::queryFiles);
  if (texts.isEmpty() && files.isEmpty()) {
    addNote(*menu, "editor.noRecent");
    return menu;
  }
  for (const QString& text : texts) addEntry(*menu, text, text, [use = choice.useText, text] { use(text); });
  if (!files.isEmpty()) {
    if (!texts.isEmpty()) menu->addSeparator();
    addNote(*menu, "editor.recentFiles");
    for (const QString& path : files)
      addEntry(*menu, QFileInfo(path).fileName(), QDir::toNativeSeparators(path),
               [open = choice.openFile, path] { open(path); });
  }
  menu->addSeparator();
  QObject::connect(menu->addAction(ownText("remembered.forget")), &QAction::triggered, menu, [] {
    libraryState().remembered.forgetTexts(Remembered::Texts::queries);
    libraryState().remembered.forgetTexts(Remembered::Texts::queryFiles);
  });
  return menu;
}

}  // namespace korvel::control
