#pragma once

#include <QApplication>
#include <QTimer>
#include <functional>
#include <utility>

namespace korvel::control {

/// Waits, without sleeping, for a modal dialog and hands it to `answer` once.
class WhenModal {
 public:
  explicit WhenModal(std::function<void(QWidget*)> answer) {
    QObject::connect(&timer_, &QTimer::timeout, [this, answer = std::move(answer)] {
      if (QWidget* dialog = QApplication::activeModalWidget()) {
        timer_.stop();
        answer(dialog);
      }
    });
    timer_.start(0);
  }

 private:
  QTimer timer_;
};

}  // namespace korvel::control
