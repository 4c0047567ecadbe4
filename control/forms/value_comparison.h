#pragma once

#include "db/connection.h"

class QLabel;
class QString;

namespace korvel::control {

class ValueField;

/// Marks what differs between two values that stand beside each other, and says it in words.
class ValueComparison {
 public:
  /// All must outlive the comparison.
  ValueComparison(ValueField& before, ValueField& after, QLabel& note);

  /// Compares the values as they are stored, in the current language; the fields show them already.
  void show(const db::Cell& before, const db::Cell& after);

 private:
  ValueField& before_;
  ValueField& after_;
  QLabel& note_;
};

}  // namespace korvel::control
