#include "tests/support/tds/type_info.h"

namespace korvel::test::tds {
namespace {

constexpr std::uint16_t unlimitedLength = 0xFFFF;
constexpr std::uint32_t lobLength = 0x7FFFFFFE;
constexpr std::uint32_t variantLength = 8009;

}  // namespace

void writeCollation(ByteWriter& out, const Collation& collation) {
  out.little(collation.localeAndFlags).byte(collation.sortId);
}

unsigned decimalSize(unsigned precision) {
  return precision <= 9 ? 5 : precision <= 19 ? 9 : precision <= 28 ? 13 : 17;
}

void writeTypeInfo(ByteWriter& out, const Column& column) {
  const TypeName& type = *column.type;
  if (type.fixedToken != 0 && !column.nullable) {
    out.byte(type.fixedToken);
    return;
  }
  out.byte(type.token);
  const auto textLength = [&](unsigned bytesPerUnit) {
    out.little(column.unlimited ? unlimitedLength : static_cast<std::uint16_t>(column.length * bytesPerUnit));
  };
  // A lob says which table it comes from: one part, its name.
  const auto tableName = [&] { out.byte(1).longText("Korvel_Audit_Trails"); };
  switch (type.family) {
    case Family::integer:
    case Family::bit:
    case Family::money:
    case Family::floating:
    case Family::dateAndTime:
    case Family::guid:
      out.byte(type.size);
      break;
    case Family::decimal:
      out.byte(decimalSize(column.precision)).byte(column.precision).byte(column.scale);
      break;
    case Family::date:
      break;
    case Family::time:
    case Family::dateTime2:
    case Family::dateTimeOffset:
      out.byte(column.scale);
      break;
    case Family::bytes:
      textLength(1);
      break;
    case Family::narrowText:
      textLength(1);
      writeCollation(out, *column.collation);
      break;
    case Family::wideText:
      textLength(2);
      writeCollation(out, *column.collation);
      break;
    case Family::xml:
      out.byte(0);  // no schema collection
      break;
    case Family::narrowLob:
    case Family::wideLob:
      out.little(lobLength);
      writeCollation(out, *column.collation);
      tableName();
      break;
    case Family::byteLob:
      out.little(lobLength);
      tableName();
      break;
    case Family::variant:
      out.little(variantLength);
      break;
  }
}

}  // namespace korvel::test::tds
