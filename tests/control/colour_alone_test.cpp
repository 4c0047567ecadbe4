// What is told by colour is told by shape too.
#include <gmock/gmock.h>

#include <QApplication>
#include <QStandardItemModel>
#include <QTableView>
#include <set>

#include "control/mark_header.h"
#include "ui/style/palettes.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

using evidence::RowReview;

constexpr RowMark rowMarks[] = {{RowReview::none, false},    {RowReview::reviewed, false}, {RowReview::question, false},
                                {RowReview::changed, false}, {RowReview::none, true},      {RowReview::reviewed, true},
                                {RowReview::question, true}, {RowReview::changed, true}};

/// Where anything is drawn, as those see it who see no colours: each point is ground or ink.
std::vector<bool> inkOf(const QImage& picture, const QRect& place) {
  const QRgb ground = picture.pixel(place.topLeft() + QPoint(1, 1));
  std::vector<bool> ink;
  for (int y = place.top(); y <= place.bottom(); ++y)
    for (int x = place.left(); x <= place.right(); ++x) ink.push_back(picture.pixel(x, y) != ground);
  return ink;
}

TEST(ColourAlone, TellsNoReviewMarkFromAnother) {
  for (const QPalette& palette : {ui::lightPalette(), ui::darkPalette()}) {
    QStandardItemModel model(std::size(rowMarks), 1);
    QTableView view;
    ui::applyStyle(view);
    view.setPalette(palette);
    auto* header = new MarkHeader(&view);
    header->setMarks([](int row) { return rowMarks[row]; });
    view.setVerticalHeader(header);
    view.setModel(&model);
    header->show();
    view.resize(200, 400);
    view.show();
    QApplication::processEvents();
    const QImage picture = header->viewport()->grab().toImage();
    std::set<std::vector<bool>> shapes;
    for (int row = 0; row < int(std::size(rowMarks)); ++row) {
      // Without the line at the right edge, and of the same height for all.
      const QRect place(0, header->sectionViewportPosition(row), header->viewport()->width() - 2,
                        header->sectionSize(0));
      ASSERT_TRUE(picture.rect().contains(place));
      EXPECT_TRUE(shapes.insert(inkOf(picture, place)).second) << "row " << row << " looks like one before it";
    }
  }
}

}  // namespace
}  // namespace korvel::control
