#include "control/look/look.h"

#include <QApplication>
#include <QChildEvent>
#include <QPointer>
#include <QWidget>

#include "control/look/look_style.h"
#include "control/look/system_look.h"

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
/// While the system's own look is wanted, or it has a scheme of strong contrast on, that is what they keep.
class StyleScope : public QObject {
 public:
  explicit StyleScope(QWidget& root) : QObject(&root), root_(root) { take(root); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::ChildAdded) {
      QObject* child = static_cast<QChildEvent*>(event)->child();
      if (child->isWidgetType()) take(*static_cast<QWidget*>(child));
    } else if (event->type() == QEvent::PaletteChange && watched == &root_) {
      followSystem();
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  void take(QWidget& widget) {
    if (!platform_ && widget.style() != &sharedStyle()) widget.setStyle(&sharedStyle());
    if (platform_ && widget.testAttribute(Qt::WA_SetStyle)) widget.setStyle(nullptr);
    widget.removeEventFilter(this);
    widget.installEventFilter(this);
    const QObjectList children = widget.children();
    for (QObject* child : children) {
      if (child->isWidgetType()) take(*static_cast<QWidget*>(child));
    }
  }

  /// No scheme of contrast comes or goes without a change of colours.
  void followSystem() {
    refreshSystemLook();
    if (systemLook().keepsPlatform() == platform_) return;
    platform_ = !platform_;
    take(root_);
  }

  QWidget& root_;
  bool platform_ = systemLook().keepsPlatform();
};

}  // namespace

void applyLook(QWidget& root) {
  new StyleScope(root);  // owned by the root
}

}  // namespace korvel::look
