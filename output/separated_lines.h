#pragma once

#include <span>
#include <string>

#include "results/result_list.h"

namespace korvel::output {

inline constexpr char textExportSeparator = ',';
inline constexpr char exchangeSeparator = '|';

/// The lines of the text export and of the exchange file: captions and cells as the list displays them, in UTF-8,
/// nothing quoted or escaped, each line ended by CR LF.

/// Appends the header line: every caption followed by the separator, the last one too. Deliberate: data lines do not
/// end so.
void appendHeaderLine(const results::ResultList& list, char separator, std::string& out);
/// The same for a result set that is not in a list: its fields' names are the captions.
void appendHeaderLine(std::span<const db::Field> fields, char separator, std::string& out);
/// Appends a row's line: its cells with separators between them.
void appendRowLine(const results::ResultList& list, results::RowPosition row, char separator, std::string& out);
void appendRowLine(std::span<const db::Cell> cells, char separator, std::string& out);

}  // namespace korvel::output
