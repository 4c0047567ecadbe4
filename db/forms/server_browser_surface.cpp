// The browser's elements and their places.
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QResizeEvent>
#include <QStatusBar>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "db/forms/server_browser.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/result_table.h"
#include "ui/screen_measure.h"
#include "ui/shown_text.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::db {
namespace {

using ui::named;
using ui::ScreenMeasure;

constexpr Twips minWidth{5000};
constexpr Twips minHeight{3000};
/// From either edge.
constexpr Twips splitterLimit{500};
constexpr Twips feedbackWidth{40};
constexpr Twips feedbackShorter{20};
constexpr Twips firstSplitter{3600};
constexpr Twips nameColumn{2900};
/// How often the window is enlarged again where the window system makes it too small.
constexpr int maxEnlargements = 3;
constexpr int firstWidth = 760;
constexpr int firstHeight = 460;

}  // namespace

frmSQLServerBrowser::frmSQLServerBrowser(const ServerBrowserContext& context, QWidget* owner)
    : QDialog(owner),
      connection_(context.connection),
      language_(context.language),
      services_(context.services),
      openDirectory_(context.openDirectory),
      splitter_(firstSplitter) {
  setObjectName(QStringLiteral("frmSQLServerBrowser"));
  setWindowTitle(QStringLiteral("SQL Server / Audit Trail Browser"));
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  setModal(true);
  ui::applyStyle(*this);
  buildViewBar();
  buildRightPane();
  buildSplitter();
  buildFoot(context.memory);

  clearDatabases();
  std::vector<QWidget*> order = {
      &SmartViewBar_->items(), ServerLocation_[0], ServerLocation_[1], txtServer_, btServer_, lvListView_};
  if (btRecent_ != nullptr) order.push_back(btRecent_);
  order.insert(order.end(), {cmdOK_, cmdCancel_});
  for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
  SmartViewBar_->items().setFocus();
  if (context.memory.splitter) splitter_ = *context.memory.splitter;
  resize(ui::px(this, firstWidth), ui::px(this, firstHeight));
}

void frmSQLServerBrowser::buildViewBar() {
  SmartViewBar_ = named(new db::SmartViewBar(QStringLiteral("SQL Servers"), this), "SmartViewBar");
  connect(SmartViewBar_, &SmartViewBar::itemClicked, this, [this] { SmartViewBar_ItemClick(); });
  connect(SmartViewBar_, &SmartViewBar::selectionMoved, this, [this] { SmartViewBar_SelectionMove(); });
}

void frmSQLServerBrowser::buildRightPane() {
  rightPane_ = new QWidget(this);
  lblInfo_ = named(new QLabel(QStringLiteral("Select desired SQL Server for audit trail viewing")), "lblInfo");
  lblInfo_->setWordWrap(true);

  auto* locations = new QHBoxLayout;
  locations->setSpacing(2 * ui::px(this, ui::space::between));
  const char* const captions[] = {"Local Servers", "ALL Servers"};
  for (std::size_t i = 0; i < ServerLocation_.size(); ++i) {
    ServerLocation_.at(i) = new QRadioButton(QLatin1String(captions[i]));
    ServerLocation_.at(i)->setObjectName(QStringLiteral("ServerLocation%1").arg(i));
    locations->addWidget(ServerLocation_.at(i));
  }
  // The local servers first: they are listed at once.
  ServerLocation_[0]->setChecked(true);
  for (QRadioButton* location : ServerLocation_)
    connect(location, &QRadioButton::toggled, this, [this](bool chosen) {
      if (chosen) ServerLocation_Click();
    });
  locations->addStretch(1);

  txtServer_ = named(new QLineEdit, "txtServer");
  txtServer_->setPlaceholderText(ownText("browser.otherServer"));
  txtServer_->setAccessibleName(ownText("browser.otherServer"));
  txtServer_->installEventFilter(this);
  btServer_ = named(new ui::IconButton(ui::IconName::NextPage), "btServer");
  btServer_->setToolTip(ownText("browser.listDatabases"));
  btServer_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  btServer_->installEventFilter(this);
  connect(btServer_, &QToolButton::clicked, this, [this] { txtServer_Enter(); });
  auto* typed = new QHBoxLayout;
  typed->setSpacing(ui::px(this, ui::space::inGroup));
  typed->addWidget(txtServer_, 1);
  typed->addWidget(btServer_);

  databases_.setHorizontalHeaderLabels({QStringLiteral("Current Databases"), QStringLiteral("Database Path")});
  lvListView_ = named(new ui::ResultTable, "lvListView");
  lvListView_->setModel(&databases_);
  lvListView_->setAccessibleName(QStringLiteral("Current Databases"));
  lvListView_->setSelectionMode(QAbstractItemView::SingleSelection);
  lvListView_->header()->setSectionsMovable(false);
  lvListView_->header()->setSectionsClickable(false);
  lvListView_->header()->setStretchLastSection(true);
  // Its own minimum height does not fit into the smallest window.
  lvListView_->setMinimumHeight(minListHeight());
  lvListView_->setColumnWidth(0, ScreenMeasure(*this).horizontal(nameColumn));
  lvListView_->installEventFilter(this);
  connect(lvListView_, &QTableView::doubleClicked, this, [this] { cmdOK_Click(); });

  auto* column = new QVBoxLayout(rightPane_);
  column->setContentsMargins({});
  column->setSpacing(ui::px(this, ui::space::between));
  column->addWidget(lblInfo_);
  column->addLayout(locations);
  column->addLayout(typed);
  column->addWidget(lvListView_, 1);
}

void frmSQLServerBrowser::buildSplitter() {
  imgSplitterV_ = named(new QWidget(this), "imgSplitterV");
  imgSplitterV_->setCursor(Qt::SplitHCursor);
  imgSplitterV_->installEventFilter(this);
  picSplitterV_ = named(new QWidget(this), "picSplitterV");
  picSplitterV_->setAutoFillBackground(true);
  picSplitterV_->setBackgroundRole(QPalette::Highlight);
  picSplitterV_->setAttribute(Qt::WA_TransparentForMouseEvents);
  picSplitterV_->hide();
}

void frmSQLServerBrowser::buildRecent(const BrowserMemory& memory) {
  if (memory.recent.isEmpty()) return;
  btRecent_ = named(new ui::SecondaryButton(ownText("browser.recent")), "btRecent");
  btRecent_->setAutoDefault(false);
  auto* const menu = new QMenu(btRecent_);
  for (const BrowserMemory::Database& each : memory.recent) {
    QString text = each.server + QStringLiteral(" - [") + each.name + QLatin1Char(']');
    text = ui::visibleFormats(text.simplified()).replace(u'&', QStringLiteral("&&"));
    connect(menu->addAction(text), &QAction::triggered, this, [this, each] { btRecent_Choice(each); });
  }
  if (memory.forget) {
    menu->addSeparator();
    connect(menu->addAction(ownText("remembered.forget")), &QAction::triggered, this, [this, forget = memory.forget] {
      forget();
      cmdOK_->setFocus();
      btRecent_->hide();
    });
  }
  btRecent_->setMenu(menu);
}

void frmSQLServerBrowser::buildFoot(const BrowserMemory& memory) {
  Controlspic_ = named(new QWidget(this), "Controlspic");
  cmdOK_ = named(new ui::PrimaryButton, "cmdOK");
  cmdOK_->setText(QStringLiteral("OK"));
  cmdOK_->setDefault(true);
  cmdCancel_ = named(new ui::SecondaryButton(QStringLiteral("Cancel")), "cmdCancel");
  cmdCancel_->setAutoDefault(false);
  connect(cmdOK_, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
  connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
  auto* row = new QHBoxLayout(Controlspic_);
  row->setContentsMargins({});
  row->setSpacing(ui::px(this, ui::space::between));
  buildRecent(memory);
  if (btRecent_ != nullptr) row->addWidget(btRecent_);
  row->addStretch(1);
  row->addWidget(cmdOK_);
  row->addWidget(cmdCancel_);

  StatusBar1_ = named(new QStatusBar(this), "StatusBar1");
  StatusBar1_->setSizeGripEnabled(false);
}

void frmSQLServerBrowser::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  if (event->spontaneous() && size() == size().expandedTo(minimumSize())) enlargements_ = 0;
  Form_Resize();
}

void frmSQLServerBrowser::Form_Resize() {
  if (isMinimized()) return;
  const ScreenMeasure measure(*this);
  // Asks the window system for no smaller size.
  setMinimumSize(measure.horizontal(minWidth), measure.vertical(minHeight));
  // Some set one all the same. The new size leads to another call of this function.
  const QSize raised = size().expandedTo(minimumSize());
  if (size() != raised && enlargements_ < maxEnlargements) {
    ++enlargements_;
    resize(raised);
    return;
  }
  // In a window that is too narrow the list keeps its width; the splitter moves back when there is room again.
  const Twips chosen = splitter_;
  const int room = width() - ui::px(this, ui::space::dialog) - ui::px(this, ui::space::between);
  SizeControls(std::min(chosen, measure.horizontalTwips(room - rightPane_->minimumSizeHint().width())));
  splitter_ = chosen;
}

int frmSQLServerBrowser::minListHeight() const {
  return lvListView_->header()->sizeHint().height() + lvListView_->verticalHeader()->defaultSectionSize() +
         2 * lvListView_->frameWidth();
}

int frmSQLServerBrowser::minPaneHeight(int width) const {
  const int lines = ServerLocation_[0]->sizeHint().height() + txtServer_->sizeHint().height();
  return lblInfo_->heightForWidth(width) + lines + lvListView_->minimumHeight() + 3 * ui::px(this, ui::space::between);
}

int frmSQLServerBrowser::withinLimits(int x) const {
  const int limit = ScreenMeasure(*this).horizontal(splitterLimit);
  return std::clamp(x, limit, std::max(limit, width() - limit));
}

void frmSQLServerBrowser::SizeControls(Twips x) {
  const ScreenMeasure measure(*this);
  const int around = ui::px(this, ui::space::dialog);
  const int between = ui::px(this, ui::space::between);
  const int statusHeight = StatusBar1_->sizeHint().height();
  const int footHeight = Controlspic_->sizeHint().height();
  const int split = withinLimits(measure.horizontal(x));
  splitter_ = x;

  const int footTop = height() - statusHeight - between - footHeight;
  // The pane on the right begins where the grip ends.
  const int right = split + between;
  const int paneWidth = std::max(0, width() - around - right);
  const int roomyHeight = footTop - 2 * around;
  // Where not everything fits, the explaining text and the scroll bar are hidden, and margins are smaller.
  const bool fits = minPaneHeight(paneWidth) <= roomyHeight;
  const int close = ui::px(this, ui::space::inGroup);
  const int paneHeight = std::max(0, fits ? roomyHeight : footTop - around - close);
  lblInfo_->setVisible(fits);
  rightPane_->layout()->setSpacing(fits ? between : close);
  lvListView_->setHorizontalScrollBarPolicy(fits ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
  SmartViewBar_->setGeometry(around, around, std::max(0, split - around), paneHeight);
  imgSplitterV_->setGeometry(split, around, between, paneHeight);
  rightPane_->setGeometry(right, around, paneWidth, paneHeight);
  Controlspic_->setGeometry(around, footTop, std::max(0, width() - 2 * around), footHeight);
  StatusBar1_->setGeometry(0, height() - statusHeight, width(), statusHeight);
}

void frmSQLServerBrowser::imgSplitterV_MouseDown() {
  const ScreenMeasure measure(*this);
  const QRect grip = imgSplitterV_->geometry();
  picSplitterV_->setGeometry(grip.left(), grip.top(), measure.horizontal(feedbackWidth),
                             std::max(0, grip.height() - measure.vertical(feedbackShorter)));
  picSplitterV_->raise();
  picSplitterV_->show();
  dragging_ = true;
}

void frmSQLServerBrowser::imgSplitterV_MouseMove(int x) {
  if (dragging_) picSplitterV_->move(withinLimits(imgSplitterV_->geometry().left() + x), picSplitterV_->y());
}

void frmSQLServerBrowser::imgSplitterV_MouseUp() {
  if (!dragging_) return;
  SizeControls(ScreenMeasure(*this).horizontalTwips(picSplitterV_->x()));
  picSplitterV_->hide();
  dragging_ = false;
}

}  // namespace korvel::db
