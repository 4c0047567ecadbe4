#include "host/window_placement.h"

#include <QRegion>
#include <QRegularExpression>
#include <algorithm>

#include "host/form_file.h"

namespace korvel::host {
namespace {

const QString placementName = QStringLiteral("WindowPlacement");

qint64 area(const QRect& rectangle) {
  return rectangle.isEmpty() ? 0 : qint64{rectangle.width()} * rectangle.height();
}

/// How far the middle of a rectangle lies from a screen, 0 inside of it.
int distance(const QRect& screen, const QPoint& point) {
  const int across = std::max({screen.left() - point.x(), 0, point.x() - screen.right()});
  const int down = std::max({screen.top() - point.y(), 0, point.y() - screen.bottom()});
  return across + down;
}

/// The screen that holds most of the window, or where none holds any of it the nearest one.
QRect screenOf(const QList<QRect>& screens, const QRect& window) {
  const auto score = [&](const QRect& screen) {
    const qint64 shared = area(screen & window);
    return shared > 0 ? shared : -qint64{distance(screen, window.center())} - 1;
  };
  return *std::max_element(screens.begin(), screens.end(),
                           [&](const QRect& one, const QRect& other) { return score(one) < score(other); });
}

}  // namespace

QString placementText(const WindowPlacement& placement) {
  const QRect& normal = placement.normal;
  return QStringLiteral("%1 %2 %3 %4 %5")
      .arg(placement.maximized ? QLatin1String("maximized") : QLatin1String("normal"))
      .arg(normal.x())
      .arg(normal.y())
      .arg(normal.width())
      .arg(normal.height());
}

std::optional<WindowPlacement> placementFrom(const QString& text) {
  // Five digits: no screen is larger, and no sum of two such numbers overflows.
  static const QRegularExpression form(
      QStringLiteral("\\A(normal|maximized) (-?[0-9]{1,5}) (-?[0-9]{1,5}) ([0-9]{1,5}) ([0-9]{1,5})\\z"));
  const QRegularExpressionMatch match = form.match(text);
  if (!match.hasMatch()) return std::nullopt;
  const auto number = [&](int part) { return match.captured(part).toInt(); };
  const WindowPlacement placement{QRect(number(2), number(3), number(4), number(5)),
                                  match.captured(1) == QLatin1String("maximized")};
  return placement.normal.isEmpty() ? std::nullopt : std::optional(placement);
}

QRect placedOn(const QList<QRect>& screens, const QRect& wanted, int titleBar) {
  const QRect framed = wanted.adjusted(0, -titleBar, 0, 0);
  if (screens.isEmpty()) return wanted;
  // A region, because screens that mirror each other share their pixels.
  QRegion hidden(framed);
  for (const QRect& screen : screens) hidden -= screen;
  if (hidden.isEmpty()) return wanted;

  const QRect screen = screenOf(screens, framed).adjusted(0, titleBar, 0, 0);
  if (screen.isEmpty()) return wanted;
  const QSize size = wanted.size().boundedTo(screen.size());
  const int left = std::clamp(wanted.left(), screen.left(), screen.right() - size.width() + 1);
  const int top = std::clamp(wanted.top(), screen.top(), screen.bottom() - size.height() + 1);
  return {QPoint(left, top), size};
}

std::optional<WindowPlacement> storedPlacement(const FormFile& form) {
  return placementFrom(form.text(placementName));
}

void storePlacement(FormFile& form, const WindowPlacement& placement) {
  form.keepText(placementName, placementText(placement));
}

}  // namespace korvel::host
