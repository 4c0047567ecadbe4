#include "tests/odbc/wire.h"
#include "tests/support/watched_allocations.h"

namespace korvel::test {
namespace {

/// Records the number of allocations when each row came.
class CountingSink final : public db::ResultSink {
 public:
  void beginResult(std::span<const db::Field>) override { counts.reserve(5000); }
  bool row(std::span<const db::Cell> cells) override {
    counts.push_back(allocationCount());
    for (const db::Cell& cell : cells) bytes += cell.text.size();
    return true;
  }
  void endResult() override {}

  std::vector<std::size_t> counts;
  std::size_t bytes = 0;
};

class OdbcAllocations : public WireTest {};

TEST_F(OdbcAllocations, aRowCostsNoneOnceTheBufferHasGrown) {
  const std::vector<tds::Column> columns{{"a", "int"},          {"b", "nvarchar(200)"}, {"c", "datetime"},
                                         {"d", "decimal(9,2)"}, {"e", "float"},         {"f", "varbinary(20)"},
                                         {"g", "nvarchar(max)"}};
  const std::string longText(20'000, 'x');
  tds::Answer answer;
  answer.result(columns).rows(2000, [&](std::size_t i) -> std::vector<tds::Value> {
    return {i,        "Ölpumpe 🛢 " + std::to_string(i), "2024-02-29 13:45:59.123", "0.05", 0.1,
            "0xCAFE", i % 100 == 0 ? longText : "short"};
  });
  server_.answer("go", answer);
  CountingSink sink;
  connection().execute("go", sink);
  ASSERT_EQ(sink.counts.size(), 2000U);
  // The server's thread sends the answer in few parts while it is read; 13,000 cells must not add allocations.
  EXPECT_LT(sink.counts.back() - sink.counts[1], 1000U);
  EXPECT_GT(sink.bytes, 2000U * 50U);
}

}  // namespace
}  // namespace korvel::test
