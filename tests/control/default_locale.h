#pragma once

#include <QLocale>

namespace korvel::test {

/// A locale for as long as it lives, whatever the machine's is.
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
