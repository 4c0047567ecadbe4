#include "output/pictures/activity_picture.h"

#include <QDate>
#include <QFontMetricsF>
#include <QTextLayout>
#include <QTextOption>
#include <QTime>
#include <algorithm>
#include <cmath>

namespace korvel::output::pictures {

namespace {

using query::Activity;
using query::ActivityBar;

constexpr qreal margin = 16;
constexpr qreal gap = 8;

QColor mixed(const QColor& from, const QColor& to, float share) {
  const auto part = [share](float a, float b) { return a + (b - a) * share; };
  return QColor::fromRgbF(part(from.redF(), to.redF()), part(from.greenF(), to.greenF()),
                          part(from.blueF(), to.blueF()));
}

class ActivityDrawing {
 public:
  ActivityDrawing(const Activity& activity, const QSizeF& size, const ActivityWords& words,
                  const ActivityColors& colors, const QFont& font)
      : activity_(activity), words_(words), colors_(colors), metrics_(font), picture_{size, colors.ground, font} {
    for (const ActivityBar& bar : activity.bars) most_ = std::max(most_, bar.total());
  }

  Picture draw() {
    picture_.title = words_.title;
    qreal top = margin + metrics_.ascent();
    addTitle(top);
    top = addLegend(top + gap + metrics_.height()) + gap + metrics_.descent();
    qreal bottom = picture_.size.height() - margin;
    const qreal numbers =
        metrics_.horizontalAdvance(words_.locale.toString(gridValue(std::max<std::size_t>(most_, 1))));
    plot_.setLeft(std::ceil(margin + numbers + gap));
    plot_.setRight(std::floor(picture_.size.width() - margin));
    bottom = addFoot(bottom, bottom - top - picture_.size.height() / 3);
    plot_.setTop(std::ceil(top));
    plot_.setBottom(std::floor(bottom - metrics_.height() - gap / 2));
    if (plot_.isValid() && !activity_.bars.empty()) {
      addGrid();
      addBars();
      addDates();
    }
    picture_.description = described();
    return std::move(picture_);
  }

 private:
  void addText(QPointF place, TextAnchor anchor, const QString& text, const QColor& color, bool isBold = false) {
    picture_.texts.push_back({place, anchor, text, color, isBold});
  }
  [[nodiscard]] QString numberText(std::size_t number) const {
    return words_.locale.toString(static_cast<qulonglong>(number));
  }
  [[nodiscard]] QColor shade(std::size_t kind) const { return kindColor(colors_, kind, activity_.kindCount()); }
  [[nodiscard]] QString kindText(std::size_t kind) const {
    if (kind == activity_.kinds.size()) return words_.others;
    const results::ShownValue& value = activity_.kinds[kind];
    if (value.isNull) return words_.isNull;
    if (value.text.empty()) return words_.isEmpty;
    constexpr int mostCharacters = 200;
    constexpr qreal widest = 160;
    const QString text = QString::fromUtf8(value.text.data(), static_cast<qsizetype>(value.text.size()))
                             .left(mostCharacters)
                             .simplified();
    return metrics_.elidedText(text, Qt::ElideRight, widest);
  }
  [[nodiscard]] std::size_t totalOf(std::size_t kind) const {
    std::size_t total = 0;
    for (const ActivityBar& bar : activity_.bars) total += bar.counts[kind];
    return total;
  }

  [[nodiscard]] qreal innerWidth() const { return picture_.size.width() - 2 * margin; }
  void addTitle(qreal base) {
    QFont bold = picture_.font;
    bold.setBold(true);
    addText({margin, base}, TextAnchor::start,
            QFontMetricsF(bold).elidedText(words_.title, Qt::ElideRight, innerWidth()), colors_.text, true);
  }

  /// A square and a name for each kind, in as many lines as they need; gives the base of the last line.
  qreal addLegend(qreal base) {
    constexpr qreal square = 10;
    qreal left = margin;
    for (std::size_t kind = 0; kind < activity_.kindCount(); ++kind) {
      const QString text = kindText(kind) + QStringLiteral("  ") + numberText(totalOf(kind));
      // Another program may have another font, which is wider.
      constexpr qreal slack = 1.1;
      const qreal width = square + gap / 2 + metrics_.horizontalAdvance(text) * slack;
      if (left > margin && left + width > picture_.size.width() - margin) {
        left = margin;
        base += metrics_.height();
      }
      picture_.boxes.push_back({{left, std::round(base - square), square, square}, shade(kind)});
      addText({left + square + gap / 2, base}, TextAnchor::start, text, colors_.text);
      left += width + 2 * gap;
    }
    return base;
  }

  [[nodiscard]] QString footText() const {
    QStringList parts;
    if (!words_.remark.isEmpty()) parts << words_.remark;
    // Of bars as wide as a dot or wider each one is seen.
    if (static_cast<qreal>(activity_.bars.size()) > plot_.width()) parts << words_.highest;
    if (activity_.undated > 0) parts << words_.undated.arg(numberText(activity_.undated));
    return parts.join(QStringLiteral(". "));
  }

  /// What a reader has to know, in as many lines as it needs and have room, but in one at least; gives where they
  /// begin.
  qreal addFoot(qreal bottom, qreal room) {
    const QString foot = footText().simplified();
    if (foot.isEmpty()) return bottom;
    // Another program may have another font, which is wider.
    constexpr qreal slack = 1.1;
    const qreal width = innerWidth() / slack;
    const int most = std::max(1, static_cast<int>(room / metrics_.height()));
    QTextLayout layout(foot, picture_.font);
    QTextOption wrapped;
    wrapped.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(wrapped);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid() && lines.size() < most; line = layout.createLine()) {
      line.setLineWidth(width);
      const bool isLast = lines.size() + 1 == most;
      lines << (isLast ? metrics_.elidedText(foot.mid(line.textStart()), Qt::ElideRight, width)
                       : foot.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    bottom -= static_cast<qreal>(lines.size()) * metrics_.height();
    for (int i = 0; i < lines.size(); ++i)
      addText({margin, bottom + i * metrics_.height() + metrics_.ascent()}, TextAnchor::start, lines[i], colors_.muted);
    return bottom - gap / 2;
  }

  void addGrid() {
    const std::size_t value = gridValue(most_);
    const qreal y = std::round(yOf(value)) + 0.5;
    picture_.lines.push_back({{plot_.left(), y, plot_.right(), y}, colors_.grid});
    const qreal half = (metrics_.ascent() - metrics_.descent()) / 2;
    addText({plot_.left() - gap, y + half}, TextAnchor::end, numberText(value), colors_.muted);
    const qreal zero = plot_.bottom() + 0.5;
    picture_.lines.push_back({{plot_.left(), zero, plot_.right(), zero}, colors_.muted});
    addText({plot_.left() - gap, zero + half}, TextAnchor::end, numberText(0), colors_.muted);
  }

  [[nodiscard]] qreal yOf(std::size_t count) const {
    return plot_.bottom() - plot_.height() * static_cast<qreal>(count) / static_cast<qreal>(most_);
  }
  [[nodiscard]] qreal xOf(std::size_t bar) const {
    return plot_.left() +
           std::round(plot_.width() * static_cast<qreal>(bar) / static_cast<qreal>(activity_.bars.size()));
  }

  void addBars() {
    for (std::size_t first = 0; first < activity_.bars.size();) {
      // Bars that share a dot: the highest of them is drawn.
      std::size_t end = first + 1;
      std::size_t highest = first;
      while (end < activity_.bars.size() && xOf(end + 1) <= xOf(first) + 1) {
        if (activity_.bars[end].total() > activity_.bars[highest].total()) highest = end;
        ++end;
      }
      addBar(activity_.bars[highest], xOf(first), std::max(xOf(end), xOf(first) + 1));
      first = end;
    }
  }
  void addBar(const ActivityBar& bar, qreal left, qreal right) {
    constexpr qreal wideEnough = 4;
    const qreal width = right - left - (right - left >= wideEnough ? 1 : 0);
    std::size_t below = 0;
    for (std::size_t kind = 0; kind < bar.counts.size(); ++kind) {
      if (bar.counts[kind] == 0) continue;
      const qreal base = yOf(below);
      below += bar.counts[kind];
      // A bar that has rows can be seen.
      const qreal height = below == bar.counts[kind] ? std::max(base - yOf(below), 1.0) : base - yOf(below);
      picture_.boxes.push_back({{left, base - height, width, height}, shade(kind)});
    }
  }

  /// The first and the last date, and as many between them as have room.
  void addDates() {
    const std::size_t bars = activity_.bars.size();
    const qreal base = plot_.bottom() + gap / 2 + metrics_.ascent();
    const auto textOf = [&](std::size_t bar) {
      return periodText(activity_.bars[bar].begin, activity_.step, words_.locale);
    };
    constexpr qreal apart = 1.8;
    const qreal room = metrics_.horizontalAdvance(textOf(bars - 1)) * apart;
    const auto steps = std::min(static_cast<std::size_t>(plot_.width() / room), bars - 1);
    for (std::size_t step = 0; step <= steps; ++step) {
      const std::size_t bar = steps == 0 ? 0 : (bars - 1) * step / steps;
      const qreal middle = (xOf(bar) + xOf(bar + 1)) / 2;
      if (step == 0)
        addText({plot_.left(), base}, TextAnchor::start, textOf(bar), colors_.muted);
      else if (step == steps)
        addText({plot_.right(), base}, TextAnchor::end, textOf(bar), colors_.muted);
      else
        addText({std::round(middle), base}, TextAnchor::middle, textOf(bar), colors_.muted);
    }
  }

  [[nodiscard]] QString described() const {
    QStringList parts;
    if (!activity_.bars.empty())
      parts << periodText(activity_.bars.front().begin, activity_.step, words_.locale) + QStringLiteral(" - ") +
                   periodText(activity_.bars.back().begin, activity_.step, words_.locale);
    for (std::size_t kind = 0; kind < activity_.kindCount(); ++kind)
      parts << kindText(kind) + QStringLiteral(": ") + numberText(totalOf(kind));
    if (const QString foot = footText(); !foot.isEmpty()) parts << foot;
    return parts.join(QStringLiteral("; "));
  }

  const Activity& activity_;
  const ActivityWords& words_;
  const ActivityColors& colors_;
  QFontMetricsF metrics_;
  Picture picture_;
  QRectF plot_;
  std::size_t most_ = 0;  ///< rows of the highest bar
};

}  // namespace

ActivityColors ActivityColors::light() {
  return {QColor(QRgb{0xFFFFFF}), QColor(QRgb{0x1B1F2A}), QColor(QRgb{0x5B6170}), QColor(QRgb{0xD8DCE3}),
          QColor(QRgb{0x1F6FEB})};
}

ActivityColors ActivityColors::dark() {
  return {QColor(QRgb{0x1B1E24}), QColor(QRgb{0xE8EAEE}), QColor(QRgb{0xA3A9B5}), QColor(QRgb{0x3A3F49}),
          QColor(QRgb{0x6EA8FE})};
}

ActivityColors ActivityColors::black() {
  return {QColor(QRgb{0xFFFFFF}), QColor(QRgb{0x000000}), QColor(QRgb{0x404040}), QColor(QRgb{0xB0B0B0}),
          QColor(QRgb{0x000000})};
}

QColor kindColor(const ActivityColors& colors, std::size_t kind, std::size_t kinds) {
  constexpr float palest = 0.75F;
  if (kinds < 2) return colors.bar;
  const std::size_t place = kind / 2 + (kind % 2) * ((kinds + 1) / 2);
  return mixed(colors.bar, colors.ground, palest * static_cast<float>(place) / static_cast<float>(kinds - 1));
}

std::size_t gridValue(std::size_t most) {
  std::size_t unit = 1;
  while (most / unit >= 10) unit *= 10;
  const std::size_t digit = most / unit;
  return unit * (digit >= 5 ? 5 : digit >= 2 ? 2 : 1);
}

QString periodText(query::ActivityHour begin, query::ActivityStep step, const QLocale& locale) {
  const std::chrono::sys_days day = std::chrono::floor<std::chrono::days>(begin);
  const std::chrono::year_month_day date(day);
  const QDate shown(static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
                    static_cast<int>(static_cast<unsigned>(date.day())));
  if (step == query::ActivityStep::month) return locale.toString(shown, QStringLiteral("MMM yyyy"));
  QString text = locale.toString(shown, QStringLiteral("d MMM yyyy"));
  if (step == query::ActivityStep::hour)
    text += QTime(static_cast<int>((begin - day).count()), 0).toString(QStringLiteral(" HH:mm"));
  return text;
}

Picture activityPicture(const Activity& activity, const QSizeF& size, const ActivityWords& words,
                        const ActivityColors& colors, const QFont& font) {
  return ActivityDrawing(activity, size, words, colors, font).draw();
}

}  // namespace korvel::output::pictures
