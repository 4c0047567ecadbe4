#include "evidence/row_stream.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>

#include "base/error.h"

namespace korvel::evidence {
namespace {

constexpr std::size_t manyRows = 50000;

void push(db::ResultSink& sink, std::size_t rows) {
  const std::array<db::Field, 1> fields = {db::Field{"N"}};
  sink.beginResult(fields);
  for (std::size_t i = 0; i < rows; ++i) {
    const std::string text = std::to_string(i);
    const std::array<db::Cell, 1> cells = {db::Cell{text, false}};
    if (!sink.row(cells)) return;
  }
  sink.endResult();
}

TEST(RowStream, GivesAllRowsInOrder) {
  RowStream stream([](db::ResultSink& sink, const std::stop_token&) { push(sink, manyRows); });
  std::size_t next = 0;
  while (const query::BufferedRows* const batch = stream.next())
    for (std::size_t i = 0; i < batch->rowCount(); ++i)
      if (batch->row(i)[0].text != std::to_string(next++)) FAIL() << next;
  EXPECT_EQ(next, manyRows);
  EXPECT_EQ(stream.next(), nullptr);
}

TEST(RowStream, OfNoRowsHasTheColumns) {
  RowStream stream([](db::ResultSink& sink, const std::stop_token&) { push(sink, 0); });
  const query::BufferedRows* const batch = stream.next();
  ASSERT_NE(batch, nullptr);
  EXPECT_EQ(batch->rowCount(), 0U);
  EXPECT_EQ(batch->fields().at(0).name, "N");
  EXPECT_EQ(stream.next(), nullptr);
}

TEST(RowStream, ThrowsWhatTheSourceThrewAfterItsRows) {
  RowStream stream([](db::ResultSink& sink, const std::stop_token&) {
    push(sink, 5000);
    throw Error(7, "broken");
  });
  std::size_t rows = 0;
  EXPECT_THROW(
      {
        while (const query::BufferedRows* const batch = stream.next()) rows += batch->rowCount();
      },
      Error);
  EXPECT_EQ(rows, 5000U);
}

TEST(RowStream, StopsASourceThatNobodyReads) {
  std::atomic<std::size_t> pushed = 0;
  {
    RowStream stream([&pushed](db::ResultSink& sink, const std::stop_token&) {
      const std::array<db::Field, 1> fields = {db::Field{"N"}};
      const std::array<db::Cell, 1> cells = {db::Cell{"x", false}};
      sink.beginResult(fields);
      while (sink.row(cells)) ++pushed;
      EXPECT_FALSE(sink.shouldContinue());
    });
    EXPECT_NE(stream.next(), nullptr);
  }
  EXPECT_GT(pushed, 0U);
}

TEST(RowStream, CallsBackWhileItWaits) {
  struct Enough {};
  RowStream stream([](db::ResultSink& sink, const std::stop_token&) {
    while (sink.shouldContinue()) std::this_thread::yield();
  });
  int calls = 0;
  EXPECT_THROW((void)stream.next([&calls] {
    if (++calls == 3) throw Enough{};
  }),
               Enough);
}

}  // namespace
}  // namespace korvel::evidence
