#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <vector>

namespace korvel::ui {

/// While a query keeps the user-interface thread busy, windows shall be painted and the escape key shall be heard, and
/// nothing else shall happen: no handler of the control or its host may be entered while another one runs. As long as a
/// watch lives, it takes away what people and timers send to any element of the program. Typing, clicks and the closing
/// of windows are lost, timers tick again later; that the focus or the pointer has moved away is told afterwards.
///
/// Calls that are queued are beyond it: whoever runs a query through it must bear its own destruction. A dialog that
/// such a call opens is spared, or nobody could close it.
class QueryWatch final : public QObject {
  Q_OBJECT

 public:
  QueryWatch();
  ~QueryWatch() override;

  /// Lets windows paint. False once escape has been pressed.
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
