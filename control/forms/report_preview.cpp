#include "control/forms/report_preview.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <exception>

#include "base/error.h"
#include "control/forms/page_thumbnails.h"
#include "control/texts.h"
#include "ui/accessible_role.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

constexpr int firstWidth = 1040;
constexpr int firstHeight = 760;
constexpr int sheetWidth = 110;
constexpr qreal pointsPerInch = 72;
constexpr int minPercent = 20;
constexpr int maxPercent = 400;
constexpr qreal zoomStep = 1.25;
constexpr int percent = 100;

QString name(const char* text) {
  return QString::fromLatin1(text);
}

}  // namespace

ReportPreview::ReportPreview(std::unique_ptr<output::pages::ReportSheets> sheets, QWidget* owner)
    : QDialog(owner),
      sheets_(std::move(sheets)),
      lvSheets_(new QListView(this)),
      areaPage_(new QScrollArea(this)),
      lblPage_(new QLabel) {
  setObjectName(name("frmReportPreview"));
  setWindowTitle(ownText("preview.title"));
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  ui::applyStyle(*this);
  QVBoxLayout* column = ui::styleDialog(*this);
  column->addWidget(buildBar());
  buildPages();
  auto* row = new QHBoxLayout;
  row->setSpacing(ui::px(this, ui::space::between));
  row->addWidget(lvSheets_);
  row->addWidget(areaPage_, 1);
  column->addLayout(row, 1);

  ui::setFirstSize(*this, firstWidth, firstHeight);
  areaPage_->setFocus();
  showPage(1);
}

ReportPreview::~ReportPreview() {
  // Its model draws from the sheets, which are deleted first.
  lvSheets_->setModel(nullptr);
}

QWidget* ReportPreview::buildBar() {
  auto* bar = new QWidget;
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins({});
  row->setSpacing(ui::px(this, ui::space::inGroup));
  const auto button = [&](ui::IconName icon, const char* objectName, const char* text, auto clicked) {
    auto* made = new ui::IconButton(icon, bar);
    made->setObjectName(name(objectName));
    made->setToolTip(ownText(text));
    connect(made, &QToolButton::clicked, this, clicked);
    row->addWidget(made);
    return made;
  };
  const auto gap = [&] { row->addSpacing(ui::px(this, 2 * ui::space::between)); };

  btFirst_ = button(ui::IconName::FirstPage, "btFirst", "preview.first", [this] { showPage(1); });
  btPrevious_ = button(ui::IconName::PreviousPage, "btPrevious", "preview.previous", [this] { showPage(page_ - 1); });
  txtPage_ = new QSpinBox;
  txtPage_->setObjectName(name("txtPage"));
  txtPage_->setRange(1, std::max(1, sheets_->count()));
  txtPage_->setButtonSymbols(QAbstractSpinBox::NoButtons);
  txtPage_->setKeyboardTracking(false);
  txtPage_->setAccessibleName(ownText("preview.page"));
  connect(txtPage_, &QSpinBox::valueChanged, this, &ReportPreview::showPage);
  row->addWidget(txtPage_);
  auto* of = new QLabel(ownText("preview.of").arg(sheets_->count()));
  of->setObjectName(name("lblOf"));
  row->addWidget(of);
  btNext_ = button(ui::IconName::NextPage, "btNext", "preview.next", [this] { showPage(page_ + 1); });
  btLast_ = button(ui::IconName::LastPage, "btLast", "preview.last", [this] { showPage(sheets_->count()); });
  gap();
  button(ui::IconName::ZoomOut, "btZoomOut", "preview.zoomOut",
         [this] { setZoomPercent(qRound(zoomPercent() / zoomStep)); });
  lblZoom_ = new QLabel;
  lblZoom_->setObjectName(name("lblZoom"));
  lblZoom_->setAlignment(Qt::AlignCenter);
  lblZoom_->setMinimumWidth(lblZoom_->fontMetrics().horizontalAdvance(QStringLiteral("0000 %")));
  row->addWidget(lblZoom_);
  button(ui::IconName::ZoomIn, "btZoomIn", "preview.zoomIn",
         [this] { setZoomPercent(qRound(zoomPercent() * zoomStep)); });
  button(ui::IconName::FitWidth, "btFitWidth", "preview.fitWidth", [this] { setZoom(Zoom::fitWidth); });
  button(ui::IconName::FitPage, "btFitPage", "preview.fitPage", [this] { setZoom(Zoom::fitPage); });
  row->addStretch(1);
  auto* print = new ui::PrimaryButton(ui::IconName::Print, ownText("preview.print"), bar);
  print->setObjectName(name("btPrint"));
  connect(print, &QPushButton::clicked, this, [this] { requestPrint(); });
  row->addWidget(print);
  auto* close = new ui::SecondaryButton(ownText("preview.close"), bar);
  close->setObjectName(name("btClose"));
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  row->addWidget(close);
  // Enter confirms the page number: no default button may take it.
  for (QPushButton* each : {static_cast<QPushButton*>(print), static_cast<QPushButton*>(close)})
    each->setAutoDefault(false);
  return bar;
}

void ReportPreview::buildPages() {
  const int width = ui::px(this, sheetWidth);
  auto* model = new PageThumbnails(*sheets_, width, devicePixelRatioF(), this);
  lvSheets_->setObjectName(name("lvSheets"));
  lvSheets_->setAccessibleName(ownText("preview.pages"));
  lvSheets_->setModel(model);
  lvSheets_->setViewMode(QListView::IconMode);
  lvSheets_->setFlow(QListView::LeftToRight);
  lvSheets_->setMovement(QListView::Static);
  // Sizes are known without drawing a page, or all of them would be drawn at once.
  lvSheets_->setUniformItemSizes(true);
  const QSizeF page = sheets_->pageSize();
  const int height = qRound(width * page.height() / page.width());
  const int text = fontMetrics().height() + ui::px(this, ui::space::inside);
  lvSheets_->setIconSize({width, height});
  lvSheets_->setGridSize(
      {width + ui::px(this, 2 * ui::space::inside), height + text + ui::px(this, ui::space::inside)});
  lvSheets_->setFixedWidth(lvSheets_->gridSize().width() + lvSheets_->verticalScrollBar()->sizeHint().width() +
                           2 * lvSheets_->frameWidth() + ui::px(this, ui::space::inGroup));
  lvSheets_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  connect(lvSheets_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](const QModelIndex& current) { showPage(current.row() + 1); });

  lblPage_->setObjectName(name("lblPage"));
  lblPage_->setAlignment(Qt::AlignCenter);
  areaPage_->setObjectName(name("areaPage"));
  ui::setAccessibleRole(*areaPage_, QAccessible::Graphic);
  areaPage_->setAccessibleName(ownText("preview.page"));
  areaPage_->setAlignment(Qt::AlignCenter);
  areaPage_->setWidget(lblPage_);
  areaPage_->setBackgroundRole(QPalette::Mid);
  areaPage_->installEventFilter(this);
}

void ReportPreview::requestPrint() {
  accept();
  Q_EMIT printRequested();
}

void ReportPreview::showPage(int page) {
  page = std::clamp(page, 1, std::max(1, sheets_->count()));
  if (page == page_) return;
  page_ = page;
  txtPage_->setValue(page);
  lvSheets_->setCurrentIndex(lvSheets_->model()->index(page - 1, 0));
  for (QToolButton* back : {btFirst_, btPrevious_}) back->setEnabled(page > 1);
  for (QToolButton* on : {btNext_, btLast_}) on->setEnabled(page < sheets_->count());
  areaPage_->verticalScrollBar()->setValue(0);
  drawPage();
}

void ReportPreview::setZoom(Zoom zoom) {
  zoom_ = zoom;
  drawPage();
}

void ReportPreview::setZoomPercent(int wanted) {
  zoom_ = Zoom::fixed;
  fixedDotsPerInch_ = std::clamp(wanted, minPercent, maxPercent) * logicalDpiX() / static_cast<qreal>(percent);
  drawPage();
}

int ReportPreview::zoomPercent() const {
  return qRound(dotsPerInch() * percent / logicalDpiX());
}

qreal ReportPreview::dotsPerInch() const {
  if (zoom_ == Zoom::fixed) return fixedDotsPerInch_;
  const QSizeF page = sheets_->pageSize();
  // As if there were a scroll bar: otherwise it would change the width by which it is decided.
  const int margin = ui::px(this, 2 * ui::space::inside);
  const QSize room = areaPage_->size() - QSize(margin + areaPage_->verticalScrollBar()->sizeHint().width(), margin);
  const qreal byWidth = room.width() * pointsPerInch / page.width();
  const qreal byHeight = room.height() * pointsPerInch / page.height();
  const qreal wanted = zoom_ == Zoom::fitWidth ? byWidth : std::min(byWidth, byHeight);
  return std::max(wanted, minPercent * logicalDpiX() / static_cast<qreal>(percent));
}

void ReportPreview::drawPage() {
  if (page_ == 0) return;
  try {
    QImage picture = sheets_->picture(page_, dotsPerInch() * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    lblPage_->setPixmap(QPixmap::fromImage(std::move(picture)));
  } catch (const Error& error) {
    lblPage_->setText(fromUtf8(error.description()));
  } catch (const std::exception& failure) {
    lblPage_->setText(QString::fromLocal8Bit(failure.what()));
  }
  lblPage_->adjustSize();
  lblZoom_->setText(QStringLiteral("%1 %").arg(zoomPercent()));
}

void ReportPreview::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  if (zoom_ != Zoom::fixed) drawPage();
}

/// The page keys scroll through a page that is larger than the window, and then go on to its neighbour.
bool ReportPreview::eventFilter(QObject* watched, QEvent* event) {
  if (watched != areaPage_ || event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  QScrollBar& bar = *areaPage_->verticalScrollBar();
  if (key == Qt::Key_PageDown && bar.value() == bar.maximum()) {
    showPage(page_ + 1);
    return true;
  }
  if (key == Qt::Key_PageUp && bar.value() == bar.minimum()) {
    const int before = page_;
    showPage(page_ - 1);
    if (page_ != before) bar.setValue(bar.maximum());
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

void ReportPreview::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Print)) return requestPrint();
  const bool control = event->modifiers().testFlag(Qt::ControlModifier);
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (auto* const button = qobject_cast<QAbstractButton*>(focusWidget())) button->click();
      return;
    case Qt::Key_PageDown:
      return showPage(page_ + 1);
    case Qt::Key_PageUp:
      return showPage(page_ - 1);
    case Qt::Key_Home:
      return showPage(1);
    case Qt::Key_End:
      return showPage(sheets_->count());
    case Qt::Key_Plus:
    case Qt::Key_Equal:  // plus without shift on many keyboards
      if (control) return setZoomPercent(qRound(zoomPercent() * zoomStep));
      break;
    case Qt::Key_Minus:
      if (control) return setZoomPercent(qRound(zoomPercent() / zoomStep));
      break;
    case Qt::Key_0:
      if (control) return setZoom(Zoom::fitPage);
      break;
    default:
      break;
  }
  QDialog::keyPressEvent(event);
}

}  // namespace korvel::control
