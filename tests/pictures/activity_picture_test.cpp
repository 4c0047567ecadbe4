#include "output/pictures/activity_picture.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <algorithm>
#include <map>

namespace korvel::output::pictures {
namespace {

using query::Activity;
using query::ActivityStep;
using std::chrono::sys_days;
using namespace std::chrono_literals;

QFont font() {
  QFont made = QGuiApplication::font();
  made.setPixelSize(12);
  return made;
}

ActivityWords words() {
  return {QStringLiteral("Records by day"),
          QStringLiteral("others"),
          QStringLiteral("(null)"),
          QStringLiteral("(empty)"),
          QStringLiteral("%1 without a date"),
          QStringLiteral("crowded")};
}

/// Bars of these counts, a day each from the 28th of February 2004 on.
Activity daily(const std::vector<std::vector<std::size_t>>& counts) {
  Activity activity;
  for (std::size_t kind = 0; kind < counts.front().size(); ++kind)
    activity.kinds.push_back({"kind " + std::to_string(kind), false});
  query::ActivityHour day = sys_days(2004y / 2 / 28);
  for (const auto& each : counts) {
    activity.bars.push_back({day, each});
    day += std::chrono::days(1);
  }
  return activity;
}

Picture drawn(const Activity& activity, const QSizeF& size = {800, 300}) {
  return activityPicture(activity, size, words(), ActivityColors::light(), font());
}

/// The boxes of the bars, without those of the legend.
std::vector<PictureBox> bars(const Picture& picture, std::size_t kinds) {
  return {picture.boxes.begin() + static_cast<std::ptrdiff_t>(kinds), picture.boxes.end()};
}

bool shows(const Picture& picture, const QString& text) {
  return std::any_of(picture.texts.begin(), picture.texts.end(),
                     [&](const PictureText& each) { return each.text == text; });
}

TEST(ActivityPicture, StacksTheKindsOfEachDay) {
  const Picture picture = drawn(daily({{30, 10}, {0, 0}, {20, 0}}));
  const std::vector<PictureBox> boxes = bars(picture, 2);
  ASSERT_EQ(boxes.size(), 3U);
  // The second kind stands on the first one, and a quarter of the bar is its own.
  EXPECT_DOUBLE_EQ(boxes[0].area.height(), 3 * boxes[1].area.height());
  EXPECT_DOUBLE_EQ(boxes[1].area.bottom(), boxes[0].area.top());
  EXPECT_EQ(boxes[0].area.left(), boxes[1].area.left());
  EXPECT_DOUBLE_EQ(boxes[2].area.height(), 2 * boxes[1].area.height());
  EXPECT_DOUBLE_EQ(boxes[2].area.bottom(), boxes[0].area.bottom());
  // The empty day has its room.
  EXPECT_NEAR(boxes[2].area.left() - boxes[0].area.left(), 2 * boxes[0].area.width(), 5);
  EXPECT_EQ(boxes[0].fill, picture.boxes[0].fill);
  EXPECT_EQ(boxes[1].fill, picture.boxes[1].fill);
  EXPECT_NE(boxes[0].fill, boxes[1].fill);
}

TEST(ActivityPicture, SaysItsAxesAndKindsInWords) {
  Activity activity = daily({{30, 10, 1}, {0, 0, 0}, {20, 0, 0}});
  activity.kinds[1] = {"", true};
  activity.kinds.pop_back();
  activity.hasOthers = true;
  activity.undated = 1234;
  const Picture picture = drawn(activity);
  for (const char* text : {"Records by day", "kind 0  50", "(null)  10", "others  1", "28 Feb 2004", "29 Feb 2004",
                           "1 Mar 2004", "20", "0", "1,234 without a date"})
    EXPECT_TRUE(shows(picture, QString::fromUtf8(text))) << text;
  EXPECT_EQ(picture.description,
            QStringLiteral("28 Feb 2004 - 1 Mar 2004; kind 0: 50; (null): 10; others: 1; 1,234 without a date"));
}

TEST(ActivityPicture, TextsAndBarsStayInsideAndApart) {
  std::vector<std::vector<std::size_t>> counts;
  for (std::size_t day = 0; day < 730; ++day) counts.push_back({day, 2 * day % 100, 7, 5, 3, 2, 1, 1});
  Activity activity = daily(counts);
  for (results::ShownValue& kind : activity.kinds) kind.text.append(60, 'W');
  activity.undated = 3;
  ActivityWords longWords = words();
  longWords.title.fill(QLatin1Char('W'), 300);
  longWords.remark.fill(QLatin1Char('W'), 300);
  for (const QSizeF& size : {QSizeF(1200, 400), QSizeF(500, 300)}) {
    const Picture picture = activityPicture(activity, size, longWords, ActivityColors::light(), font());
    const QFontMetricsF metrics(font());
    std::vector<QRectF> areas;
    for (const PictureText& text : picture.texts) {
      QFont drawn = font();
      drawn.setBold(text.isBold);
      QRectF area(text.place, QSizeF(QFontMetricsF(drawn).horizontalAdvance(text.text), metrics.height()));
      area.translate(0, -metrics.ascent());
      if (text.anchor == TextAnchor::middle) area.translate(-area.width() / 2, 0);
      if (text.anchor == TextAnchor::end) area.translate(-area.width(), 0);
      for (const QRectF& other : areas) EXPECT_FALSE(other.intersects(area)) << text.text.toStdString();
      areas.push_back(area);
    }
    for (const PictureBox& box : picture.boxes) areas.push_back(box.area);
    for (const QRectF& area : areas) EXPECT_TRUE(QRectF(QPointF(), size).contains(area));
  }
}

TEST(ActivityPicture, WhereBarsShareADotTheHighestIsDrawn) {
  std::vector<std::vector<std::size_t>> counts(10'000, {1});
  counts[5'003] = {1'000};
  const Picture picture = drawn(daily(counts));
  const std::vector<PictureBox> boxes = bars(picture, 1);
  EXPECT_LE(boxes.size(), 800U);
  EXPECT_GE(boxes.size(), 600U);
  const auto highest = std::max_element(boxes.begin(), boxes.end(), [](const PictureBox& a, const PictureBox& b) {
    return a.area.height() < b.area.height();
  });
  EXPECT_GT(highest->area.height(), 100);
  for (const PictureBox& box : boxes) EXPECT_GE(box.area.height(), 1);
  EXPECT_TRUE(shows(picture, QStringLiteral("crowded")));
  EXPECT_FALSE(shows(drawn(daily({{1}})), QStringLiteral("crowded")));
}

/// Bars need a dot each, and the captions at the left take some.
TEST(ActivityPicture, SaysThatBarsShareDotsAsSoonAsTheyDo) {
  for (std::size_t count = 700; count <= 800; ++count) {
    const Picture picture = drawn(daily(std::vector<std::vector<std::size_t>>(count, {1'000'000})));
    const bool share = bars(picture, 1).size() < count;
    EXPECT_EQ(shows(picture, QStringLiteral("crowded")), share) << count;
  }
}

/// Nothing of what a reader has to know is left out.
TEST(ActivityPicture, ALongRemarkIsWrapped) {
  ActivityWords remarked = words();
  QStringList parts;
  for (int i = 0; i < 40; ++i) parts << QStringLiteral("remark%1").arg(i);
  remarked.remark = parts.join(QLatin1Char(' '));
  const Picture picture = activityPicture(daily({{1}}), {800, 300}, remarked, ActivityColors::light(), font());
  QStringList foot;
  for (const PictureText& text : picture.texts)
    if (text.text.startsWith(QLatin1String("remark"))) foot << text.text;
  EXPECT_GT(foot.size(), 1);
  EXPECT_EQ(foot.join(QLatin1Char(' ')), remarked.remark);
  // Not at the cost of the bars.
  remarked.remark = remarked.remark.repeated(100);
  const Picture full = activityPicture(daily({{1}}), {800, 300}, remarked, ActivityColors::light(), font());
  ASSERT_EQ(bars(full, 1).size(), 1U);
  EXPECT_GT(bars(full, 1).front().area.height(), 50);
}

TEST(ActivityPicture, OfNothingIsEmpty) {
  const Picture picture = drawn(Activity{});
  EXPECT_TRUE(picture.boxes.empty());
  EXPECT_TRUE(shows(picture, QStringLiteral("Records by day")));
}

TEST(ActivityPicture, PeriodsAreSaidAsLongAsTheyAre) {
  const query::ActivityHour hour = sys_days(2004y / 3 / 7) + 3h;
  EXPECT_EQ(periodText(hour, ActivityStep::hour, QLocale::c()), QStringLiteral("7 Mar 2004 03:00"));
  EXPECT_EQ(periodText(hour, ActivityStep::day, QLocale::c()), QStringLiteral("7 Mar 2004"));
  EXPECT_EQ(periodText(hour, ActivityStep::month, QLocale::c()), QStringLiteral("Mar 2004"));
  EXPECT_EQ(periodText(hour, ActivityStep::day, QLocale(QStringLiteral("de"))).left(2), QStringLiteral("7 "));
}

}  // namespace
}  // namespace korvel::output::pictures
