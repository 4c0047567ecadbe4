#pragma once

#include <QTest>
#include <string>
#include <vector>

#include "query/forms/sql_editor.h"
#include "tests/control/viewer_fixture.h"
#include "tests/control/window_thread.h"

namespace korvel::test {

/// A control on its custom page, and a server that answers with given fields and rows.
class CustomPage : public ViewerTest {
 protected:
  using Texts = std::vector<std::string>;

  CustomPage() {
    makeKeyboard();
    // Progress is reported at every step: no test depends on a clock.
    control::platform().queryEnvironment.pace = {std::chrono::milliseconds{1}, std::chrono::seconds{20}};
  }

  std::unique_ptr<AuditViewer> customPage() {
    auto viewer = shownViewer();
    selectTab(*viewer, 5);
    viewer->activateWindow();
    return viewer;
  }
  static query::SqlEditor& editor(const AuditViewer& viewer) {
    return *element<query::SqlEditor>(viewer, "txtAdvancedQuery");
  }
  static QString headers(const AuditViewer& viewer) {
    const QAbstractItemModel& model = *list(viewer, 5)->model();
    QStringList captions;
    for (int i = 0; i < model.columnCount(); ++i) captions.append(model.headerData(i, Qt::Horizontal).toString());
    return captions.join(QLatin1Char(' '));
  }

  static void begin(db::ResultSink& sink, const Texts& names) {
    std::vector<db::Field> fields;
    for (const std::string& name : names) fields.push_back({name});
    sink.beginResult(fields);
  }
  static bool row(db::ResultSink& sink, const Texts& texts) {
    std::vector<db::Cell> cells;
    for (const std::string& text : texts) cells.push_back({text});
    return sink.row(cells);
  }
  void answerWith(const Texts& names, const std::vector<Texts>& rows) {
    server.answer = [=](db::ResultSink& sink) {
      begin(sink, names);
      for (const Texts& texts : rows) row(sink, texts);
      sink.endResult();
    };
  }
  /// Rows of one field; `meanwhile` happens in the windows while they load.
  void answerSlowly(const std::function<void()>& meanwhile) {
    server.answer = [=](db::ResultSink& sink) {
      begin(sink, {"a"});
      row(sink, {"1"});
      onWindowThread(meanwhile);
      if (row(sink, {"2"})) sink.endResult();
    };
  }
  /// The same for what ends the query.
  void answerUntilStopped(const std::function<void()>& meanwhile) {
    server.answer = [=](db::ResultSink& sink) {
      begin(sink, {"a"});
      row(sink, {"1"});
      onWindowThread(meanwhile);
      EXPECT_TRUE(waitUntilUnwanted(sink));
    };
  }
};

}  // namespace korvel::test
