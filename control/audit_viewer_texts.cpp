// What the side controls say in the current language, and the help behind them.
#include <QDate>
#include <QLabel>
#include <QLocale>
#include <utility>

#include "control/audit_viewer_members.h"
#include "control/help_file.h"
#include "control/skip_failing.h"
#include "control/texts.h"
#include "settings/registry.h"

namespace korvel {

using control::libraryState;
using control::loadText;
using control::skipFailing;
using control::surroundings;
using ui::fromUtf8;

namespace {

const QString aboutForm = QStringLiteral("frmAbout");

QDate toQDate(const std::chrono::year_month_day& day) {
  return QDate(int(day.year()), static_cast<int>(unsigned(day.month())), static_cast<int>(unsigned(day.day())));
}

QString shortDate(const std::chrono::year_month_day& day) {
  return QLocale::system().toString(toQDate(day), QLocale::ShortFormat);
}

}  // namespace

void AuditViewer::Members::BuildMisc() {
  skipFailing([&] { surface.frameFilter->setTitle(loadText(10039)); });
  skipFailing([&] { surface.btDateRangeFilter->setText(loadText(10040)); });
  skipFailing([&] { surface.btClearDateRange->setText(loadText(10041)); });
  skipFailing([&] { showDateRange(); });
  skipFailing([&] { surface.frameTools->setTitle(loadText(10043)); });

  const std::pair<QWidget*, int> tooltips[] = {
      {surface.btSelectDB, 10044},  {surface.btDBInfo, 10045},      {surface.btQuery, 10046}, {surface.btClear, 10047},
      {surface.btSelectALL, 10048}, {surface.btUnselectALL, 10049}, {surface.btExcel, 10050}, {surface.btPrint, 10053},
  };
  for (const auto& row : tooltips) {
    skipFailing([&] {
      row.first->setToolTip(loadText(row.second));
      row.first->setAccessibleName(loadText(row.second));
    });
  }
  skipFailing([&] { chooseHelpFile(); });
  skipFailing([&] { nameForAssistance(); });
  skipFailing([&] { nameCustomPage(); });
  skipFailing([&] { showEmptyTexts(); });
}

void AuditViewer::Members::chooseHelpFile() {
  const auto backend = surroundings().openSettings();
  const std::string viewerPath = settings::Registry(*backend).GetSetting(
      std::string(settings::applicationName), std::string(settings::viewerSection), "ViewerAppPath", "0");
  control::chooseHelpFile(libraryState().helpFile, fromUtf8(viewerPath), libraryState().language);
}

void AuditViewer::Members::openHelp(control::HelpCommand command) {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  // Also where there is no path: it is the viewer of help files that shows nothing then.
  services->openHelp(&viewer_, libraryState().helpFile, command);
}

void AuditViewer::Members::HelpContents() {
  openHelp(control::HelpCommand::contents);
}

void AuditViewer::Members::HelpSearch() {
  openHelp(control::HelpCommand::index);
}

void AuditViewer::Members::ShowAbout() {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  services->showForm(&viewer_, aboutForm);
}

void AuditViewer::Members::nameForAssistance() {
  surface.tvTreeView->setAccessibleName(surface.frameFilter->title());
  surface.btDateRangeFilter->setAccessibleName(surface.btDateRangeFilter->text());
  surface.btClearDateRange->setAccessibleName(surface.btClearDateRange->text());
}

void AuditViewer::Members::showDateRange() {
  constexpr int noDateRange = 10042;
  const query::DateRange& range = libraryState().dateRange;
  surface.lblDateRange->setText(range.DateRangeActive ? shortDate(range.RangeFromDate) + QStringLiteral(" - ") +
                                                            shortDate(range.RangeToDate)
                                                      : loadText(noDateRange));
}

void AuditViewer::Members::showDateRangeEverywhere() {
  for (Members* instance : instances()) {
    instance->showDateRange();
    instance->followRestingText();
  }
}

}  // namespace korvel
