#include "control/forms/page_progress_dialog.h"

#include <QCoreApplication>
#include <QProgressDialog>
#include <limits>

#include "control/texts.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

constexpr int minWidth = 360;

}  // namespace

PageProgressDialog::PageProgressDialog(QWidget& owner, std::chrono::milliseconds delay)
    : window_(new QProgressDialog(ownText("print.counting"), ownText("print.cancel"), 0, 0, &owner)), delay_(delay) {
  window_->setObjectName(QStringLiteral("frmPages"));
  window_->setWindowModality(Qt::ApplicationModal);
  window_->setWindowTitle(QStringLiteral("KorvelAudit Viewer"));
  ui::applyStyle(*window_);
  window_->setMinimumWidth(ui::px(window_, minWidth));
  // Shown by show() below: the toolkit's dialog never shows itself while the value stays the same, as it does while
  // pages are counted.
  window_->setMinimumDuration(std::numeric_limits<int>::max());
  window_->setAutoReset(false);
  window_->setAutoClose(false);
  elapsed_.start();
}

PageProgressDialog::~PageProgressDialog() {
  delete window_;
}

bool PageProgressDialog::show(int page, int pages) {
  if (!window_) return false;
  window_->setLabelText(pages == 0 ? ownText("print.counting") : ownText("print.printing").arg(page).arg(pages));
  window_->setMaximum(pages);
  window_->setValue(page);
  if (!window_) return false;
  if (!window_->isVisible() && !window_->wasCanceled()) {
    if (std::chrono::milliseconds(elapsed_.elapsed()) < delay_) return true;
    window_->show();
  }
  QCoreApplication::processEvents();
  return window_ && !window_->wasCanceled();
}

}  // namespace korvel::control
