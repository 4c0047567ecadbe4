#pragma once

#include <string>

namespace korvel::query {

/// What the dialogs of custom queries hand to the control; one for all of its instances.
struct QueryChoices {
  /// The field picker's query; empty where it was closed without one.
  std::string pickedQuery;
  /// The folder whose query files are offered, with a separator at its end.
  std::string folder;
  /// The file that was chosen there, with its extension; empty where none was.
  std::string fileName;
};

}  // namespace korvel::query
