#include "control/help_topics.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QTextEdit>
#include <algorithm>

#include "control/texts.h"

namespace korvel::embedded {
extern const std::string_view helpTopics;
}

namespace korvel::control {
namespace {

const QString commandPlace = QStringLiteral("command");
const QString messagePlace = QStringLiteral("message");

/// Where rows without a topic of their own are explained: in the table of their kind, under their own name.
QString usualTopic(const QString& place, const QString& element) {
  if (place == commandPlace) return QStringLiteral("commands.html#") + element;
  if (place == messagePlace) return QStringLiteral("messages.html#") + element;
  return {};
}

std::vector<HelpTopic> readTopics() {
  std::vector<HelpTopic> rows;
  for (const QString& line : fromUtf8(embedded::helpTopics).split(u'\n', Qt::SkipEmptyParts)) {
    const QStringList cells = line.split(u'\t');
    const QString& place = cells.value(0);
    const QString& element = cells.value(1);
    const QString topic = cells.value(2);
    rows.push_back({place, element, topic.isEmpty() ? usualTopic(place, element) : topic});
  }
  return rows;
}

/// The text that a key of a row stands for: a number of the fixed table, or the name of a text of our own.
QString textOfKey(const QString& key) {
  constexpr int firstIdentifier = 10000;
  bool isNumber = false;
  const int number = key.toInt(&isNumber);
  return isNumber ? loadText(firstIdentifier + number) : ownText(key.toStdString());
}

/// What an entry or a button shows: without the mark of its letter, its key, and the dots of a dialog.
QString plainCaption(const QString& caption) {
  QString plain = caption.section(u'\t', 0, 0);
  plain.remove(u'&');
  while (plain.endsWith(u'.') || plain.endsWith(u'…')) plain.chop(1);
  return plain;
}

/// All that a message or a bar says.
QString saidBy(const QWidget& place) {
  QStringList said;
  for (const auto* label : place.findChildren<QLabel*>()) said.append(label->text());
  for (const auto* text : place.findChildren<QTextEdit*>()) said.append(text->toPlainText());
  return said.join(u'\n');
}

const HelpTopic* rowOf(const QStringList& places, const QStringList& elements) {
  const auto& rows = helpTopics();
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const HelpTopic& row) {
    return places.contains(row.place) && elements.contains(row.element);
  });
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace

const std::vector<HelpTopic>& helpTopics() {
  static const std::vector<HelpTopic> rows = readTopics();
  return rows;
}

QString topicOf(const QString& place, const QString& element) {
  const HelpTopic* const row = rowOf({place}, {element});
  return row == nullptr ? QString() : row->topic;
}

QStringList helpNames(const QWidget& widget) {
  QStringList names;
  // An empty name would be that of the place itself.
  if (!widget.objectName().isEmpty()) names.append(widget.objectName());
  for (const QMetaObject* kind = widget.metaObject(); kind != nullptr; kind = kind->superClass())
    names.append(QString::fromLatin1(kind->className()));
  return names;
}

QString helpTopicFor(const QWidget* widget) {
  const QWidget* place = widget;
  const HelpTopic* placeRow = nullptr;
  for (; place != nullptr; place = place->parentWidget()) {
    placeRow = rowOf(helpNames(*place), {QString()});
    if (placeRow != nullptr) break;
  }
  if (placeRow == nullptr) return {};
  for (const QWidget* inside = widget; inside != place; inside = inside->parentWidget())
    if (const HelpTopic* const row = rowOf({placeRow->place}, helpNames(*inside))) return row->topic;
  const QString said = helpTopicOfMessage(saidBy(*place));
  const bool tellsMessages = placeRow->topic.startsWith(QLatin1String("troubles.html"));
  return tellsMessages && !said.isEmpty() ? said : placeRow->topic;
}

QString helpTopicFor(const QAction& entry) {
  QString topic = topicOf(commandPlace, entry.objectName());
  if (topic.isEmpty() && entry.menu() != nullptr) topic = topicOf(commandPlace, entry.menu()->objectName());
  if (!topic.isEmpty()) return topic;
  const QString caption = plainCaption(entry.text());
  for (const HelpTopic& row : helpTopics())
    if (row.place == commandPlace && row.element.contains(u'.') && plainCaption(textOfKey(row.element)) == caption)
      return row.topic;
  return {};
}

QString helpTopicOfMessage(const QString& message) {
  static const QRegularExpression places(QStringLiteral("%[1-9]"));
  // What stands between places must be said, in this order; a word or two prove nothing.
  constexpr qsizetype leastCharacters = 8;
  QString topic;
  qsizetype longest = leastCharacters;
  for (const HelpTopic& row : helpTopics()) {
    if (row.place != messagePlace || row.element.isEmpty()) continue;
    qsizetype length = 0;
    qsizetype at = 0;
    for (const QString& part : textOfKey(row.element).split(places)) {
      at = message.indexOf(part, at);
      if (at < 0) break;
      at += part.size();
      length += part.size();
    }
    if (at < 0 || length <= longest) continue;
    longest = length;
    topic = row.topic;
  }
  return topic;
}

QString helpTopicAt(const QWidget* widget) {
  const auto* const menu = qobject_cast<const QMenu*>(widget);
  const QAction* const entry = menu == nullptr ? nullptr : menu->activeAction();
  QString topic = entry == nullptr ? QString() : helpTopicFor(*entry);
  return topic.isEmpty() ? helpTopicFor(widget) : topic;
}

}  // namespace korvel::control
