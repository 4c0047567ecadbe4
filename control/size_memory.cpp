#include "control/size_memory.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>

#include "base/error.h"
#include "control/library_state.h"

namespace korvel::control {
namespace {

/// Belongs to the window that it watches.
class SizeKeeper final : public QObject {
 public:
  explicit SizeKeeper(QWidget& window) : QObject(&window), window_(window) { window.installEventFilter(this); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    // Also one that the toolkit or the window's contents chose, which is not kept unless a person changes it.
    if (event->type() == QEvent::Show && !event->spontaneous()) shown_ = window_.size();
    if (event->type() == QEvent::Hide && !event->spontaneous()) skipFailing([this] { keep(); });
    return QObject::eventFilter(watched, event);
  }

 private:
  void keep() const {
    const bool isPlain = !(window_.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized));
    if (isPlain && window_.size() != shown_) libraryState().remembered.setSize(window_.objectName(), window_.size());
  }

  QWidget& window_;
  QSize shown_;
};

}  // namespace

void rememberSize(QWidget& window) {
  const QSize size = libraryState().remembered.size(window.objectName());
  if (size.isValid()) window.resize(size.boundedTo(window.screen()->availableSize()));
  new SizeKeeper(window);
}

}  // namespace korvel::control
