// Uses the control of a host that knows nothing of tests: waits until the control has been shown, takes the steps of
// KORVEL_PROBE_STEPS ("call MEMBER", "set PROPERTY VALUE", "action CAPTION", separated by ";"), writes what there is to
// see into KORVEL_PROBE_FACTS and a picture into KORVEL_PROBE_PICTURE, and leaves by the control's own event.
#include <korvel/AuditViewer.h>
#include <korvel/FailureBar.h>

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QGenericPlugin>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QTableView>
#include <QTimer>

namespace {

using korvel::AuditViewer;

void fail(const QString& what) {
  qCritical("host probe: %s", qPrintable(what));
  // Not by the host's own way out, which may be what is broken.
  std::_Exit(99);
}

class Probe : public QObject {
 public:
  bool eventFilter(QObject* object, QEvent* event) override {
    // The control's own handling of the event comes first.
    if (event->type() == QEvent::Show && viewer_ == nullptr)
      if (auto* viewer = qobject_cast<AuditViewer*>(object)) {
        viewer_ = viewer;
        QTimer::singleShot(0, this, &Probe::takeStep);
      }
    return QObject::eventFilter(object, event);
  }

 private:
  void takeStep() {
    if (steps_.isEmpty()) {
      finish();
      return;
    }
    const QString step = steps_.takeFirst();
    const QString what = step.section(' ', 1);
    if (step.startsWith("call ")) {
      if (!QMetaObject::invokeMethod(viewer_, what.toUtf8().constData())) fail(step);
    } else if (step.startsWith("set ")) {
      if (!viewer_->setProperty(what.section(' ', 0, 0).toUtf8().constData(), what.section(' ', 1))) fail(step);
    } else if (step.startsWith("action ")) {
      trigger(what);
    } else {
      fail(step);
    }
    QTimer::singleShot(0, this, &Probe::takeStep);
  }

  void trigger(const QString& caption) {
    for (auto* action : viewer_->window()->findChildren<QAction*>()) {
      // The control has a menu of its own.
      if (viewer_->isAncestorOf(qobject_cast<QWidget*>(action->parent()))) continue;
      if (action->text().remove('&').remove("...") != caption) continue;
      if (!action->isEnabled()) fail(caption + " is disabled");
      action->trigger();
      return;
    }
    fail("no action " + caption);
  }

  void finish() {
    const auto* list = viewer_->findChild<QTableView*>("lvListView0");
    if (list == nullptr) fail("no list");
    const auto* bar = viewer_->window()->findChild<korvel::FailureBar*>();
    QString facts;
    facts += "title " + viewer_->window()->windowTitle() + '\n';
    facts += "rows " + QString::number(list->model()->rowCount()) + '\n';
    facts += "failure " + QString::number(viewer_->LastFailureNumber()) +
             (bar != nullptr && bar->isVisible() ? " shown\n" : " hidden\n");
    facts += "bag " +
             QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(viewer_->WriteProperties().toMap()))
                                   .toJson(QJsonDocument::Compact)) +
             '\n';
    if (!viewer_->window()->grab().save(qEnvironmentVariable("KORVEL_PROBE_PICTURE"))) fail("no picture");
    QFile file(qEnvironmentVariable("KORVEL_PROBE_FACTS"));
    if (!file.open(QIODevice::WriteOnly) || file.write(facts.toUtf8()) < 0) fail("no facts");
    file.close();
    Q_EMIT viewer_->ExitApp();
  }

  QPointer<AuditViewer> viewer_;
  QStringList steps_ = qEnvironmentVariable("KORVEL_PROBE_STEPS").split(';', Qt::SkipEmptyParts);
};

class ProbePlugin : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "host_probe.json")

 public:
  QObject* create(const QString& /*key*/, const QString& /*specification*/) override {
    auto* probe = new Probe;
    qApp->installEventFilter(probe);
    return probe;
  }
};

}  // namespace

#include "host_probe.moc"
