#include "ui/query_watch.h"

#include <QApplication>
#include <QKeyEvent>

namespace korvel::ui {
namespace {

enum class Handling { pass, drop, refuse, deliverLater };

Handling handlingOf(const QObject& watched, QEvent::Type type) {
  switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::NonClientAreaMouseButtonPress:
    case QEvent::NonClientAreaMouseButtonRelease:
    case QEvent::NonClientAreaMouseButtonDblClick:
    case QEvent::NonClientAreaMouseMove:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::Gesture:
    case QEvent::ContextMenu:
    case QEvent::Enter:
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
    case QEvent::ToolTip:
    case QEvent::WhatsThis:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
      return Handling::drop;
    case QEvent::Close:
      return Handling::refuse;
    case QEvent::Timer:
      // Timers of platform windows serve painting. All others fire again later.
      return watched.isWindowType() ? Handling::pass : Handling::drop;
    case QEvent::FocusIn:
    case QEvent::FocusOut:
      // The windows of the platform update their own state by these events.
      return watched.isWindowType() ? Handling::pass : Handling::deliverLater;
    case QEvent::Leave:
    case QEvent::HoverLeave:
    case QEvent::Quit:
      return Handling::deliverLater;
    default:
      return Handling::pass;
  }
}

bool isEscape(const QEvent& event) {
  if (event.type() != QEvent::KeyPress && event.type() != QEvent::ShortcutOverride) return false;
  const auto& key = static_cast<const QKeyEvent&>(event);
  return key.key() == Qt::Key_Escape && key.modifiers() == Qt::NoModifier;
}

}  // namespace

QueryWatch::QueryWatch() : modalBefore_(QApplication::activeModalWidget()) {
  QCoreApplication::instance()->installEventFilter(this);
}

QueryWatch::~QueryWatch() {
  QCoreApplication::instance()->removeEventFilter(this);
  for (Deferred& each : deferred_)
    if (each.receiver) QCoreApplication::postEvent(each.receiver, each.event.release());
}

bool QueryWatch::goOn() {
  QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
  return !stopped_;
}

bool QueryWatch::eventFilter(QObject* watched, QEvent* event) {
  const QWidget* const modal = QApplication::activeModalWidget();
  if (modal != nullptr && modal != modalBefore_) return false;
  const Handling handling = handlingOf(*watched, event->type());
  switch (handling) {
    case Handling::pass:
      return false;
    case Handling::drop:
      if (isEscape(*event)) stopped_ = true;
      return true;
    case Handling::refuse:
      event->ignore();
      return true;
    case Handling::deliverLater:
      deferred_.push_back({watched, std::unique_ptr<QEvent>(event->clone())});
      return true;
  }
  return false;
}

}  // namespace korvel::ui
