#include "control/forms/comparison_form.h"

#include <QAccessible>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

#include "control/texts.h"
#include "db/connection_string.h"
#include "db/worker.h"
#include "evidence/snapshot_reader.h"
#include "query/query_failure.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

using ui::named;

constexpr int firstWidth = 560;
constexpr int progressSteps = 1000;
constexpr std::uint64_t megabyte = 1'000'000;

enum Stage : int { starting, verifying, comparing };

QString placeText(const std::string& server, const std::string& database) {
  return fromUtf8(server) + QStringLiteral(", ") + fromUtf8(database);
}

}  // namespace

ComparisonForm::ComparisonForm(QWidget* owner) : QDialog(owner) {
  setObjectName(QStringLiteral("frmComparison"));
  ui::applyStyle(*this);
  buildContent();
  buildFoot();
  ui::setFirstSize(*this, firstWidth, 0);
}

void ComparisonForm::buildContent() {
  auto* column = ui::styleDialog(*this);
  lblFile_ = named(new QLabel, "lblFile");
  txtFile_ = named(new QLineEdit, "txtFile");
  lblFile_->setBuddy(txtFile_);
  btBrowse_ = named(new ui::SecondaryButton, "btBrowse");
  btBrowse_->setAutoDefault(false);
  lblFacts_ = named(new QLabel, "lblFacts");
  lblState_ = named(new QLabel, "lblState");
  for (QLabel* label : {lblFacts_, lblState_}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
  }
  ui::setMuted(*lblFacts_);
  optSelected_ = named(new QRadioButton, "optSelected");
  optOwn_ = named(new QRadioButton, "optOwn");
  progress_ = named(new QProgressBar, "progress");
  progress_->setTextVisible(false);
  auto* file = new QHBoxLayout;
  file->setSpacing(ui::px(this, ui::space::inside));
  file->addWidget(lblFile_);
  file->addWidget(txtFile_, 1);
  file->addWidget(btBrowse_);
  column->addLayout(file);
  for (QWidget* each : std::initializer_list<QWidget*>{lblFacts_, optSelected_, optOwn_, progress_, lblState_})
    column->addWidget(each);
  column->addStretch(1);
  connect(btBrowse_, &QPushButton::clicked, this, [this] { browse(); });
  connect(txtFile_, &QLineEdit::textChanged, this, [this] {
    look_.stop();
    facts_.reset();
    setTexts();
    showState();
  });
  connect(txtFile_, &QLineEdit::editingFinished, this, [this] { lookAtFile(); });
}

void ComparisonForm::buildFoot() {
  btClose_ = named(new ui::SecondaryButton, "btClose");
  btStop_ = named(new ui::SecondaryButton, "btStop");
  btCompare_ = named(new ui::PrimaryButton, "btCompare");
  for (QPushButton* button : {btClose_, btStop_}) button->setAutoDefault(false);
  btCompare_->setDefault(true);
  connect(btCompare_, &QPushButton::clicked, this, [this] { compare(); });
  connect(btStop_, &QPushButton::clicked, this, [this] {
    work_.requestStop();
    showState();
  });
  connect(btClose_, &QPushButton::clicked, this, &QDialog::reject);
  auto* foot = new QHBoxLayout;
  foot->setSpacing(ui::px(this, ui::space::inside));
  foot->addStretch(1);
  for (QPushButton* button : {btClose_, btStop_, btCompare_}) foot->addWidget(button);
  static_cast<QVBoxLayout*>(layout())->addLayout(foot);
}

void ComparisonForm::setTexts() {
  setWindowTitle(ownText("compare.title"));
  lblFile_->setText(ownText("compare.file"));
  txtFile_->setAccessibleName(lblFile_->text().remove(QLatin1Char('&')));
  ui::setButtonText(*btBrowse_, ownText("snapshot.browse"));
  const QString none = loadText(10044).remove(QLatin1Char('&'));
  ui::setButtonText(
      *optSelected_,
      ownText("compare.withSelected")
          .arg(selected_.connectionString.empty() ? none : placeText(selected_.server, selected_.database)));
  ui::setButtonText(*optOwn_, ownText("compare.withOwn")
                                  .arg(facts_ ? placeText(facts_->source.server, facts_->source.database)
                                              : ownText("compare.noSnapshotYet")));
  lblFacts_->setText(facts_ ? ownText("snapshot.isOne")
                                  .arg(fromUtf8(facts_->source.database), fromUtf8(facts_->source.server),
                                       fromUtf8(facts_->begun).replace(u'T', u' '))
                            : QString());
  ui::setButtonText(*btCompare_, ownText("compare.start"));
  ui::setButtonText(*btStop_, ownText("snapshot.stop"));
  ui::setButtonText(*btClose_, ownText("snapshot.close"));
  progress_->setAccessibleName(ownText("snapshot.progressName"));
}

void ComparisonForm::offer(Selected selected, query::Connector connect) {
  if (!isComparing()) {
    selected_ = std::move(selected);
    connect_ = std::move(connect);
    (selected_.connectionString.empty() ? optOwn_ : optSelected_)->setChecked(true);
    setTexts();
    say({});
    showState();
    ui::growToTexts(*this);
    txtFile_->setFocus();
  }
  show();
  raise();
  activateWindow();
}

void ComparisonForm::browse() {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<ComparisonForm> alive(this);
  const auto file =
      services->chooseFile(this, ownText("compare.chooseFile"), ownText("compare.fileKinds"), ui::ChosenFile::read);
  if (!alive || !file) return;
  txtFile_->setText(QDir::toNativeSeparators(*file));
  lookAtFile();
}

void ComparisonForm::lookAtFile() {
  const std::filesystem::path named = toPath(txtFile_->text().trimmed());
  if (isComparing() || facts_ || named.empty()) return;
  struct Looked {
    std::optional<evidence::SnapshotFacts> facts;
    std::optional<Error> failure;
  };
  const auto looked = std::make_shared<Looked>();
  look_.start(
      [looked, named](const std::stop_token& stop) {
        // A folder in the network may not answer for long: the worker is left behind then.
        skipFailing([&] {
          const auto found = db::runOnWorker(
              [named](const std::stop_token& /*left*/) {
                Looked seen;
                seen.failure =
                    query::failureOf([&] { seen.facts = evidence::factsOfSnapshot(evidence::snapshotNamed(named)); });
                return seen;
              },
              [&] { return !stop.stop_requested(); });
          if (found) *looked = *found;
        });
      },
      [this, looked] {
        if (isComparing()) return;
        facts_ = looked->facts;
        setTexts();
        say(looked->failure ? failureText(*looked->failure) : QString());
      });
}

void ComparisonForm::compare() {
  const std::filesystem::path named = toPath(txtFile_->text().trimmed());
  if (isComparing() || named.empty()) return;
  look_.stop();
  evidence::ComparisonOrder order;
  order.connect = connect_;
  // Else what the snapshot says.
  if (optSelected_->isChecked() && !selected_.connectionString.empty()) {
    order.server = selected_.server;
    order.database = selected_.database;
    order.connectionString = selected_.connectionString;
  }
  const auto result = std::make_shared<evidence::ComparedSnapshot>();
  work_.start(
      [order, named, result](LongWork::Watch& watch) {
        evidence::ComparisonOrder whole = order;
        whole.snapshot = evidence::snapshotNamed(named);
        if (whole.connectionString.empty()) {
          const evidence::SnapshotSource source = evidence::factsOfSnapshot(whole.snapshot).source;
          whole.server = source.server;
          whole.database = source.database;
          whole.connectionString = db::buildConnectionString(whole.server, whole.database);
        }
        *result = evidence::compareWithSnapshot(whole, [&watch](const evidence::ComparisonState& state) {
          LongWork::tell(watch, state.isVerifying ? verifying : comparing, state.done, state.expected);
        });
      },
      [this] { showProgress(); }, [this, result](LongWork::Ending ending) { finish(ending, result); });
  showState();
  showProgress();
  btStop_->setFocus();
}

void ComparisonForm::showProgress() {
  const LongWork::Watch& watch = work_.watch();
  const std::uint64_t done = watch.done;
  const std::uint64_t expected = watch.expected;
  progress_->setRange(0, expected > 0 ? progressSteps : 0);
  if (expected > 0)
    progress_->setValue(static_cast<int>(static_cast<double>(done) / static_cast<double>(expected) * progressSteps));
  QString text = ownText("snapshot.starting");
  if (watch.stops)
    text = ownText("snapshot.stopping");
  else if (watch.stage == verifying)
    text = ownText("compare.verifying").arg(countText(done / megabyte));
  else if (watch.stage == comparing)
    text = ownText("compare.progress").arg(countText(done), countText(expected));
  ui::showSelectable(*lblState_, text);
}

void ComparisonForm::finish(LongWork::Ending ending, const Compared& result) {
  showState();
  switch (ending) {
    case LongWork::Ending::done:
      say({});
      accept();
      Q_EMIT compared(result);
      return;
    case LongWork::Ending::stopped:
      say(ownText("compare.stopped"));
      break;
    case LongWork::Ending::failed:
      say(failureText(*work_.failure()));
      break;
  }
  btCompare_->setFocus();
}

void ComparisonForm::say(const QString& text) {
  ui::showSelectable(*lblState_, text);
  ui::growToTexts(*this);
  if (text.isEmpty() || !isVisible()) return;
  QAccessibleEvent alert(lblState_, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void ComparisonForm::showState() {
  const bool isBusy = isComparing();
  for (QWidget* each : std::initializer_list<QWidget*>{txtFile_, btBrowse_, optOwn_}) each->setEnabled(!isBusy);
  optSelected_->setEnabled(!isBusy && !selected_.connectionString.empty());
  progress_->setVisible(isBusy);
  btStop_->setVisible(isBusy);
  btStop_->setEnabled(isBusy && !work_.watch().stops);
  btCompare_->setVisible(!isBusy);
  btCompare_->setEnabled(!txtFile_->text().trimmed().isEmpty());
}

}  // namespace korvel::control
