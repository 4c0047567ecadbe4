#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <vector>

namespace korvel::ui {

/// While a query blocks the user-interface thread, windows are painted and Esc is recognised, and nothing else happens:
/// no handler of the control or its host may run nested in another one. While a watch exists, it filters all input and
/// timer events of the program. Keys, clicks and closing of windows are dropped, timers fire again later; focus-out and
/// leave events are delivered afterwards. Queued calls cannot be filtered: the caller may be destroyed by one while it
/// waits. A dialog that such a call opens gets its events, so that it can be closed.
class QueryWatch final : public QObject {
  Q_OBJECT

 public:
  QueryWatch();
  ~QueryWatch() override;

  /// Lets windows paint. False once Esc has been pressed.
  [[nodiscard]] bool goOn();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Deferred {
    QPointer<QObject> receiver;
    std::unique_ptr<QEvent> event;
  };

  QPointer<QWidget> modalBefore_;
  std::vector<Deferred> deferred_;
  bool stopped_ = false;
};

}  // namespace korvel::ui
