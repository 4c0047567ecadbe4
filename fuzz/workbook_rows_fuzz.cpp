// Any file is read as a workbook or refused with a sentence, within limits. What is taken as the sheet of a workbook is
// read the same way, so that the fuzzer need not find checksums.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "evidence/workbook_rows.h"
#include "tests/support/zip_writer.h"

namespace {

using namespace korvel;

constexpr evidence::WorkbookLimits limits{.unpackedBytes = 1U << 22U, .rows = 1'000};

void read(const std::string& bytes) {
  std::size_t rows = 0;
  try {
    evidence::readWorkbookRows(
        bytes,
        [&](std::span<const db::Field> fields, std::span<const db::Cell> cells) {
          if (fields.size() != cells.size()) std::abort();
          ++rows;
        },
        limits);
  } catch (const Error& error) {
    if (error.description().empty()) std::abort();
  }
  if (rows > limits.rows) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  read(input);
  read(test::zipOf(
      {{"xl/_rels/workbook.xml.rels", "<Relationships><Relationship Id=\"a\" Target=\"sheet.xml\"/></Relationships>"},
       {"xl/workbook.xml", "<workbook><sheets><sheet r:id=\"a\"/></sheets></workbook>"},
       {"xl/sharedStrings.xml", "<sst><si><t>shared</t></si></sst>"},
       {"xl/sheet.xml", input, false}}));
  return 0;
}
