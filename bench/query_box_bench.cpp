// Loading a very long line into the text box of custom queries, and typing in it.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QKeyEvent>
#include <memory>

#include "bench/offscreen.h"
#include "query/forms/sql_editor.h"

namespace korvel::bench {
namespace {

constexpr qsizetype megabyte = qsizetype{1} << 20U;

QString oneWord() {
  return QString(megabyte, QLatin1Char('a'));
}

QString manyNumbers() {
  const QString number = QStringLiteral("123456, ");
  return number.repeated(megabyte / number.size());
}

QString manyLines() {
  const QString line = QStringLiteral("select DateTime, UserName from Korvel_Audit_Trails where Nr = 123456\n");
  return line.repeated(megabyte / line.size());
}

struct ShownBox {
  ShownBox() {
    box.resize(900, 120);
    box.show();
    settle();
  }
  /// Until it is painted.
  void settle() {
    QCoreApplication::processEvents();
    box.repaint();
  }
  query::SqlEditor box{(offscreenApplication<QApplication>(), nullptr)};
};

void load(benchmark::State& state, QString (*text)()) {
  ShownBox shown;
  const QString loaded = text();
  for (auto _ : state) {
    shown.box.setQueryText(loaded);
    shown.settle();
  }
  if (shown.box.queryText().size() < loaded.size()) state.SkipWithError("not the text that was to be measured");
}

void key(benchmark::State& state, QString (*text)(), bool atEnd) {
  ShownBox shown;
  shown.box.setQueryText(text());
  shown.box.moveCursor(atEnd ? QTextCursor::End : QTextCursor::Start);
  shown.settle();
  for (auto _ : state) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
    QCoreApplication::sendEvent(&shown.box, &press);
    shown.settle();
  }
}

BENCHMARK_CAPTURE(load, one_word, oneWord)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(load, numbers, manyNumbers)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(load, lines, manyLines)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(key, one_word, oneWord, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(key, one_word_end, oneWord, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(key, numbers, manyNumbers, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(key, lines, manyLines, true)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvel::bench
