// Sizes and positions, which layouts ask the style for.
#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <array>

#include "ui/buttons.h"
#include "ui/style/style_parts.h"

namespace korvel::ui {
namespace {

struct Metric {
  QStyle::PixelMetric metric;
  int at96;
};
constexpr std::array<Metric, 34> metrics{{
    {QStyle::PM_DefaultFrameWidth, 1},
    {QStyle::PM_SpinBoxFrameWidth, 1},
    {QStyle::PM_ComboBoxFrameWidth, 1},
    {QStyle::PM_ButtonMargin, 12},
    {QStyle::PM_ButtonShiftHorizontal, 0},
    {QStyle::PM_ButtonShiftVertical, 0},
    {QStyle::PM_ButtonDefaultIndicator, 0},
    {QStyle::PM_ButtonIconSize, space::icon},
    {QStyle::PM_SmallIconSize, space::icon},
    {QStyle::PM_ToolBarIconSize, space::icon},
    {QStyle::PM_IndicatorWidth, space::check},
    {QStyle::PM_IndicatorHeight, space::check},
    {QStyle::PM_ExclusiveIndicatorWidth, space::check},
    {QStyle::PM_ExclusiveIndicatorHeight, space::check},
    {QStyle::PM_CheckBoxLabelSpacing, 6},
    {QStyle::PM_RadioButtonLabelSpacing, 6},
    {QStyle::PM_LayoutHorizontalSpacing, space::between},
    {QStyle::PM_LayoutVerticalSpacing, space::between},
    {QStyle::PM_MenuBarItemSpacing, 0},
    {QStyle::PM_MenuBarHMargin, 4},
    {QStyle::PM_MenuBarVMargin, 2},
    {QStyle::PM_MenuBarPanelWidth, 0},
    {QStyle::PM_MenuHMargin, 0},
    {QStyle::PM_MenuVMargin, 4},
    {QStyle::PM_MenuPanelWidth, 1},
    {QStyle::PM_ToolBarFrameWidth, 0},
    {QStyle::PM_ToolBarItemMargin, 4},
    {QStyle::PM_ToolBarItemSpacing, 0},
    {QStyle::PM_ToolBarSeparatorExtent, 13},
    {QStyle::PM_TabBarTabOverlap, 0},
    {QStyle::PM_TabBarBaseOverlap, 1},
    {QStyle::PM_ScrollBarExtent, 12},
    {QStyle::PM_ScrollBarSliderMin, 28},
    {QStyle::PM_ScrollView_ScrollBarSpacing, 0},
}};

/// Width of a text in semi-bold, by which tabs and headers are measured.
int semiBoldWidth(const QWidget* widget, const QFontMetrics& fallback, const QString& text) {
  constexpr int flags = Qt::TextShowMnemonic;
  if (widget == nullptr) return fallback.size(flags, text).width();
  return QFontMetrics(semiBold(widget->font())).size(flags, text).width();
}

QSize atLeast(QSize size, int width, int height) {
  return size.expandedTo({width, height});
}

}  // namespace

int groupBoxTop(const QWidget* widget, const QString& title) {
  const int inset = px(widget, space::inside);
  if (title.isEmpty()) return inset;
  const int text = widget != nullptr ? QFontMetrics(caption(widget->font())).height() : px(widget, 13);
  return inset + text + px(widget, 6);
}

int ViewerStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
      if (qobject_cast<const QGroupBox*>(widget) != nullptr) return 0;  // the group box adds the margins itself
      if (qobject_cast<const QDialog*>(widget) != nullptr) return px(widget, space::dialog);
      return px(widget, space::inside);
    default:
      break;
  }
  const auto* found =
      std::find_if(metrics.begin(), metrics.end(), [metric](const Metric& one) { return one.metric == metric; });
  return found != metrics.end() ? px(widget, found->at96) : QProxyStyle::pixelMetric(metric, option, widget);
}

int ViewerStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returned) const {
  switch (hint) {
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_ScrollBar_Transient:
    case SH_Slider_SnapToValue:
      return 0;
    case SH_DialogButtonLayout:
      return 0;  // QDialogButtonBox::WinLayout: right-aligned, the default first
    case SH_ItemView_ShowDecorationSelected:
      return 1;
    case SH_ScrollView_FrameOnlyAroundContents:
    case SH_ScrollBar_LeftClickAbsolutePosition:
      return 0;
    case SH_ComboBox_Popup:
      return 0;  // the list opens below the field instead of covering it
    case SH_TabBar_Alignment:
      return Qt::AlignLeft;
    default:
      return QProxyStyle::styleHint(hint, option, widget, returned);
  }
}

QSize ViewerStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                    const QWidget* widget) const {
  const auto scaled = [widget](int at96) { return px(widget, at96); };
  switch (type) {
    case CT_PushButton: {
      const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
      if (button == nullptr) break;
      int width = size.width() + 2 * scaled(8);
      if (button->icon.isNull() && !button->text.isEmpty()) width = std::max(width + 2 * scaled(4), scaled(84));
      return atLeast({width, size.height()}, 0, std::max(scaled(space::button), size.height() + scaled(8)));
    }
    case CT_ToolButton: {
      const auto* tool = qstyleoption_cast<const QStyleOptionToolButton*>(option);
      const bool menu = tool != nullptr && tool->features.testFlag(QStyleOptionToolButton::HasMenu);
      const bool onBar = widget != nullptr && qobject_cast<const QToolBar*>(widget->parentWidget()) != nullptr;
      const int least = scaled(onBar ? 32 : 24);
      return atLeast(size + QSize(scaled(menu ? 20 : 8), scaled(8)), least, least);
    }
    case CT_SpinBox: {
      const QSize base = QProxyStyle::sizeFromContents(type, option, size, widget);
      return {base.width() + scaled(4), std::max(scaled(space::field), size.height())};
    }
    case CT_LineEdit:
    case CT_ComboBox: {
      const QSize base = QProxyStyle::sizeFromContents(type, option, size, widget);
      return {base.width(), std::max(scaled(space::field), size.height() + scaled(8))};
    }
    case CT_TabBarTab: {
      const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
      if (tab == nullptr) break;
      // All tabs have room for the dot and semi-bold text of the current one, so that none moves when the page changes.
      const int text = semiBoldWidth(widget, tab->fontMetrics, tab->text);
      const int height = std::max(scaled(space::tab), tab->fontMetrics.height() + scaled(12));
      return {text + scaled(8 + 6) + 2 * scaled(12), height};
    }
    case CT_HeaderSection: {
      const auto* section = qstyleoption_cast<const QStyleOptionHeader*>(option);
      if (section == nullptr) break;
      const int text = semiBoldWidth(widget, section->fontMetrics, section->text);
      const int height = std::max(scaled(space::listHeader), section->fontMetrics.height() + scaled(8));
      return {text + 2 * scaled(8) + scaled(14), height};  // with room for the sort arrow
    }
    case CT_MenuBarItem:
      return {size.width() + 2 * scaled(10), std::max(scaled(28), size.height() + scaled(8))};
    case CT_MenuItem: {
      const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
      if (item == nullptr) break;
      if (item->menuItemType == QStyleOptionMenuItem::Separator) return {size.width(), scaled(9)};
      const bool shortcut = item->text.contains(QLatin1Char('\t'));
      return {size.width() + scaled(36) + scaled(28) + (shortcut ? scaled(16) : 0),
              std::max(scaled(28), size.height() + scaled(8))};
    }
    case CT_ItemViewItem: {
      const QSize base = QProxyStyle::sizeFromContents(type, option, size, widget);
      return {base.width(), std::max(base.height(), scaled(space::treeRow))};
    }
    case CT_GroupBox:
      return size + QSize(2 * scaled(space::inside), scaled(space::inside));
    default:
      break;
  }
  return QProxyStyle::sizeFromContents(type, option, size, widget);
}

QRect ViewerStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
  if (option == nullptr) return QProxyStyle::subElementRect(element, option, widget);
  if (element == SE_TabWidgetTabContents) {
    // The pages fill the frame; elements on them have margins of their own.
    const int inset = px(widget, 1);
    return proxy()->subElementRect(SE_TabWidgetTabPane, option, widget).adjusted(inset, inset, -inset, -inset);
  }
  if (element == SE_LineEditContents) {
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (frame != nullptr && frame->lineWidth > 0) return option->rect.adjusted(px(widget, 5), 1, -px(widget, 5), -1);
  }
  if (element == SE_ShapedFrameContents && widget != nullptr && widget->property(roomyFrame).toBool()) {
    const int inset = px(widget, space::inGroup);
    return option->rect.adjusted(inset, inset, -inset, -inset);
  }
  return QProxyStyle::subElementRect(element, option, widget);
}

QRect ViewerStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                  const QWidget* widget) const {
  if (control == CC_GroupBox) {
    const auto* box = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
    if (box != nullptr && !box->subControls.testFlag(SC_GroupBoxCheckBox)) {
      const int inset = px(widget, space::inside) + px(widget, 1);
      const int top = groupBoxTop(widget, box->text);
      switch (part) {
        case SC_GroupBoxFrame:
          return box->rect;
        case SC_GroupBoxContents:
          return box->rect.adjusted(inset, top + px(widget, 1), -inset, -inset);
        case SC_GroupBoxLabel:
          return {box->rect.left() + inset + px(widget, 2), box->rect.top() + px(widget, 7),
                  box->rect.width() - 2 * inset, top - px(widget, 8)};
        default:
          break;
      }
    }
  }
  if (control == CC_ScrollBar) {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (bar != nullptr) {
      // There are no buttons at the ends, so the groove takes the whole length.
      const bool across = bar->orientation == Qt::Horizontal;
      const int length = across ? bar->rect.width() : bar->rect.height();
      const qint64 range = static_cast<qint64>(bar->maximum) - bar->minimum;
      int handle = length;
      if (range > 0) {
        handle = static_cast<int>(static_cast<qint64>(length) * bar->pageStep / (range + bar->pageStep));
        handle = std::clamp(handle, std::min(length, px(widget, 28)), length);
      }
      const int start =
          sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - handle, bar->upsideDown);
      const auto stretch = [&](int from, int extent) {
        return across ? QRect(bar->rect.left() + from, bar->rect.top(), extent, bar->rect.height())
                      : QRect(bar->rect.left(), bar->rect.top() + from, bar->rect.width(), extent);
      };
      switch (part) {
        case SC_ScrollBarGroove:
          return bar->rect;
        case SC_ScrollBarSlider:
          return visualRect(bar->direction, bar->rect, stretch(start, handle));
        case SC_ScrollBarSubPage:
          return visualRect(bar->direction, bar->rect, stretch(0, start));
        case SC_ScrollBarAddPage:
          return visualRect(bar->direction, bar->rect, stretch(start + handle, length - start - handle));
        default:
          return {};
      }
    }
  }
  const QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
  // The text of all fields starts at the same distance from the border.
  if ((control == CC_SpinBox && part == SC_SpinBoxEditField) ||
      (control == CC_ComboBox && part == SC_ComboBoxEditField)) {
    return visualRect(option->direction, option->rect,
                      visualRect(option->direction, option->rect, rect).adjusted(px(widget, 2), 0, 0, 0));
  }
  return rect;
}

void ViewerStyle::polish(QWidget* widget) {
  QProxyStyle::polish(widget);
  // Elements with a hover effect need hover events.
  if (qobject_cast<QAbstractButton*>(widget) != nullptr || qobject_cast<QComboBox*>(widget) != nullptr ||
      qobject_cast<QScrollBar*>(widget) != nullptr || qobject_cast<QLineEdit*>(widget) != nullptr) {
    widget->setAttribute(Qt::WA_Hover, true);
  }
  if (qobject_cast<QStatusBar*>(widget) != nullptr) {
    widget->setContentsMargins(px(widget, 10), px(widget, 5), px(widget, 10), px(widget, 4));
  }
}

}  // namespace korvel::ui
