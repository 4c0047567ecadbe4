#pragma once

#include <QLocale>
#include <QStringList>

#include "output/pictures/picture.h"
#include "query/activity.h"

namespace korvel::output::pictures {

/// The colours of a picture of activity. The kinds are shades of one colour, so that they stay apart in print and for
/// those who see few colours.
struct ActivityColors {
  QColor ground;
  QColor text;
  QColor muted;  ///< captions of axes
  QColor grid;
  QColor bar;  ///< the most frequent kind; the others are paler

  [[nodiscard]] static ActivityColors light();
  [[nodiscard]] static ActivityColors dark();
  [[nodiscard]] static ActivityColors black();  ///< for print
};

/// The words of a picture.
struct ActivityWords {
  QString title;
  QString others;    ///< the last kind, where several are counted together
  QString isNull;    ///< the kind of rows that have none
  QString isEmpty;   ///< the kind of rows that have an empty one
  QString undated;   ///< "%1 records without a date are not shown"
  QString highest;   ///< "Each line is the highest of several bars": there are more bars than dots
  QString remark{};  ///< what else a reader has to know of the records; stands below
  QLocale locale = QLocale(QLocale::English);
};

/// Bars from the first period to the last, stacked by kind, with a legend, one grid line and dates below.
/// Needs a QGuiApplication.
[[nodiscard]] Picture activityPicture(const query::Activity& activity, const QSizeF& size, const ActivityWords& words,
                                      const ActivityColors& colors, const QFont& font);

/// The colour of a kind among so many. Kinds that lie on each other are far apart in shade.
[[nodiscard]] QColor kindColor(const ActivityColors& colors, std::size_t kind, std::size_t kinds);
/// Where the one line of the grid is: the highest of 1, 2, 5, 10, 20 ... that is not above `most`.
[[nodiscard]] std::size_t gridValue(std::size_t most);

/// The date of a bar: "7 Mar 2004", with the hour or without the day where the periods are hours or months.
[[nodiscard]] QString periodText(query::ActivityHour begin, query::ActivityStep step, const QLocale& locale);

}  // namespace korvel::output::pictures
