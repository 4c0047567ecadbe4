#include "db/embedded/audit_schema.h"

namespace korvel::db {

std::string auditTableSchema() {
  // DATETIME and BIT are for readers of the declared types; SQLite stores the texts and numbers as they are given.
  return R"sql(CREATE TABLE Korvel_Audit_Trails (
  Nr INTEGER PRIMARY KEY,
  DateTime DATETIME,
  ProjectGUID TEXT COLLATE NOCASE,
  DatabaseName TEXT COLLATE NOCASE,
  ApplicationName TEXT COLLATE NOCASE,
  TableName TEXT COLLATE NOCASE,
  FieldName TEXT COLLATE NOCASE,
  EventType TEXT COLLATE NOCASE,
  EventItem TEXT COLLATE NOCASE,
  OldValue TEXT COLLATE NOCASE,
  NewValue TEXT COLLATE NOCASE,
  PCName TEXT COLLATE NOCASE,
  OSUser TEXT COLLATE NOCASE,
  AppUser TEXT COLLATE NOCASE,
  UserName TEXT COLLATE NOCASE,
  AuditType TEXT COLLATE NOCASE,
  Comments TEXT COLLATE NOCASE,
  T1 BIT
);
)sql";
}

std::string auditIndexes() {
  // Equality first, then Nr: the rows of a category come out in table order and stop at the row limit, nothing is
  // sorted. DateTime last: a date range is tested on the index entry, without a look at the row.
  return R"sql(CREATE INDEX Korvel_Audit_Trails_DateTime ON Korvel_Audit_Trails (DateTime);
CREATE INDEX Korvel_Audit_Trails_Type ON Korvel_Audit_Trails (
  rtrim(AuditType) COLLATE NOCASE, Nr, DateTime);
CREATE INDEX Korvel_Audit_Trails_Event ON Korvel_Audit_Trails (
  rtrim(AuditType) COLLATE NOCASE, rtrim(EventType) COLLATE NOCASE, Nr, DateTime);
CREATE INDEX Korvel_Audit_Trails_Area2 ON Korvel_Audit_Trails (
  rtrim(AuditType) COLLATE NOCASE, substr(TableName, 1, 2) COLLATE NOCASE, Nr, DateTime);
CREATE INDEX Korvel_Audit_Trails_Area3 ON Korvel_Audit_Trails (
  substr(TableName, 1, 3) COLLATE NOCASE, Nr, DateTime);
)sql";
}

}  // namespace korvel::db
