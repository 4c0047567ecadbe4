#pragma once

#include <QLocale>

namespace korvel::test {

/// Sets the default locale while it lives.
class DefaultLocale {
 public:
  explicit DefaultLocale(const QLocale& locale) { QLocale::setDefault(locale); }
  ~DefaultLocale() { QLocale::setDefault(before_); }
  DefaultLocale(const DefaultLocale&) = delete;
  DefaultLocale& operator=(const DefaultLocale&) = delete;

 private:
  QLocale before_;
};

}  // namespace korvel::test
