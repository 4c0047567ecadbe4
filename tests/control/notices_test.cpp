// Notices of a list in the status panel, together with the menus' help and the warning of a truncated answer.
#include "control/result_list_view.h"
#include "control/texts.h"
#include "tests/control/command_surfaces.h"

namespace korvel::test {
namespace {

class Notice : public CommandTest {
 protected:
  void fillScattering(std::size_t rows) {
    std::vector<CannedRow> sent;
    for (std::size_t i = 0; i < rows; ++i)
      sent.push_back(record(std::to_string(100000 + i), "CS", i % 2 == 0 ? "a" : "b"));
    server.resultSets = {sent};
  }
  /// Selects all rows with "a" and sorts so that they lie apart.
  static void scatter(const AuditViewer& viewer) {
    auto& view = *element<control::ResultListView>(viewer, "lvListView0");
    view.clickHeader(5);
    ASSERT_EQ(view.model()->index(0, 5).data().toString(), "a");
    const int last = view.model()->rowCount() / 2 - 1;
    view.selectionModel()->select({view.model()->index(0, 0), view.model()->index(last, 1)},
                                  QItemSelectionModel::ClearAndSelect);
    view.clickHeader(0);
  }
  /// The pointer crosses the menu bar.
  static void crossMenuBar(const AuditViewer& viewer) {
    entry(viewer, "TOOLS/QUERY")->hover();
    EXPECT_EQ(statusPanel(viewer), "Query database");
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(menuBar(viewer), &leave);
  }
  const QString scattered = control::ownText("list.selectionScattered").arg(2500);
  const QString limit = control::ownText("status.rowLimit");
};

TEST_F(Notice, StandsBesideTheLimitAndOutlivesAMenu) {
  const auto viewer = shownViewer();
  fillScattering(5000);
  click(*viewer, "btQuery");
  EXPECT_EQ(statusPanel(*viewer), limit);
  scatter(*viewer);
  EXPECT_EQ(statusPanel(*viewer), scattered + ". " + limit);
  crossMenuBar(*viewer);
  EXPECT_EQ(statusPanel(*viewer), scattered + ". " + limit);
  // The notice belongs to another page; the answer is still truncated.
  selectTab(*viewer, 1);
  EXPECT_EQ(statusPanel(*viewer), limit);
  crossMenuBar(*viewer);
  EXPECT_EQ(statusPanel(*viewer), limit);
}

TEST_F(Notice, AloneOutlivesAMenuAndEndsWithTheNextQueryOrItsRows) {
  const auto viewer = shownViewer();
  fillScattering(4998);
  const QString alone = control::ownText("list.selectionScattered").arg(2499);
  for (int way = 0; way < 3; ++way) {
    SCOPED_TRACE(way);
    click(*viewer, "btQuery");
    EXPECT_EQ(statusPanel(*viewer), "");
    scatter(*viewer);
    EXPECT_EQ(statusPanel(*viewer), alone);
    crossMenuBar(*viewer);
    EXPECT_EQ(statusPanel(*viewer), alone);
    if (way == 0) viewer->TriggerQuery();
    if (way == 1) click(*viewer, "btClear");
    if (way == 2) click(*viewer, "btQuery");
    EXPECT_EQ(statusPanel(*viewer), "");
    crossMenuBar(*viewer);
    EXPECT_EQ(statusPanel(*viewer), "");
  }
}

}  // namespace
}  // namespace korvel::test
