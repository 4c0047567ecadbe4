#pragma once

#include <csignal>

namespace korvel::test {

/// While it lives, a signal has this disposition: tests that are started in the background or without a terminal may
/// ignore some signals.
class SignalSetting {
 public:
  SignalSetting(int signal, void (*handler)(int)) : signal_(signal), before_(std::signal(signal, handler)) {}
  ~SignalSetting() { static_cast<void>(std::signal(signal_, before_)); }
  SignalSetting(const SignalSetting&) = delete;
  SignalSetting& operator=(const SignalSetting&) = delete;

 private:
  int signal_;
  void (*before_)(int);
};

}  // namespace korvel::test
