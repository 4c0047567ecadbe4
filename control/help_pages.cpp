#include "control/help_pages.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

namespace korvel::control {
namespace {

const QLatin1String bookEnding(".chm");
const QString contentsPage = QStringLiteral("index.html");
const QString wordsPage = QStringLiteral("words.html");

/// A page that is there, as an absolute URL: so no name is taken for an option or another kind of URL.
QUrl pageThatIsThere(const QString& book, const QString& page) {
  if (page.isEmpty() || !book.endsWith(bookEnding)) return {};
  const QFileInfo file(book.chopped(bookEnding.size()) + QLatin1Char('/') + page);
  return file.isFile() ? QUrl::fromLocalFile(file.absoluteFilePath()) : QUrl();
}

/// The file that leads to a page, written anew; the page itself where it cannot be written.
QUrl pageLeadingTo(const QUrl& page) {
  static QTemporaryFile file(QDir::tempPath() + QStringLiteral("/korvel-help-XXXXXX.html"));
  const QByteArray link = page.toEncoded().replace('&', "&amp;").replace('"', "&quot;").replace('\'', "&#39;");
  const QByteArray text =
      "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n"
      "<meta http-equiv=\"refresh\" content=\"0; url=" +
      link +
      "\">\n<title>Help</title>\n</head>\n"
      "<body><p><a href=\"" +
      link + "\">Help</a></p></body>\n</html>\n";
  const bool isWritten =
      file.open() && file.resize(0) && file.seek(0) && file.write(text) == text.size() && file.flush();
  file.close();
  return isWritten ? QUrl::fromLocalFile(file.fileName()) : page;
}

}  // namespace

QUrl helpPage(const QString& book, HelpCommand command) {
  return pageThatIsThere(book, command == HelpCommand::index ? wordsPage : contentsPage);
}

QUrl helpPage(const QString& book, const QString& topic) {
  QUrl page = pageThatIsThere(book, topic.section(u'#', 0, 0));
  if (page.isEmpty()) return helpPage(book, HelpCommand::contents);
  if (const QString name = topic.section(u'#', 1); !name.isEmpty()) page.setFragment(name);
  return page;
}

bool openHelpPage(const QUrl& page) {
  return QDesktopServices::openUrl(page.hasFragment() ? pageLeadingTo(page) : page);
}

}  // namespace korvel::control
