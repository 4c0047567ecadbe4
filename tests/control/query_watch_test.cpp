#include "ui/query_watch.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPainter>
#include <QTest>
#include <QTimer>
#include <future>

#include "db/worker.h"
#include "tests/control/custom_page_fixture.h"
#include "tests/control/default_locale.h"

namespace korvel::test {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

/// What is processed while a custom query loads, and what is not.
using WhileItLoads = CustomPage;

/// Sends a key as the window system does: through the event queue.
void postKey(QWidget* to, Qt::Key key, const QString& text = {}) {
  QCoreApplication::postEvent(to, new QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier, text));
}

class Painted final : public QWidget {
 public:
  using QWidget::QWidget;
  int count = 0;

 protected:
  void paintEvent(QPaintEvent*) override { ++count; }
};

TEST_F(WhileItLoads, EscapeStopsTheQueryAndClearsTheList) {
  const auto viewer = customPage();
  answerWith({"a"}, {{"before"}});
  click(*viewer, "btQuery");
  answerUntilStopped([&] { postKey(&editor(*viewer), Qt::Key_Escape); });
  click(*viewer, "btQuery");
  EXPECT_EQ(list(*viewer, 5)->model()->rowCount(), 0);
  EXPECT_EQ(headers(*viewer), "a");
  EXPECT_EQ(statusPanel(*viewer), "The query was stopped; no records are shown");
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_EQ(recorder->pointers.back(), ui::Pointer::standard);
  EXPECT_EQ(server.openConnections, 0);

  // The next one is not stopped.
  answerSlowly([] {});
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 5), "1 2");
  EXPECT_EQ(statusPanel(*viewer), "");
}

TEST_F(WhileItLoads, EscapeStopsAStandardQueryToo) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  ASSERT_EQ(column(*viewer, 0), "1");
  server.answer = [&](db::ResultSink& sink) {
    begin(sink, {"Nr", "AuditType"});
    row(sink, {"2", "CS"});
    onWindowThread([&] {
      // No record of the earlier answer is visible meanwhile.
      EXPECT_EQ(column(*viewer, 0), "");
      EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
      EXPECT_EQ(statusPanel(*viewer), "Querying Database Please Wait....");
      postKey(viewer.get(), Qt::Key_Escape);
    });
    EXPECT_TRUE(waitUntilUnwanted(sink));
  };
  click(*viewer, "btQuery");
  for (int i = 0; i < 5; ++i) EXPECT_EQ(list(*viewer, i)->model()->rowCount(), 0) << i;
  EXPECT_EQ(statusPanel(*viewer), "The query was stopped; no records are shown");
  EXPECT_EQ(lastFailure(*viewer), "");
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_EQ(recorder->pointers.back(), ui::Pointer::standard);

  server.answer = nullptr;
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 0), "1");
  EXPECT_EQ(statusPanel(*viewer), "");
}

TEST_F(WhileItLoads, TheWindowDoesNotWaitForAServerThatDoesNotComeBack) {
  control::platform().queryEnvironment.pace.grace = {};
  const auto viewer = shownViewer();
  std::promise<void> comesBack;
  server.answer = [&](db::ResultSink&) {
    postKey(viewer.get(), Qt::Key_Escape);
    comesBack.get_future().wait();
  };
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), "The query was stopped; no records are shown");
  EXPECT_TRUE(db::hasAbandonedWorkers());
  // The next query does not wait for it either.
  server.answer = nullptr;
  server.resultSets = {{record("1", "CS")}};
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 0), "1");
  comesBack.set_value();
  EXPECT_TRUE(comesAbout([] { return !db::hasAbandonedWorkers(); }));
  EXPECT_EQ(column(*viewer, 0), "1");
}

TEST_F(WhileItLoads, EscapeBeforeTheFirstRowStopsItToo) {
  const auto viewer = customPage();
  server.answer = [&](db::ResultSink& sink) {
    postKey(viewer.get(), Qt::Key_Escape);
    EXPECT_TRUE(waitUntilUnwanted(sink));
  };
  viewer->TriggerAdvancedQuery("x");
  EXPECT_EQ(statusPanel(*viewer), "The query was stopped; no records are shown");
}

TEST_F(WhileItLoads, TheStatusPanelSaysHowFarItIs) {
  const auto viewer = customPage();
  QString first;
  QString later;
  server.answer = [&](db::ResultSink& sink) {
    begin(sink, {"a"});
    onWindowThread([&] { first = statusPanel(*viewer); });
    for (int i = 0; i < 1234; ++i) row(sink, {"x"});
    EXPECT_TRUE(sink.shouldContinue());
    comesAbout([&] {
      onWindowThread([&] { later = statusPanel(*viewer); });
      return later.startsWith(QLatin1String("1234 "));  // a slow machine shows fewer first
    });
    sink.endResult();
  };
  click(*viewer, "btQuery");
  EXPECT_EQ(first, "Querying Database Please Wait....");
  EXPECT_EQ(later, "1234 records so far; Esc stops the query");
  EXPECT_EQ(statusPanel(*viewer), "");
}

TEST_F(WhileItLoads, TheNumberOfRowsIsGroupedAsTheLocaleHasIt) {
  const DefaultLocale german(QLocale(QLocale::German, QLocale::Germany));
  const auto viewer = customPage();
  QString soFar;
  server.answer = [&](db::ResultSink& sink) {
    begin(sink, {"a"});
    for (int i = 0; i < 1234; ++i) row(sink, {"x"});
    EXPECT_TRUE(sink.shouldContinue());
    EXPECT_TRUE(comesAbout([&] {
      onWindowThread([&] { soFar = statusPanel(*viewer); });
      return soFar == "1.234 records so far; Esc stops the query";
    })) << soFar.toStdString();
    sink.endResult();
  };
  click(*viewer, "btQuery");
}

TEST_F(WhileItLoads, WindowsArePainted) {
  const auto viewer = customPage();
  Painted other;
  other.show();
  QCoreApplication::processEvents();
  int before = 0;
  answerSlowly([&] {
    before = other.count;
    other.update();
  });
  click(*viewer, "btQuery");
  EXPECT_GT(other.count, before);
}

TEST_F(WhileItLoads, ClicksAndKeysAreIgnored) {
  const auto viewer = customPage();
  QLineEdit host;
  host.show();
  answerSlowly([&] {
    QTest::mouseClick(element(*viewer, "btQuery"), Qt::LeftButton);
    QTest::mouseClick(element(*viewer, "btClear"), Qt::LeftButton);
    QTest::keyClick(&editor(*viewer), Qt::Key_F5);
    QTest::keyClick(&editor(*viewer), Qt::Key_X);
    QTest::keyClicks(&host, "abc");
    postKey(&host, Qt::Key_D, "d");
  });
  click(*viewer, "btQuery");
  QCoreApplication::processEvents();
  EXPECT_THAT(server.commands, SizeIs(1));
  EXPECT_EQ(editor(*viewer).queryText(), "Select * from Korvel_Audit_Trails");
  EXPECT_EQ(host.text(), "");
  EXPECT_EQ(column(*viewer, 5), "1 2");
  // Afterwards they do again.
  QTest::keyClicks(&host, "e");
  EXPECT_EQ(host.text(), "e");
}

TEST_F(WhileItLoads, WhatWasSentBeforeItsEndStartsNoOther) {
  const auto viewer = customPage();
  server.answer = [&](db::ResultSink& sink) {
    begin(sink, {"a"});
    row(sink, {"1"});
    // The window does not check again before the query has ended.
    postKey(&editor(*viewer), Qt::Key_F5);
  };
  click(*viewer, "btQuery");
  QCoreApplication::processEvents();
  EXPECT_THAT(server.commands, SizeIs(1));
  EXPECT_EQ(column(*viewer, 5), "1");
}

TEST_F(WhileItLoads, NoWindowIsClosed) {
  const auto viewer = customPage();
  QWidget host;
  host.show();
  answerSlowly([&] {
    EXPECT_FALSE(viewer->close());
    EXPECT_FALSE(host.close());
  });
  click(*viewer, "btQuery");
  EXPECT_TRUE(viewer->isVisible());
  EXPECT_TRUE(host.isVisible());
  EXPECT_TRUE(host.close());
}

TEST_F(WhileItLoads, TimersOfTheHostWait) {
  const auto viewer = customPage();
  int ticks = 0;
  int ticksMeanwhile = -1;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
  QTimer once;
  bool fired = false;
  once.setSingleShot(true);
  QObject::connect(&once, &QTimer::timeout, [&] { fired = true; });
  server.answer = [&](db::ResultSink& sink) {
    onWindowThread([&] {
      timer.start(0);
      once.start(0);
    });
    begin(sink, {"a"});
    for (int i = 0; i < 10; ++i) onWindowThread([] {});
    ticksMeanwhile = ticks;
    EXPECT_FALSE(fired);
    row(sink, {"1"});
    sink.endResult();
  };
  click(*viewer, "btQuery");
  EXPECT_EQ(ticksMeanwhile, 0);
  QCoreApplication::processEvents();
  EXPECT_GT(ticks, 0);
  EXPECT_TRUE(fired);
}

TEST_F(WhileItLoads, FocusEventsFollowAfterwards) {
  const auto viewer = customPage();
  QWidget host;
  QLineEdit first(&host);
  QLineEdit second(&host);
  host.show();
  QApplication::setActiveWindow(&host);
  first.setFocus();
  QTest::keyClicks(&first, "typed");
  QSignalSpy finished(&first, &QLineEdit::editingFinished);
  qsizetype finishedMeanwhile = -1;
  answerSlowly([&] {
    second.setFocus();
    finishedMeanwhile = finished.count();
  });
  viewer->TriggerAdvancedQuery("x");
  EXPECT_EQ(finishedMeanwhile, 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(finished.count(), 1);
}

TEST_F(WhileItLoads, QueuedQueriesOfTheSameControlDoNothing) {
  const auto viewer = customPage();
  answerSlowly([&] {
    for (const char* name : {"TriggerQuery", "DisplayNoOfRecords"})
      QMetaObject::invokeMethod(viewer.get(), name, Qt::QueuedConnection);
    QMetaObject::invokeMethod(viewer.get(), "TriggerAdvancedQuery", Qt::QueuedConnection, Q_ARG(QString, "other"));
    QMetaObject::invokeMethod(element(*viewer, "btQuery"), "click", Qt::QueuedConnection);
  });
  click(*viewer, "btQuery");
  QCoreApplication::processEvents();
  EXPECT_THAT(server.commands, SizeIs(1));
  EXPECT_EQ(column(*viewer, 5), "1 2");
}

TEST_F(WhileItLoads, QueuedQueriesOfAnotherControlDoNothingEither) {
  const auto viewer = customPage();
  const auto other = shownViewer();
  answerSlowly([&] { QMetaObject::invokeMethod(other.get(), "TriggerQuery", Qt::QueuedConnection); });
  click(*viewer, "btQuery");
  QCoreApplication::processEvents();
  EXPECT_THAT(server.commands, SizeIs(1));
  EXPECT_EQ(column(*viewer, 5), "1 2");
  // Afterwards it queries again.
  server.answer = nullptr;
  server.resultSets = {{record("1", "CS")}};
  other->TriggerQuery();
  EXPECT_EQ(column(*other, 0), "1");
}

TEST_F(WhileItLoads, AnotherDatabaseThatIsSelectedMeanwhileEndsIt) {
  const auto viewer = customPage();
  recorder->onForm = [] { control::libraryState().connection.ConnectionString = "another"; };
  bool wentOn = true;
  server.answer = [&](db::ResultSink& sink) {
    begin(sink, {"a"});
    row(sink, {"1"});
    QMetaObject::invokeMethod(viewer.get(), "SelectDatabase", Qt::QueuedConnection);
    wentOn = !waitUntilUnwanted(sink);
  };
  click(*viewer, "btQuery");
  EXPECT_FALSE(wentOn);
  EXPECT_EQ(column(*viewer, 5), "");
  EXPECT_EQ(statusPanel(*viewer), "The query was stopped; no records are shown");

  // Also where it is selected while the whole answer is there already.
  server.answer = [&](db::ResultSink& sink) {
    begin(sink, {"a"});
    row(sink, {"1"});
    sink.endResult();
    QMetaObject::invokeMethod(viewer.get(), "SelectDatabase", Qt::QueuedConnection);
  };
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 5), "");
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
}

TEST_F(WhileItLoads, TheControlMayBeDeletedByAQueuedCall) {
  auto viewer = customPage();
  bool wentOn = true;
  server.answer = [&](db::ResultSink& sink) {
    begin(sink, {"a"});
    row(sink, {"1"});
    QMetaObject::invokeMethod(
        qApp, [&] { viewer.reset(); }, Qt::QueuedConnection);
    wentOn = !waitUntilUnwanted(sink);
  };
  viewer->findChild<QAbstractButton*>("btQuery")->click();
  EXPECT_EQ(viewer, nullptr);
  EXPECT_FALSE(wentOn);
  EXPECT_EQ(server.openConnections, 0);
}

TEST_F(WhileItLoads, ADialogThatAQueuedCallOpensCanBeClosed) {
  const auto viewer = customPage();
  bool closed = false;
  answerSlowly([&] {
    QMetaObject::invokeMethod(
        qApp,
        [&] {
          QDialog dialog;
          QObject::connect(&dialog, &QDialog::rejected, [&] { closed = true; });
          QMetaObject::invokeMethod(
              qApp, [&dialog] { QTest::keyClick(&dialog, Qt::Key_Escape); }, Qt::QueuedConnection);
          dialog.exec();
        },
        Qt::QueuedConnection);
  });
  click(*viewer, "btQuery");
  EXPECT_TRUE(closed);
  // That Esc closed the dialog.
  EXPECT_EQ(column(*viewer, 5), "1 2");
}

}  // namespace
}  // namespace korvel::test
