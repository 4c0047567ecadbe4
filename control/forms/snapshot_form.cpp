#include "control/forms/snapshot_form.h"

#include <QAccessible>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "base/files.h"
#include "control/texts.h"
#include "db/worker.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

using ui::named;

constexpr int firstWidth = 560;
constexpr int progressSteps = 1000;

QString shownPath(const std::filesystem::path& path) {
  return QDir::toNativeSeparators(QString::fromStdU16String(path.u16string()));
}

}  // namespace

SnapshotForm::SnapshotForm(QWidget* owner) : QDialog(owner) {
  setObjectName(QStringLiteral("frmSnapshot"));
  ui::applyStyle(*this);
  buildContent();
  buildFoot();
  ui::setFirstSize(*this, firstWidth, 0);
}

void SnapshotForm::buildContent() {
  auto* column = ui::styleDialog(*this);
  lblIntro_ = named(new QLabel, "lblIntro");
  lblTrail_ = named(new QLabel, "lblTrail");
  lblState_ = named(new QLabel, "lblState");
  for (QLabel* label : {lblIntro_, lblTrail_, lblState_}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
  }
  ui::setMuted(*lblIntro_);
  lblTrail_->setFont(ui::semiBold(font()));
  optWhole_ = named(new QRadioButton, "optWhole");
  optRange_ = named(new QRadioButton, "optRange");
  lblFolder_ = named(new QLabel, "lblFolder");
  txtFolder_ = named(new QLineEdit, "txtFolder");
  lblFolder_->setBuddy(txtFolder_);
  btBrowse_ = named(new ui::SecondaryButton, "btBrowse");
  btBrowse_->setAutoDefault(false);
  chkBag_ = named(new QCheckBox, "chkBag");
  progress_ = named(new QProgressBar, "progress");
  progress_->setTextVisible(false);
  auto* folder = new QHBoxLayout;
  folder->setSpacing(ui::px(this, ui::space::inside));
  folder->addWidget(lblFolder_);
  folder->addWidget(txtFolder_, 1);
  folder->addWidget(btBrowse_);
  for (QWidget* each : std::initializer_list<QWidget*>{lblIntro_, lblTrail_, optWhole_, optRange_})
    column->addWidget(each);
  column->addLayout(folder);
  for (QWidget* each : std::initializer_list<QWidget*>{chkBag_, progress_, lblState_}) column->addWidget(each);
  column->addStretch(1);
  connect(btBrowse_, &QPushButton::clicked, this, [this] { browse(); });
  connect(txtFolder_, &QLineEdit::textChanged, this, [this] {
    taken_.reset();
    showState();
  });
  connect(txtFolder_, &QLineEdit::editingFinished, this, [this] { sayUnfinished(); });
  connect(chkBag_, &QCheckBox::toggled, this, [this] { sayUnfinished(); });
}

void SnapshotForm::buildFoot() {
  btOpen_ = named(new ui::SecondaryButton, "btOpen");
  btClose_ = named(new ui::SecondaryButton, "btClose");
  btStop_ = named(new ui::SecondaryButton, "btStop");
  btTake_ = named(new ui::PrimaryButton, "btTake");
  for (QPushButton* button : {btOpen_, btClose_, btStop_}) button->setAutoDefault(false);
  btTake_->setDefault(true);
  connect(btTake_, &QPushButton::clicked, this, [this] { take(); });
  connect(btStop_, &QPushButton::clicked, this, [this] {
    work_.requestStop();
    showState();
  });
  connect(btClose_, &QPushButton::clicked, this, &QDialog::reject);
  connect(btOpen_, &QPushButton::clicked, this, [this] {
    const auto taken = taken_;
    if (!taken) return;
    accept();
    Q_EMIT openRequested(shownPath(taken->file.parent_path()), fromUtf8(taken->facts.source.database));
  });
  auto* foot = new QHBoxLayout;
  foot->setSpacing(ui::px(this, ui::space::inside));
  foot->addWidget(btOpen_);
  foot->addStretch(1);
  for (QPushButton* button : {btClose_, btStop_, btTake_}) foot->addWidget(button);
  static_cast<QVBoxLayout*>(layout())->addLayout(foot);
}

void SnapshotForm::setTexts() {
  setWindowTitle(ownText("snapshot.title"));
  lblIntro_->setText(ownText("snapshot.intro"));
  lblTrail_->setText(ownText("snapshot.of").arg(fromUtf8(order_.source.database), fromUtf8(order_.source.server)));
  ui::setButtonText(*optWhole_, ownText("snapshot.whole"));
  const auto dayOf = [](const std::string& moment) {
    constexpr qsizetype dayLength = 10;
    return fromUtf8(moment).left(dayLength);
  };
  ui::setButtonText(
      *optRange_,
      range_.DateRangeActive
          ? ownText("snapshot.range").arg(dayOf(query::fromDateText(range_)), dayOf(query::toDateText(range_)))
          : ownText("snapshot.noRange"));
  optRange_->setEnabled(range_.DateRangeActive);
  lblFolder_->setText(ownText("snapshot.folder"));
  txtFolder_->setAccessibleName(lblFolder_->text().remove(QLatin1Char('&')));
  ui::setButtonText(*btBrowse_, ownText("snapshot.browse"));
  ui::setButtonText(*chkBag_, ownText("snapshot.bag"));
  ui::setButtonText(*btTake_, ownText("snapshot.take"));
  ui::setButtonText(*btStop_, ownText("snapshot.stop"));
  ui::setButtonText(*btClose_, ownText("snapshot.close"));
  ui::setButtonText(*btOpen_, ownText("snapshot.open"));
  progress_->setAccessibleName(ownText("snapshot.progressName"));
}

void SnapshotForm::offer(evidence::SnapshotOrder order, const query::DateRange& range) {
  if (!isTaking()) {
    order_ = std::move(order);
    range_ = range;
    taken_.reset();
    setTexts();
    (range_.DateRangeActive ? optRange_ : optWhole_)->setChecked(true);
    say({});
    sayUnfinished();
    showState();
    ui::growToTexts(*this);
    txtFolder_->setFocus();
  }
  show();
  raise();
  activateWindow();
}

evidence::SnapshotOrder SnapshotForm::wholeOrder() const {
  evidence::SnapshotOrder order = order_;
  order.folder = toPath(txtFolder_->text().trimmed());
  order.asBag = chkBag_->isChecked();
  if (optRange_->isChecked() && range_.DateRangeActive) {
    order.source.from = query::fromDateText(range_);
    order.source.to = query::toDateText(range_);
  }
  return order;
}

void SnapshotForm::browse() {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<SnapshotForm> alive(this);
  const auto folder =
      services->chooseFolder(this, ownText("snapshot.folder").remove(u'&').remove(u':').trimmed(), false);
  if (!alive || !folder) return;
  txtFolder_->setText(QDir::toNativeSeparators(*folder));
  sayUnfinished();
}

/// Before anything is done, and on a worker: a folder in the network may not answer for long.
void SnapshotForm::sayUnfinished() {
  look_.stop();
  if (isTaking() || taken_) return;
  say({});
  if (txtFolder_->text().trimmed().isEmpty()) return;
  const auto isThere = std::make_shared<bool>(false);
  const auto look = [order = wholeOrder()](const std::stop_token& /*left*/) {
    std::error_code failure;
    return std::filesystem::exists(files::status(evidence::unfinishedSnapshot(order), failure));
  };
  look_.start(
      [isThere, look](const std::stop_token& stop) {
        skipFailing([&] { *isThere = db::runOnWorker(look, [&] { return !stop.stop_requested(); }).value_or(false); });
      },
      [this, isThere] {
        if (*isThere && !isTaking() && !taken_) say(ownText("snapshot.willContinue"));
      });
}

void SnapshotForm::take() {
  if (isTaking() || txtFolder_->text().trimmed().isEmpty()) return;
  // The worker owns all that it uses.
  const auto order = std::make_shared<const evidence::SnapshotOrder>(wholeOrder());
  const auto taken = std::make_shared<evidence::TakenSnapshot>();
  look_.stop();
  taken_.reset();
  work_.start(
      [order, taken](LongWork::Watch& watch) {
        *taken = evidence::takeSnapshot(
            *order, [&watch](std::uint64_t rows, std::uint64_t ofRows) { LongWork::tell(watch, 0, rows, ofRows); });
      },
      [this] { showProgress(); },
      [this, taken](LongWork::Ending ending) {
        if (ending == LongWork::Ending::done) taken_ = taken;
        finish(ending);
      });
  showState();
  showProgress();
  btStop_->setFocus();
}

void SnapshotForm::showProgress() {
  const LongWork::Watch& watch = work_.watch();
  const std::uint64_t rows = watch.done;
  const std::uint64_t expected = watch.expected;
  // Of unknown length while the rows are counted, and while indexes are made.
  const bool isCopying = expected > 0 && rows < expected;
  progress_->setRange(0, isCopying ? progressSteps : 0);
  if (isCopying)
    progress_->setValue(static_cast<int>(static_cast<double>(rows) / static_cast<double>(expected) * progressSteps));
  const QString text = watch.stops     ? ownText("snapshot.stopping")
                       : expected == 0 ? ownText("snapshot.starting")
                       : isCopying     ? ownText("snapshot.progress").arg(countText(rows), countText(expected))
                                       : ownText("snapshot.finishing").arg(countText(rows));
  ui::showSelectable(*lblState_, text);
}

void SnapshotForm::finish(LongWork::Ending ending) {
  QString said;
  switch (ending) {
    case LongWork::Ending::done:
      said = ownText("snapshot.done")
                 .arg(countText(taken_->facts.rows), fromUtf8(evidence::hexText(taken_->facts.digest)),
                      shownPath(taken_->file.parent_path()));
      if (taken_->continuedAt > 0)
        said += QLatin1Char(' ') + ownText("snapshot.continued").arg(countText(taken_->continuedAt));
      break;
    case LongWork::Ending::stopped:
      said = ownText("snapshot.stopped").arg(countText(work_.watch().done));
      break;
    case LongWork::Ending::failed:
      said = failureText(*work_.failure());
      break;
  }
  showState();
  say(said);
  (taken_ ? btOpen_ : btTake_)->setFocus();
}

void SnapshotForm::say(const QString& text) {
  ui::showSelectable(*lblState_, text);
  ui::growToTexts(*this);
  if (text.isEmpty() || !isVisible()) return;
  QAccessibleEvent alert(lblState_, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void SnapshotForm::showState() {
  const bool isTaking = this->isTaking();
  for (QWidget* each : std::initializer_list<QWidget*>{optWhole_, txtFolder_, btBrowse_, chkBag_})
    each->setEnabled(!isTaking);
  optRange_->setEnabled(!isTaking && range_.DateRangeActive);
  progress_->setVisible(isTaking);
  btStop_->setVisible(isTaking);
  btStop_->setEnabled(isTaking && !work_.watch().stops);
  btTake_->setVisible(!isTaking);
  btTake_->setEnabled(!txtFolder_->text().trimmed().isEmpty());
  btOpen_->setVisible(taken_ != nullptr);
}

}  // namespace korvel::control
