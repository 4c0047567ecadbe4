// Loaded by the toolkit into any program that it starts (QT_QPA_GENERIC_PLUGINS=firstpaint): ends the program as soon
// as its first window is painted, so that a program can be measured as it is delivered.

#include <QCoreApplication>
#include <QEvent>
#include <QGenericPlugin>
#include <QTimer>
#include <QWidget>
#include <cstdlib>

namespace korvel::bench {
namespace {

class FirstPaint final : public QObject {
 public:
  FirstPaint() { QCoreApplication::instance()->installEventFilter(this); }

  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() != QEvent::Paint) return false;
    const auto* const widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr || !widget->isWindow()) return false;
    QCoreApplication::instance()->removeEventFilter(this);
    // The next turn of the event loop comes when the whole window is painted and handed to the screen.
    QTimer::singleShot(0, [] { std::_Exit(EXIT_SUCCESS); });
    return false;
  }
};

}  // namespace

class FirstPaintPlugin final : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "first_paint_plugin.json")

 public:
  QObject* create(const QString& name, const QString& /*argument*/) override {
    return name.compare(QStringLiteral("firstpaint"), Qt::CaseInsensitive) == 0 ? new FirstPaint : nullptr;
  }
};

}  // namespace korvel::bench

#include "first_paint_plugin.moc"
