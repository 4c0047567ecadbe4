#include "control/status_panels.h"

#include <QLabel>
#include <QLayout>
#include <QProgressBar>
#include <QPushButton>

#include "control/elided_label.h"
#include "control/texts.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

template <typename Label>
Label* makePanel(const char* name, QWidget* parent) {
  auto* panel = new Label(parent);
  panel->setObjectName(QLatin1String(name));
  panel->setAccessibleName(QLatin1String(name));
  panel->setTextFormat(Qt::PlainText);
  ui::setMuted(*panel);
  return panel;
}

}  // namespace

StatusPanels::StatusPanels(QWidget* parent)
    : QStatusBar(parent),
      ProgressBar1(new QProgressBar(this)),
      LoadAll(new ui::SecondaryButton({}, this)),
      status_(makePanel<ElidedLabel>("Status", this)),
      records_(makePanel<QLabel>("Records", this)) {
  setSizeGripEnabled(false);
  // The count keeps its width; a long status text is cut.
  status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  addWidget(status_, 1);
  LoadAll->setObjectName(QStringLiteral("LoadAll"));
  LoadAll->setAutoDefault(false);
  // The bar keeps its height.
  constexpr int buttonHeight = 24;
  ui::setLineHeight(*LoadAll, buttonHeight);
  addPermanentWidget(LoadAll);
  LoadAll->hide();
  constexpr int progressWidth = 160;
  constexpr int progressHeight = 12;
  ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
  ProgressBar1->setAccessibleName(QStringLiteral("Progress"));
  ProgressBar1->setTextVisible(false);
  ProgressBar1->setFixedWidth(ui::px(this, progressWidth));
  ProgressBar1->setMaximumHeight(ui::px(this, progressHeight));
  addPermanentWidget(ProgressBar1);
  ProgressBar1->hide();
  addPermanentWidget(records_);
}

void StatusPanels::setStatus(const QString& text) {
  status_->setContent(text);
}
QString StatusPanels::status() const {
  return status_->text();
}
void StatusPanels::setRecords(const QString& text) {
  records_->setText(text);
}
void StatusPanels::offerLoadAll(bool offered) {
  LoadAll->setVisible(offered);
}
void StatusPanels::nameLoadAll() {
  LoadAll->setText(ownText("complete.load"));
  LoadAll->setToolTip(ownText("complete.loadHint"));
  LoadAll->setAccessibleName(LoadAll->text());
  LoadAll->setAccessibleDescription(LoadAll->toolTip());
}
void StatusPanels::paintNow() {
  // Shown or hidden panels are laid out by the event loop, which does not run here.
  if (QLayout* const panels = layout()) panels->activate();
  repaint();
}

}  // namespace korvel::control
