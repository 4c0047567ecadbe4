#include "ui/icons/line_drawing.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QImage>
#include <QPainter>
#include <cmath>

#include "tests/ui/painted.h"
#include "ui/icons/icons.h"
#include "ui/icons/path_data.h"

namespace korvel::ui {
namespace {

const QByteArray opening =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16" fill="none" stroke="currentColor" stroke-width="2" )"
    R"(stroke-linecap="round" stroke-linejoin="round">)";

std::optional<LineDrawing> drawing(const QByteArray& shapes) {
  return LineDrawing::read(opening + shapes + "</svg>");
}

QImage paintedWith(const QByteArray& shapes, int side = 16) {
  QImage image(side, side, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  const std::optional<LineDrawing> read = drawing(shapes);
  if (read) read->paint(painter, image.rect(), Qt::red);
  return image;
}

QPainterPath pathOf(const char* text) {
  const std::optional<QPainterPath> path = readPathData(QString::fromLatin1(text));
  EXPECT_TRUE(path) << text;
  return path.value_or(QPainterPath());
}

TEST(LineDrawingTest, RefusesNoIconOfOurs) {
  (void)icon(IconName::Query);  // loads the drawings
  for (const IconFile& each : iconFiles()) {
    QFile file(QStringLiteral(":/korvel/ui/svg/%1.svg").arg(QLatin1String(each.file)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << each.file;
    EXPECT_TRUE(LineDrawing::read(file.readAll())) << each.file;
  }
}

TEST(LineDrawingTest, RefusesWhatItDoesNotKnow) {
  for (const char* shapes : {
           R"(<polygon points="0,0 1,1"/>)",
           R"(<g><path d="M0 0"/></g>)",
           R"(<path d="M0 0" transform="rotate"/>)",
           R"(<path d="M0 0" opacity=".5"/>)",
           R"(<path d="M0 0" fill="#ff0000"/>)",
           R"(<path d="M0 0" stroke="red"/>)",
           R"(<path d="M0 0" stroke-width="thick"/>)",
           R"(<path d="M0 0" stroke-linecap="butt"/>)",
           R"(<path d="M0 0" stroke-linejoin="miter"/>)",
           R"(<path/>)",
           R"(<path d="M0 0q1 1 2 2"/>)",
           R"(<rect x="1" y="1" width="4"/>)",
           R"(<rect x="1" y="1" width="4" height="4" ry="1"/>)",
           R"(<circle cx="1" cy="1" rx="4"/>)",
           R"(<ellipse cx="1" cy="1" r="4"/>)",
           R"(<path d="M0 0"/>text)",
           R"(<path d="M0 0">)",
           R"(<path d="M0 0"/></svg><svg>)",
       }) {
    EXPECT_FALSE(drawing(shapes)) << shapes;
  }
}

TEST(LineDrawingTest, RefusesADrawingWithoutItsOwnAttributes) {
  EXPECT_TRUE(drawing({}));
  for (const QByteArray left : {R"(fill="none" )", R"(stroke="currentColor" )", R"(stroke-linecap="round" )",
                                R"( stroke-linejoin="round")", R"(viewBox="0 0 16 16" )"}) {
    EXPECT_FALSE(LineDrawing::read(QByteArray(opening).replace(left, "") + "</svg>")) << left.constData();
  }
  for (const char* box : {"1 0 16 16", "0 0 16", "0 0 0 16", "0 0 a b"})
    EXPECT_FALSE(LineDrawing::read(QByteArray(opening).replace("0 0 16 16", box) + "</svg>")) << box;
  EXPECT_FALSE(LineDrawing::read("<html/>"));
  EXPECT_FALSE(LineDrawing::read({}));
}

TEST(LineDrawingTest, StrokesAndFillsInTheInkAsEachShapeSays) {
  const QImage stroked = paintedWith(R"(<rect x="3" y="3" width="10" height="10"/>)");
  EXPECT_EQ(stroked.pixelColor(3, 8), QColor(Qt::red));
  EXPECT_EQ(stroked.pixelColor(8, 8).alpha(), 0);
  EXPECT_EQ(stroked.pixelColor(1, 8).alpha(), 0);

  const QImage filled = paintedWith(R"(<rect x="3" y="3" width="10" height="10" fill="currentColor" stroke="none"/>)");
  EXPECT_EQ(filled.pixelColor(8, 8), QColor(Qt::red));
  EXPECT_EQ(filled.pixelColor(2, 8).alpha(), 0) << "a stroke where there is none";

  const QImage wide = paintedWith(R"(<path d="M8 0v16" stroke-width="6"/>)");
  EXPECT_EQ(wide.pixelColor(5, 8), QColor(Qt::red));
  EXPECT_EQ(wide.pixelColor(3, 8).alpha(), 0);
}

TEST(LineDrawingTest, IsDrawnAtAnySize) {
  const QImage large = paintedWith(R"(<rect x="3" y="3" width="10" height="10"/>)", 160);
  EXPECT_EQ(large.pixelColor(21, 80), QColor(Qt::red));
  EXPECT_EQ(large.pixelColor(39, 80), QColor(Qt::red));
  EXPECT_EQ(large.pixelColor(41, 80).alpha(), 0);
}

TEST(PathDataTest, ReadsNumbersAsTightlyAsTheyCanBeWritten) {
  EXPECT_EQ(pathOf("M.5.5-1-1"), pathOf("M 0.5 0.5 L -1 -1"));
  EXPECT_EQ(pathOf("M1,2L3,4"), pathOf(" M 1 2 3 4 "));
  EXPECT_EQ(pathOf("M0 0a1 1 0 012 0"), pathOf("M0 0 a 1 1 0 0 1 2 0"));
}

TEST(PathDataTest, SmallLettersCountFromTheLastPoint) {
  EXPECT_EQ(pathOf("M2 3l1 1h2v-3"), pathOf("M2 3L3 4H5V1"));
  EXPECT_EQ(pathOf("m2 3 1 1m1 1"), pathOf("M2 3L3 4M4 5"));
  EXPECT_EQ(pathOf("M1 1c1 0 2 1 2 2"), pathOf("M1 1C2 1 3 2 3 3"));
  EXPECT_EQ(pathOf("M1 1h2v2zl1 0"), pathOf("M1 1H3V3ZL2 1"));
}

TEST(PathDataTest, SmoothCurvesGoOnAsTheCurveBeforeCameIn) {
  EXPECT_EQ(pathOf("M0 0C0 1 1 2 2 2S4 1 4 0"), pathOf("M0 0C0 1 1 2 2 2C3 2 4 1 4 0"));
  EXPECT_EQ(pathOf("M0 0c0 1 1 2 2 2s2-1 2-2"), pathOf("M0 0C0 1 1 2 2 2C3 2 4 1 4 0"));
  EXPECT_EQ(pathOf("M0 0L2 2S4 1 4 0"), pathOf("M0 0L2 2C2 2 4 1 4 0"));
}

TEST(PathDataTest, ArcsTakeTheSideAndTheWayThatTheirFlagsSay) {
  struct Case {
    const char* path;
    QPointF middle;  // half-way along
  };
  // From the left to the top of a circle of radius 2, and of the one beside it.
  for (const Case& each : std::initializer_list<Case>{
           {"M0 2A2 2 0 0 1 2 0", {2 - std::sqrt(2.0), 2 - std::sqrt(2.0)}},
           {"M0 2A2 2 0 1 1 2 0", {-std::sqrt(2.0), -std::sqrt(2.0)}},
           {"M0 2A2 2 0 0 0 2 0", {std::sqrt(2.0), std::sqrt(2.0)}},
           {"M0 2A2 2 0 1 0 2 0", {2 + std::sqrt(2.0), 2 + std::sqrt(2.0)}},
       }) {
    const QPainterPath path = pathOf(each.path);
    EXPECT_EQ(path.currentPosition(), QPointF(2, 0));
    const QPointF middle = path.pointAtPercent(0.5);
    EXPECT_NEAR(middle.x(), each.middle.x(), 0.01) << each.path;
    EXPECT_NEAR(middle.y(), each.middle.y(), 0.01) << each.path;
  }
}

TEST(PathDataTest, ArcsThatAreTooSmallGrowAndFlatOnesAreLines) {
  EXPECT_NEAR(pathOf("M0 0A1 1 0 0 1 4 0").boundingRect().top(), -2, 0.01);
  EXPECT_EQ(pathOf("M0 0A0 1 0 0 1 4 0"), pathOf("M0 0L4 0"));
  EXPECT_EQ(pathOf("M1 1A1 1 0 0 1 1 1"), pathOf("M1 1"));
  const QRectF flat = pathOf("M0 0A4 1 0 0 1 8 0").boundingRect();
  EXPECT_NEAR(flat.height(), 1, 0.01);
}

TEST(PathDataTest, RefusesWhatIsNoPath) {
  for (const char* text : {"L1 1", "1 1", "M1", "M1 1L2", "M1 1Q2 2 3 3", "M1 1 L a b", "M0 0A1 1 30 0 1 2 2",
                           "M0 0A1 1 0 2 1 2 2", "M0 0C1 1 2 2", "M1 1z3 3", "M1e 1", "M1 1#"})
    EXPECT_FALSE(readPathData(QString::fromLatin1(text))) << text;
  EXPECT_TRUE(pathOf("").isEmpty());
}

}  // namespace
}  // namespace korvel::ui
