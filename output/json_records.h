#pragma once

#include <span>
#include <string>
#include <vector>

#include "db/connection.h"

namespace korvel::output {

/// A JSON array with one object a record, one record a line. Every value is a string, so that no reader rounds a
/// number; null is null. A name that a record holds twice becomes NAME_2, NAME_3. Bytes that are not UTF-8, which JSON
/// cannot carry, become U+FFFD.
class JsonRecords {
 public:
  /// The records that follow have these fields.
  void setFields(std::span<const db::Field> fields);
  void appendRecord(std::span<const db::Cell> cells, std::string& out);
  /// Closes the array, and opens it where there was no record.
  void appendEnd(std::string& out) const;

 private:
  std::vector<std::string> members_;  ///< `"name":` of each field
  bool any_ = false;
};

}  // namespace korvel::output
