// The keys that the help explains and those that the program has, both ways.
#include <gtest/gtest.h>

#include <QAction>
#include <QFile>
#include <QKeyEvent>
#include <QRegularExpression>
#include <QShortcut>
#include <QTableView>
#include <array>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include "korvel/AuditViewer.h"
#include "tests/host/main_window_fixture.h"

namespace korvel::host {
namespace {

using Keys = std::set<std::string>;

/// How the help names the keys that change others, in one language after the other.
constexpr std::array<std::pair<const char*, const char*>, 5> words = {
    {{"Strg", "Ctrl"}, {"Umschalt", "Shift"}, {"Maj", "Shift"}, {"Mayús", "Shift"}, {"Maiusc", "Shift"}}};
/// How English pages name keys, and the toolkit.
constexpr std::array<std::pair<const char*, const char*>, 3> names = {
    {{"Enter", "Return"}, {"Page Up", "PgUp"}, {"Page Down", "PgDown"}}};

/// The first column of the tables: of all, or of the first two, which are about window and lists.
QString keyColumn(const char* language, bool isWhole) {
  QFile file(QStringLiteral(KORVEL_HELP_FOLDER "/") + QLatin1String(language) + QStringLiteral("/keys.html"));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << language;
  QString page = QString::fromUtf8(file.readAll());
  if (!isWhole) page = page.section(QStringLiteral("<h2>"), 1, 2);
  QString column;
  static const QRegularExpression row(QStringLiteral("<tr><td>(.*?)</td>"));
  for (auto each = row.globalMatch(page); each.hasNext();) column += each.next().captured(1) + QStringLiteral(", ");
  return column;
}

std::string written(const QKeySequence& key) {
  return key.toString(QKeySequence::PortableText).toStdString();
}

/// What is written like a key that works alone or with Ctrl, Shift or Alt; keys that move through rows are no commands.
Keys keysIn(QString column) {
  for (const auto& [word, english] : words)
    column.replace(QString::fromUtf8(word) + u'+', QLatin1String(english) + u'+');
  for (const auto& [name, portable] : names) column.replace(QLatin1String(name), QLatin1String(portable));
  static const QRegularExpression combination(QStringLiteral(
      "(?<![\\w+])(?:(?:Ctrl|Alt|Shift)\\+)*(?:F\\d+|(?<=\\+)(?:[A-Z0-9](?!\\w)|Return|Down|Up|PgUp|PgDown))"));
  Keys keys;
  for (auto each = combination.globalMatch(column); each.hasNext();)
    keys.insert(written(QKeySequence(each.next().captured(), QKeySequence::PortableText)));
  return keys;
}

/// Those with a letter, a digit or a number, which are written alike in every language.
Keys withoutNames(const Keys& keys) {
  Keys found;
  static const QRegularExpression plain(QStringLiteral("^(.*\\+)?(F\\d+|[A-Z0-9])$"));
  for (const std::string& key : keys)
    if (plain.match(QString::fromStdString(key)).hasMatch()) found.insert(key);
  return found;
}

/// Shortcuts and keys of the menus of the whole window.
Keys keysOf(const MainWindow& window) {
  Keys keys;
  for (const QShortcut* shortcut : window.findChildren<QShortcut*>()) keys.insert(written(shortcut->key()));
  for (const QAction* action : window.findChildren<QAction*>())
    for (const QKeySequence& key : action->shortcuts()) keys.insert(written(key));
  // Closes the find bar and stops a query: explained where these are.
  keys.erase("Esc");
  keys.erase("");
  return keys;
}

/// Whether a list does something by this key.
bool takes(QTableView& list, const std::string& key) {
  const QKeyCombination combination = QKeySequence(QString::fromStdString(key), QKeySequence::PortableText)[0];
  QKeyEvent press(QEvent::KeyPress, combination.key(), combination.keyboardModifiers());
  // Not by way of the application, which would go on to what is around the list.
  static_cast<QObject&>(list).event(&press);
  return press.isAccepted();
}

std::string printed(const Keys& keys) {
  std::string text;
  for (const std::string& key : keys) text += key + '\n';
  return text;
}

class HelpKeys : public MainWindowTest {
 protected:
  HelpKeys() {
    window.show();
    window.viewer().UnlockControls();
  }
  [[nodiscard]] QTableView& list() const {
    for (auto* each : window.findChildren<QTableView*>())
      if (each->isVisible() && each->isEnabled()) return *each;
    throw std::logic_error("no list is shown");
  }

  MainWindow window{options, english};
};

TEST_F(HelpKeys, ExplainsEachKeyOfTheWindow) {
  const Keys explained = keysIn(keyColumn("eng", true));
  const Keys there = keysOf(window);
  ASSERT_GE(there.size(), 20U);
  Keys missing;
  for (const std::string& key : there)
    if (!explained.contains(key)) missing.insert(key);
  EXPECT_EQ(printed(missing), "");
}

TEST_F(HelpKeys, ExplainsNoKeyThatDoesNothing) {
  const Keys there = keysOf(window);
  for (const char* key : {"Ctrl+J", "Ctrl+Shift+J", "F6"})
    ASSERT_FALSE(takes(list(), key)) << "a list that takes whatever is pressed shows nothing";
  Keys idle;
  for (const std::string& key : keysIn(keyColumn("eng", false)))
    if (!there.contains(key) && !takes(list(), key)) idle.insert(key);
  EXPECT_EQ(printed(idle), "");
}

TEST_F(HelpKeys, NamesTheSameKeysInEachLanguage) {
  const Keys english = withoutNames(keysIn(keyColumn("eng", true)));
  ASSERT_GE(english.size(), 25U);
  for (const char* language : {"ger", "fre", "ita", "spa"})
    EXPECT_EQ(printed(withoutNames(keysIn(keyColumn(language, true)))), printed(english)) << language;
}

}  // namespace
}  // namespace korvel::host
