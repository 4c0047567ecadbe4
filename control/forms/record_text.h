#pragma once

#include <QString>

namespace korvel::control {

/// A record as text for people: a line a field, "Caption: value". Further lines of a value are indented, so that none
/// of them looks like another field; "Caption (NULL)" is a missing value, "Caption:" an empty one. All else is as it is
/// stored.
class RecordText {
 public:
  void addField(const QString& caption, const QString& value, bool isNull);
  [[nodiscard]] const QString& text() const { return text_; }

 private:
  void addIndented(const QString& text);

  QString text_;
};

}  // namespace korvel::control
