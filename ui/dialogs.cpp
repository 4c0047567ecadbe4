#include "ui/dialogs.h"

#include <QAbstractScrollArea>
#include <QCalendarWidget>
#include <QDate>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPainter>
#include <QTableView>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/icons/icons.h"
#include "ui/style/theme.h"

namespace korvel::ui {

QVBoxLayout* styleDialog(QDialog& dialog) {
  dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  auto* layout = new QVBoxLayout(&dialog);
  const int around = px(&dialog, space::dialog);
  layout->setContentsMargins(around, around, around, around);
  layout->setSpacing(px(&dialog, space::between));
  return layout;
}

void addButtons(QDialog& dialog, QDialogButtonBox* buttons) {
  auto* layout = qobject_cast<QVBoxLayout*>(dialog.layout());
  if (layout == nullptr || buttons == nullptr) return;
  layout->addSpacing(px(&dialog, space::inGroup));
  layout->addWidget(buttons);
}

void styleCalendar(QCalendarWidget& calendar) {
  calendar.setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  calendar.setHorizontalHeaderFormat(QCalendarWidget::ShortDayNames);
  calendar.setGridVisible(false);
  // By default week-ends are red and the names of days bright: the theme has one accent.
  const QTextCharFormat plain;
  for (const auto day : {Qt::Saturday, Qt::Sunday}) calendar.setWeekdayTextFormat(day, plain);
  QTextCharFormat today;
  today.setFontWeight(QFont::DemiBold);
  calendar.setDateTextFormat(QDate::currentDate(), today);
  const int side = px(&calendar, space::icon);
  const auto setIcon = [&](const char* name, IconName drawing) {
    if (auto* button = calendar.findChild<QToolButton*>(QLatin1String(name))) {
      button->setIcon(icon(drawing));
      button->setIconSize({side, side});
    }
  };
  // The names are the toolkit's own for the two arrows beside the month.
  setIcon("qt_calendar_prevmonth", IconName::PreviousPage);
  setIcon("qt_calendar_nextmonth", IconName::NextPage);
  if (auto* bar = calendar.findChild<QWidget*>(QStringLiteral("qt_calendar_navigationbar"))) {
    bar->setBackgroundRole(QPalette::Base);
  }
  if (auto* days = calendar.findChild<QTableView*>()) days->setFrameShape(QFrame::NoFrame);
}

void addYearArrows(QCalendarWidget& calendar, const QString& previous, const QString& next) {
  // The names are the toolkit's own.
  auto* bar = calendar.findChild<QWidget*>(QStringLiteral("qt_calendar_navigationbar"));
  const auto* month = calendar.findChild<QToolButton*>(QStringLiteral("qt_calendar_prevmonth"));
  auto* row = bar != nullptr ? qobject_cast<QBoxLayout*>(bar->layout()) : nullptr;
  if (row == nullptr || month == nullptr) return;
  const auto add = [&](int place, const char* name, IconName drawing, const QString& text, int years) {
    auto* button = new QToolButton(bar);
    button->setObjectName(QLatin1String(name));
    button->setAutoRaise(true);
    button->setAutoRepeat(true);
    button->setFocusPolicy(month->focusPolicy());
    button->setIcon(icon(drawing));
    button->setIconSize(month->iconSize());
    button->setToolTip(text);
    button->setAccessibleName(text);
    QObject::connect(button, &QToolButton::clicked, &calendar, [&calendar, years] {
      const int year =
          std::clamp(calendar.yearShown() + years, calendar.minimumDate().year(), calendar.maximumDate().year());
      calendar.setCurrentPage(year, calendar.monthShown());
    });
    row->insertWidget(place, button);
  };
  add(0, "previousYear", IconName::PreviousYear, previous, -1);
  add(row->count(), "nextYear", IconName::NextYear, next, 1);
}

void setMuted(QLabel& label) {
  // The style reads this role as "grey text"; it follows the palette by itself.
  label.setForegroundRole(QPalette::PlaceholderText);
}

void paintEmptyMessage(QAbstractScrollArea& area, const QString& text) {
  if (text.isEmpty()) return;
  QPainter painter(area.viewport());
  painter.setFont(area.font());
  painter.setPen(Theme::of(area).muted);
  const int inset = px(&area, 4 * space::inside);
  const QRect middle = area.viewport()->rect().adjusted(inset, inset, -inset, -inset);
  painter.drawText(middle, Qt::AlignCenter | Qt::TextWordWrap, text);
}

}  // namespace korvel::ui
