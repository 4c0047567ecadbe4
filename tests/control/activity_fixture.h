#pragma once

#include <QPointF>
#include <QWheelEvent>

#include "control/activity_bars.h"
#include "control/activity_legend.h"
#include "control/activity_strip.h"
#include "control/activity_words.h"
#include "tests/control/list_work_fixture.h"

namespace korvel::test {

using control::ActivityBars;
using control::ActivityLegend;
using control::ActivityStrip;
using query::ActivityStep;

/// The strip of activity over the lists of a viewer, worked by keys and by the pointer.
class ActivityWork : public ListWork {
 protected:
  ActivityWork() {
    const char* const events[] = {"UPDATE", "INSERT", "UPDATE", "UPDATE", "DELETE", "UPDATE"};
    for (std::size_t i = 0; i < server.resultSets[0].size(); ++i) server.resultSets[0][i][event] = events[i];
  }

  static ActivityStrip* stripOf(const AuditViewer& viewer, int index = 0) {
    return list(viewer, index)->parentWidget()->findChild<ActivityStrip*>();
  }
  static ActivityBars& bars(const AuditViewer& viewer, int index = 0) { return stripOf(viewer, index)->bars(); }
  /// Switches the strip by its key; where it is shown then, waits for its bars.
  static void toggle(const AuditViewer& viewer, int index = 0) {
    press(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    ActivityStrip* strip = stripOf(viewer, index);
    if (strip == nullptr || !strip->isVisible()) return;
    EXPECT_TRUE(QTest::qWaitFor([&] { return !strip->bars().activity().bars.empty(); }));
  }
  std::unique_ptr<AuditViewer> viewerWithStrip() {
    auto viewer = filledViewer();
    toggle(*viewer);
    return viewer;
  }
  static void waitFor(const std::function<bool()>& condition) { ASSERT_TRUE(QTest::qWaitFor(condition)); }
  static void chooseStep(const AuditViewer& viewer, const char* button, ActivityStep step) {
    stripOf(viewer)->findChild<QToolButton*>(button)->click();
    waitFor([&] { return bars(viewer).activity().step == step; });
  }

  /// The bars that have rows: "2004-03-07 2; 2004-03-08 1".
  static QString told(const ActivityBars& bars) {
    QStringList texts;
    for (const query::ActivityBar& bar : bars.activity().bars)
      if (bar.total() > 0)
        texts << control::beginName(bar.begin, bars.activity().step) + ' ' + QString::number(bar.total());
    return texts.join("; ");
  }
  static QString told(const AuditViewer& viewer) { return told(bars(viewer)); }
  /// The place of the bar that begins so, among all.
  static int barOf(const ActivityBars& bars, const QString& begin) {
    const auto& all = bars.activity().bars;
    for (std::size_t i = 0; i < all.size(); ++i)
      if (control::beginName(all[i].begin, bars.activity().step) == begin) return static_cast<int>(i);
    ADD_FAILURE() << "no bar " << begin.toStdString();
    return 0;
  }
  static QPoint middleOf(const ActivityBars& bars, const QString& begin) {
    return bars.barPlace(barOf(bars, begin), true).center().toPoint();
  }
  static void move(ActivityBars& bars, QPoint to, Qt::MouseButtons buttons) {
    QMouseEvent event(QEvent::MouseMove, QPointF(to), bars.viewport()->mapToGlobal(QPointF(to)), Qt::NoButton, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(bars.viewport(), &event);
  }
  static void drag(ActivityBars& bars, QPoint from, QPoint to) {
    QTest::mousePress(bars.viewport(), Qt::LeftButton, {}, from);
    move(bars, (from + to) / 2, Qt::LeftButton);
    move(bars, to, Qt::LeftButton);
    QTest::mouseRelease(bars.viewport(), Qt::LeftButton, {}, to);
  }
  static void turnWheel(ActivityBars& bars, QPoint place, int turn, Qt::KeyboardModifiers modifiers) {
    QWheelEvent event(QPointF(place), bars.viewport()->mapToGlobal(QPointF(place)), QPoint(), QPoint(0, turn),
                      Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(bars.viewport(), &event);
  }
  static QString readout(const AuditViewer& viewer) {
    return stripOf(viewer)->findChild<QLabel*>("ActivityReadout")->text();
  }
  static QString remark(const AuditViewer& viewer) { return stripOf(viewer)->findChild<ActivityLegend*>()->remark(); }
};

}  // namespace korvel::test
