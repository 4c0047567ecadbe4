#include "control/look/look.h"

#include <QApplication>
#include <QChildEvent>
#include <QPointer>
#include <QWidget>

#include "control/look/look_style.h"

namespace korvel::look {
namespace {

/// One style for all viewers of the application; what differs between them comes with each palette.
QStyle& sharedStyle() {
  static QPointer<QStyle> style;
  if (style.isNull()) {
    style = new LookStyle;
    style->setParent(qApp);
  }
  return *style;
}

/// Hands the style on to widgets as they become part of the subtree: Qt itself lets children keep the application's.
class StyleScope : public QObject {
 public:
  using QObject::QObject;

  void take(QWidget& widget) {
    if (widget.style() != &sharedStyle()) widget.setStyle(&sharedStyle());
    widget.removeEventFilter(this);
    widget.installEventFilter(this);
    const QObjectList children = widget.children();
    for (QObject* child : children) {
      if (child->isWidgetType()) take(*static_cast<QWidget*>(child));
    }
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::ChildAdded) {
      QObject* child = static_cast<QChildEvent*>(event)->child();
      if (child->isWidgetType()) take(*static_cast<QWidget*>(child));
    }
    return QObject::eventFilter(watched, event);
  }
};

}  // namespace

void applyLook(QWidget& root) {
  (new StyleScope(&root))->take(root);
}

}  // namespace korvel::look
