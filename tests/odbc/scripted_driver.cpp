// An ODBC driver for one test: it answers SQL_NO_DATA to a command, as drivers may where the first statement of a batch
// has changed no row, and holds one row of one column behind that.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <string_view>

namespace {

struct ScriptedStatement {
  bool isAtRow = false;  ///< the second statement's answer is the current one
  bool rowWasFetched = false;
};

ScriptedStatement& statementOf(SQLHSTMT handle) {
  return *static_cast<ScriptedStatement*>(handle);
}

SQLRETURN giveText(std::u16string_view text, SQLWCHAR* target, SQLSMALLINT* length) {
  std::copy(text.begin(), text.end(), target);
  target[text.size()] = 0;
  *length = static_cast<SQLSMALLINT>(text.size());
  return SQL_SUCCESS;
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT, SQLHANDLE, SQLHANDLE* handle) {
  *handle = new ScriptedStatement;  // for handles of other kinds only an address
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT, SQLHANDLE handle) {
  delete static_cast<ScriptedStatement*>(handle);
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLDriverConnectW(SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLSMALLINT*,
                                    SQLUSMALLINT) {
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLDisconnect(SQLHDBC) {
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLEndTran(SQLSMALLINT, SQLHANDLE, SQLSMALLINT) {
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLCancel(SQLHSTMT) {
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLWCHAR*, SQLINTEGER*, SQLWCHAR*, SQLSMALLINT,
                                 SQLSMALLINT*) {
  return SQL_NO_DATA;
}
SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT, SQLWCHAR*, SQLINTEGER) {
  return SQL_NO_DATA;
}
SQLRETURN SQL_API SQLMoreResults(SQLHSTMT handle) {
  ScriptedStatement& statement = statementOf(handle);
  if (statement.isAtRow) return SQL_NO_DATA;
  statement.isAtRow = true;
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
  *count = statementOf(handle).isAtRow ? 1 : 0;
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLDescribeColW(SQLHSTMT, SQLUSMALLINT, SQLWCHAR* name, SQLSMALLINT, SQLSMALLINT* length,
                                  SQLSMALLINT* type, SQLULEN* size, SQLSMALLINT* digits, SQLSMALLINT* nullable) {
  *type = SQL_WVARCHAR;
  *size = 30;
  *digits = 0;
  *nullable = SQL_NULLABLE;
  return giveText(u"Name", name, length);
}
SQLRETURN SQL_API SQLFetch(SQLHSTMT handle) {
  ScriptedStatement& statement = statementOf(handle);
  if (statement.rowWasFetched) return SQL_NO_DATA;
  statement.rowWasFetched = true;
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLGetData(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLPOINTER target, SQLLEN, SQLLEN* indicator) {
  SQLSMALLINT length = 0;
  giveText(u"pump", static_cast<SQLWCHAR*>(target), &length);
  *indicator = length * static_cast<SQLLEN>(sizeof(SQLWCHAR));
  return SQL_SUCCESS;
}

}  // extern "C"
