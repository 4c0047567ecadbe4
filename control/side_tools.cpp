#include "control/side_tools.h"

#include <QDate>
#include <QLabel>
#include <QLocale>
#include <utility>

#include "control/audit_queries.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/surface.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"

namespace korvel::control {

namespace {

QDate toQDate(const std::chrono::year_month_day& day) {
  return QDate(int(day.year()), static_cast<int>(unsigned(day.month())), static_cast<int>(unsigned(day.day())));
}

QString shortDate(const std::chrono::year_month_day& day) {
  return QLocale::system().toString(toQDate(day), QLocale::ShortFormat);
}

}  // namespace

SideTools::SideTools(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, const AuditQueries& queries,
                     void (*followDateRangeEverywhere)())
    : viewer_(viewer), surface_(surface), queries_(queries), followDateRangeEverywhere_(followDateRangeEverywhere) {
  messages.onClick(surface_.btDateRangeFilter, "btDateRangeFilter_Click", [this] { btDateRangeFilter_Click(); });
  messages.onClick(surface_.btClearDateRange, "btClearDateRange_Click", [this] { btClearDateRange_Click(); });
  messages.onClick(surface_.btSelectALL, "btSelectALL_Click", [this] { btSelectALL_Click(); });
  messages.onClick(surface_.btUnselectALL, "btUnselectALL_Click", [this] { btUnselectALL_Click(); });
}

void SideTools::arrange() {
  surface_.arrange(applied_);
}

void SideTools::ViewTools(bool visable) {
  QWidget* const sideTools[] = {surface_.tvTreeView, surface_.frameFilter, surface_.btDateRangeFilter,
                                surface_.btClearDateRange, surface_.frameTools};
  for (QWidget* element : sideTools) element->setVisible(visable);
  // The resize routine asks the property, not this call's argument.
  arrange();
  viewer_.updateGeometry();
}

void SideTools::showCaptions() {
  skipFailing([&] { surface_.frameFilter->setTitle(loadText(10039)); });
  skipFailing([&] { surface_.btDateRangeFilter->setText(loadText(10040)); });
  skipFailing([&] { surface_.btClearDateRange->setText(loadText(10041)); });
  skipFailing([&] { showDateRange(); });
  skipFailing([&] { surface_.frameTools->setTitle(loadText(10043)); });

  const std::pair<QWidget*, int> tooltips[] = {
      {surface_.btSelectDB, 10044}, {surface_.btDBInfo, 10045},    {surface_.btQuery, 10046},
      {surface_.btClear, 10047},    {surface_.btSelectALL, 10048}, {surface_.btUnselectALL, 10049},
      {surface_.btExcel, 10050},    {surface_.btPrint, 10053},
  };
  for (const auto& row : tooltips) {
    skipFailing([&] {
      row.first->setToolTip(loadText(row.second));
      row.first->setAccessibleName(loadText(row.second));
    });
  }
}

void SideTools::showAccessibleNames() {
  surface_.tvTreeView->setAccessibleName(surface_.frameFilter->title());
  surface_.btDateRangeFilter->setAccessibleName(surface_.btDateRangeFilter->text());
  surface_.btClearDateRange->setAccessibleName(surface_.btClearDateRange->text());
}

void SideTools::showDateRange() {
  constexpr int noDateRange = 10042;
  const query::DateRange& range = libraryState().dateRange;
  surface_.lblDateRange->setText(range.DateRangeActive ? shortDate(range.RangeFromDate) + QStringLiteral(" - ") +
                                                             shortDate(range.RangeToDate)
                                                       : loadText(noDateRange));
}

void SideTools::btSelectALL_Click() {
  viewer_.SelectALL();
}

void SideTools::btUnselectALL_Click() {
  viewer_.UnselectALL();
}

void SideTools::btDateRangeFilter_Click() {
  const std::shared_ptr<ControlServices> services = platform().services;
  // The control may be gone when the dialog is closed.
  const auto followEverywhere = followDateRangeEverywhere_;
  libraryState().newestDay = queries_.newestDayShown();
  services->showForm(&viewer_, form_name::dateRange);
  // However the dialog was closed, the range is in force from now on.
  libraryState().dateRange.DateRangeActive = true;
  followEverywhere();
}

void SideTools::btClearDateRange_Click() {
  libraryState().dateRange.DateRangeActive = false;
  followDateRangeEverywhere_();
}

}  // namespace korvel::control
