#pragma once

#include <QTest>
#include <string>
#include <vector>

#include "query/forms/sql_editor.h"
#include "tests/control/viewer_fixture.h"

namespace korvel::test {

/// A control on its custom page, and a server that answers with whatever fields and rows it is given.
class CustomPage : public ViewerTest {
 protected:
  using Texts = std::vector<std::string>;

  CustomPage() {
    // Every look at a query is told: no test waits for a clock.
    control::surroundings().queryMachine.interval = {};
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
  /// Rows of one field; `meanwhile` runs while they load, and what it sets off has its chance before the last one.
  void answerSlowly(const std::function<void()>& meanwhile) {
    server.answer = [=](db::ResultSink& sink) {
      begin(sink, {"a"});
      bool wanted = row(sink, {"1"}) && sink.goOn();
      if (wanted) meanwhile();
      wanted = wanted && sink.goOn() && sink.goOn() && row(sink, {"2"});
      if (wanted) sink.endResult();
    };
  }
};

}  // namespace korvel::test
