#pragma once

#include <QString>
#include <QStringList>
#include <vector>

class QAction;
class QWidget;

namespace korvel::control {

/// A row of the help's table: what an element of a place is explained by.
struct HelpTopic {
  /// Object name or class name of the window or bar that the element is in; "command" and "message" for what is in no
  /// place of its own.
  QString place;
  /// Object name of the element, key of the command or of the message's text; empty for the place itself.
  QString element;
  /// Page of the help, and the name in it behind "#".
  QString topic;
};

/// The rows of help/topics.tsv, in their order.
[[nodiscard]] const std::vector<HelpTopic>& helpTopics();

/// The topic of the row with this place and element; empty where there is none.
[[nodiscard]] QString topicOf(const QString& place, const QString& element = {});

/// The names by which rows can name a widget: its object name, its class and those that it is made of.
[[nodiscard]] QStringList helpNames(const QWidget& widget);

/// The topic for a widget: that of the first among it and its parents, in other windows too, that the place around it
/// has a row for, else that of the place. A message's is that of the text that it says. Empty where no place is around
/// the widget.
[[nodiscard]] QString helpTopicFor(const QWidget* widget);

/// The topic of an entry of a menu; empty for one that is no command of ours.
[[nodiscard]] QString helpTopicFor(const QAction& entry);

/// The topic of the longest text that a message says in the current language; empty where it says none that has one.
[[nodiscard]] QString helpTopicOfMessage(const QString& message);

/// The topic for the widget that has the keyboard: of an open menu that of its highlighted entry.
[[nodiscard]] QString helpTopicAt(const QWidget* widget);

}  // namespace korvel::control
