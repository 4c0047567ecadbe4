// Fields, frames of lists, group boxes, scroll bars and progress bars.
#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <algorithm>
#include <array>

#include "ui/style/style_parts.h"

namespace korvel::ui {
namespace {

/// Background and border of a field. The border has the accent colour whenever the field has the focus, also after a
/// click, because the caret is there.
void drawFieldFrame(const Canvas& canvas, const QRectF& rect, bool focused) {
  const Theme& theme = canvas.theme;
  const QColor& ground = canvas.enabled() ? theme.surface : theme.window;
  const bool ring = focused && canvas.enabled();
  drawRounded(canvas.painter, rect, canvas.px(space::radius), ground, ring ? theme.accent : theme.border,
              ring ? canvas.px(1) * 1.5 : canvas.px(1));
}

bool drawLineEdit(const Canvas& canvas) {
  const auto* frame = canvas.as<QStyleOptionFrame>();
  if (frame == nullptr) return false;
  if (frame->lineWidth <= 0) return true;  // inside a spin box or combo box, which draws the frame
  drawFieldFrame(canvas, QRectF(canvas.option.rect), canvas.has(QStyle::State_HasFocus));
  return true;
}

bool drawFrame(const Canvas& canvas) {
  const bool list = qobject_cast<const QAbstractScrollArea*>(canvas.widget) != nullptr;
  // A view with a current item shows its focus there.
  const auto* view = qobject_cast<const QAbstractItemView*>(canvas.widget);
  const bool shownWithin = view != nullptr && view->currentIndex().isValid();
  const bool focused = list && canvas.widget->hasFocus() && canvas.enabled() && !shownWithin;
  drawRounded(canvas.painter, QRectF(canvas.option.rect), canvas.px(3), list ? canvas.theme.surface : QColor(),
              focused ? canvas.theme.accent : canvas.theme.border, canvas.px(1));
  return true;
}

bool drawGroupBox(const Canvas& canvas) {
  const auto* box = canvas.as<QStyleOptionGroupBox>();
  if (box == nullptr || box->subControls.testFlag(QStyle::SC_GroupBoxCheckBox)) return false;
  const Theme& theme = canvas.theme;
  drawRounded(canvas.painter, QRectF(box->rect), canvas.px(space::cardRadius), theme.surface, theme.border,
              canvas.px(1));
  if (box->text.isEmpty()) return true;
  const QRect room = canvas.style.subControlRect(QStyle::CC_GroupBox, box, QStyle::SC_GroupBoxLabel, canvas.widget);
  canvas.painter.save();
  canvas.painter.setFont(caption(canvas.widget != nullptr ? canvas.widget->font() : canvas.painter.font()));
  canvas.painter.setPen(canvas.enabled() ? theme.muted : theme.disabled);
  const QString text =
      canvas.painter.fontMetrics().elidedText(box->text, Qt::ElideRight, room.width(), Qt::TextShowMnemonic);
  const int side = box->direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
  canvas.painter.drawText(room, side | Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, text);
  canvas.painter.restore();
  return true;
}

bool drawScrollBar(const Canvas& canvas) {
  const auto* bar = canvas.as<QStyleOptionSlider>();
  if (bar == nullptr) return false;
  const Theme& theme = canvas.theme;
  canvas.painter.fillRect(bar->rect, theme.surface);
  if (bar->maximum <= bar->minimum) return true;
  QRectF handle(canvas.style.subControlRect(QStyle::CC_ScrollBar, bar, QStyle::SC_ScrollBarSlider, canvas.widget));
  const bool held = bar->activeSubControls.testFlag(QStyle::SC_ScrollBarSlider) && canvas.has(QStyle::State_Sunken);
  const qreal across = canvas.px(held || canvas.hovered() ? 2 : 3);
  const qreal along = canvas.px(2);
  if (bar->orientation == Qt::Horizontal) {
    handle.adjust(along, across, -along, -across);
  } else {
    handle.adjust(across, along, -across, -along);
  }
  const qreal radius = std::min(handle.width(), handle.height()) / 2;
  const QColor resting = mixed(theme.surface, theme.control, 0.75);
  drawRounded(canvas.painter, handle, radius, held || canvas.hovered() ? theme.control : resting);
  return true;
}

bool drawComboBox(const Canvas& canvas) {
  const auto* combo = canvas.as<QStyleOptionComboBox>();
  if (combo == nullptr) return false;
  const bool editing = combo->editable && canvas.has(QStyle::State_HasFocus);
  if (combo->frame) drawFieldFrame(canvas, QRectF(combo->rect), editing || canvas.has(QStyle::State_HasFocus));
  if (combo->subControls.testFlag(QStyle::SC_ComboBoxArrow)) {
    const QRect arrow =
        canvas.style.subControlRect(QStyle::CC_ComboBox, combo, QStyle::SC_ComboBoxArrow, canvas.widget);
    drawChevron(canvas.painter, QRectF(arrow), Qt::DownArrow,
                canvas.enabled() ? canvas.theme.muted : canvas.theme.disabled, canvas.px(8));
  }
  return true;
}

bool drawSpinBox(const Canvas& canvas) {
  const auto* spin = canvas.as<QStyleOptionSpinBox>();
  if (spin == nullptr) return false;
  const Theme& theme = canvas.theme;
  if (spin->frame) drawFieldFrame(canvas, QRectF(spin->rect), canvas.has(QStyle::State_HasFocus));
  if (spin->buttonSymbols == QAbstractSpinBox::NoButtons) return true;
  struct Step {
    QStyle::SubControl part;
    QAbstractSpinBox::StepEnabledFlag flag;
    Qt::ArrowType arrow;
  };
  constexpr std::array<Step, 2> steps{{{QStyle::SC_SpinBoxUp, QAbstractSpinBox::StepUpEnabled, Qt::UpArrow},
                                       {QStyle::SC_SpinBoxDown, QAbstractSpinBox::StepDownEnabled, Qt::DownArrow}}};
  for (const Step& step : steps) {
    const QRect rect = canvas.style.subControlRect(QStyle::CC_SpinBox, spin, step.part, canvas.widget);
    const bool usable = canvas.enabled() && spin->stepEnabled.testFlag(step.flag);
    if (usable && spin->activeSubControls == step.part) {
      drawRounded(canvas.painter, QRectF(rect).adjusted(1, 1, -2, -1), canvas.px(2),
                  canvas.has(QStyle::State_Sunken) ? theme.pressed : theme.hover);
    }
    drawChevron(canvas.painter, QRectF(rect), step.arrow, usable ? theme.muted : theme.disabled, canvas.px(6));
  }
  return true;
}

bool drawProgressGroove(const Canvas& canvas) {
  drawRounded(canvas.painter, QRectF(canvas.option.rect), canvas.px(space::radius), canvas.theme.header,
              canvas.theme.border, canvas.px(1));
  return true;
}

bool drawProgress(const Canvas& canvas) {
  const auto* bar = canvas.as<QStyleOptionProgressBar>();
  if (bar == nullptr || !bar->state.testFlag(QStyle::State_Horizontal)) return false;
  const QRectF rect(bar->rect);
  QRectF done = rect;
  if (bar->maximum > bar->minimum) {
    const double share =
        (static_cast<double>(bar->progress) - bar->minimum) / (static_cast<double>(bar->maximum) - bar->minimum);
    done.setWidth(rect.width() * std::clamp(share, 0.0, 1.0));
  } else {
    done = rect.adjusted(rect.width() * 0.3, 0, -rect.width() * 0.3, 0);  // busy, of unknown length
  }
  if (bar->direction == Qt::RightToLeft) done.moveRight(rect.right());
  if (done.width() >= 1) drawRounded(canvas.painter, done, canvas.px(space::radius), canvas.theme.fill);
  return true;
}

/// The label is drawn twice, in one colour on the filled part of the bar and in another one on the rest, so that it
/// stays readable wherever the edge is.
bool drawProgressLabel(const Canvas& canvas) {
  const auto* bar = canvas.as<QStyleOptionProgressBar>();
  if (bar == nullptr || !bar->textVisible || !bar->state.testFlag(QStyle::State_Horizontal)) return false;
  double share = 0;
  if (bar->maximum > bar->minimum) {
    share = (static_cast<double>(bar->progress) - bar->minimum) / (static_cast<double>(bar->maximum) - bar->minimum);
  }
  const QRect rect = bar->rect;
  const int edge = static_cast<int>(rect.width() * std::clamp(share, 0.0, 1.0));
  const bool mirrored = bar->direction == Qt::RightToLeft;
  const QRect done =
      mirrored ? rect.adjusted(rect.width() - edge, 0, 0, 0) : rect.adjusted(0, 0, edge - rect.width(), 0);
  const QRect rest = mirrored ? rect.adjusted(0, 0, -edge, 0) : rect.adjusted(edge, 0, 0, 0);
  canvas.painter.save();
  for (const auto& [part, ink] : {std::pair{done, canvas.theme.onFill}, std::pair{rest, canvas.theme.text}}) {
    canvas.painter.setClipRect(part);
    canvas.painter.setPen(ink);
    canvas.painter.drawText(rect, Qt::AlignCenter | Qt::TextSingleLine, bar->text);
  }
  canvas.painter.restore();
  return true;
}

constexpr std::array<PrimitivePart, 4> primitives{{
    {QStyle::PE_PanelLineEdit, drawLineEdit},
    {QStyle::PE_FrameLineEdit, drawLineEdit},
    {QStyle::PE_Frame, drawFrame},
    {QStyle::PE_FrameGroupBox, drawNothing},
}};
constexpr std::array<ControlPart, 3> controls{{
    {QStyle::CE_ProgressBarGroove, drawProgressGroove},
    {QStyle::CE_ProgressBarContents, drawProgress},
    {QStyle::CE_ProgressBarLabel, drawProgressLabel},
}};
constexpr std::array<ComplexPart, 4> complexes{{
    {QStyle::CC_GroupBox, drawGroupBox},
    {QStyle::CC_ScrollBar, drawScrollBar},
    {QStyle::CC_ComboBox, drawComboBox},
    {QStyle::CC_SpinBox, drawSpinBox},
}};

}  // namespace

PartTable fieldParts() {
  return {primitives, controls, complexes};
}

}  // namespace korvel::ui
