#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "output/pages/report_sheets.h"

class QLabel;
class QListView;
class QScrollArea;
class QSpinBox;
class QToolButton;

namespace korvel::control {

/// Shows the pages of a report as they would be printed: one page large, thumbnails of all pages beside it.
class ReportPreview final : public QDialog {
  Q_OBJECT

 public:
  enum class Zoom { fitPage, fitWidth, fixed };

  /// The sheets must have been laid out.
  ReportPreview(std::unique_ptr<output::pages::ReportSheets> sheets, QWidget* owner);
  ~ReportPreview() override;

  /// From 1; outside of the report the nearest page.
  void showPage(int page);
  [[nodiscard]] int page() const noexcept { return page_; }
  void setZoom(Zoom zoom);
  /// Per cent of the page's real size on this screen.
  void setZoomPercent(int wanted);
  [[nodiscard]] int zoomPercent() const;

 Q_SIGNALS:
  /// The user chose to print the report.
  void printRequested();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void requestPrint();
  QWidget* buildBar();
  void buildPages();
  void drawPage();
  [[nodiscard]] qreal dotsPerInch() const;

  std::unique_ptr<output::pages::ReportSheets> sheets_;
  QListView* lvSheets_;
  QScrollArea* areaPage_;
  QLabel* lblPage_;
  QSpinBox* txtPage_ = nullptr;
  QLabel* lblZoom_ = nullptr;
  QToolButton* btFirst_ = nullptr;
  QToolButton* btPrevious_ = nullptr;
  QToolButton* btNext_ = nullptr;
  QToolButton* btLast_ = nullptr;
  Zoom zoom_ = Zoom::fitPage;
  qreal fixedDotsPerInch_ = 0;
  int page_ = 0;
};

}  // namespace korvel::control
