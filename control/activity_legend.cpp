#include "control/activity_legend.h"

#include <QPainter>
#include <QStringList>
#include <algorithm>
#include <utility>

#include "ui/shown_text.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

constexpr int squareSide = 10;

}  // namespace

ActivityLegend::ActivityLegend(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("ActivityLegend"));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ActivityLegend::setEntries(std::vector<Entry> entries, const QString& remark) {
  entries_ = std::move(entries);
  remark_ = remark;
  QStringList lines;
  for (const Entry& entry : entries_) lines << entry.text;
  if (!remark_.isEmpty()) lines << remark_;
  setToolTip(lines.isEmpty() ? QString() : ui::plainToolTip(lines.join(QLatin1Char('\n'))));
  setAccessibleName(lines.join(QStringLiteral("; ")));
  update();
}

QSize ActivityLegend::sizeHint() const {
  return {0, fontMetrics().height()};
}

QSize ActivityLegend::minimumSizeHint() const {
  return sizeHint();
}

void ActivityLegend::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const ui::Theme& theme = ui::Theme::of(*this);
  const QFontMetrics metrics(font());
  const int gap = ui::px(this, ui::space::inGroup);
  const int apart = 2 * ui::px(this, ui::space::inside);
  int right = width();
  if (!remark_.isEmpty()) {
    const QString text = metrics.elidedText(remark_, Qt::ElideRight, width());
    const int length = metrics.horizontalAdvance(text);
    painter.setPen(theme.muted);
    painter.drawText(QRect(right - length, 0, length, height()), Qt::AlignLeft | Qt::AlignVCenter, text);
    right -= length + apart;
  }
  const int side = ui::px(this, squareSide);
  int left = 0;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const int length = metrics.horizontalAdvance(entries_[i].text);
    // Room for the sign that there are more.
    const int more = i + 1 < entries_.size() ? metrics.horizontalAdvance(QChar(0x2026)) : 0;
    painter.setPen(theme.text);
    if (left + side + gap + length + more > right) {
      if (left + more <= right) painter.drawText(left, metrics.ascent(), QString(QChar(0x2026)));
      break;
    }
    painter.fillRect(left, (height() - side) / 2, side, side, entries_[i].color);
    painter.drawText(QRect(left + side + gap, 0, length, height()), Qt::AlignLeft | Qt::AlignVCenter, entries_[i].text);
    left += side + gap + length + apart;
  }
}

}  // namespace korvel::control
