#pragma once

#include <sql.h>
#include <sqlext.h>

#include <utility>

#include "base/error.h"

namespace korvel::db::odbc {

/// An ODBC handle, freed by destruction. `Type` is SQL_HANDLE_ENV, SQL_HANDLE_DBC or SQL_HANDLE_STMT.
template <SQLSMALLINT Type>
class Handle {
 public:
  explicit Handle(SQLHANDLE parent) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(Type, parent, &handle_)))
      throw Error(-2147467259, "the ODBC driver manager gave no handle");
  }
  ~Handle() {
    if (handle_ != nullptr) SQLFreeHandle(Type, handle_);
  }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  [[nodiscard]] SQLHANDLE get() const noexcept { return handle_; }
  static constexpr SQLSMALLINT type = Type;

 private:
  SQLHANDLE handle_ = nullptr;
};

using Environment = Handle<SQL_HANDLE_ENV>;
using ConnectionHandle = Handle<SQL_HANDLE_DBC>;
using Statement = Handle<SQL_HANDLE_STMT>;

/// The driver manager's environment, set to the ODBC version that this program is written for.
[[nodiscard]] inline Environment makeEnvironment() {
  Environment environment(nullptr);
  SQLSetEnvAttr(environment.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  return environment;
}

}  // namespace korvel::db::odbc
