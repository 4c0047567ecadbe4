#include "ui/icons/path_data.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace korvel::ui {
namespace {

constexpr double quarter = std::numbers::pi / 2;

/// Splits the text into letters and numbers. Numbers are separated by blanks or commas, or directly follow each other
/// where the first cannot continue ("1-2").
class Scanner {
 public:
  explicit Scanner(QStringView text) : text_(text) {}

  [[nodiscard]] bool atEnd() {
    skipSeparators();
    return at_ >= text_.size();
  }

  /// The letter of the next command; a null character where a number comes next.
  QChar command() {
    skipSeparators();
    return at_ < text_.size() && text_.at(at_).isLetter() ? text_.at(at_++) : QChar();
  }

  std::optional<double> number() {
    skipSeparators();
    const qsizetype begin = at_;
    if (is('-') || is('+')) ++at_;
    skipDigits();
    if (is('.')) {
      ++at_;
      skipDigits();
    }
    bool understood = false;
    const double value = text_.mid(begin, at_ - begin).toDouble(&understood);
    return understood ? std::optional(value) : std::nullopt;
  }

  /// A flag is one digit; the next number may follow without a separator.
  std::optional<bool> flag() {
    skipSeparators();
    if (!is('0') && !is('1')) return std::nullopt;
    return text_.at(at_++) == QLatin1Char('1');
  }

 private:
  [[nodiscard]] bool is(char wanted) const { return at_ < text_.size() && text_.at(at_) == QLatin1Char(wanted); }
  void skipSeparators() {
    while (at_ < text_.size() && (text_.at(at_).isSpace() || is(','))) ++at_;
  }
  void skipDigits() {
    while (at_ < text_.size() && text_.at(at_) >= QLatin1Char('0') && text_.at(at_) <= QLatin1Char('9')) ++at_;
  }

  QStringView text_;
  qsizetype at_ = 0;
};

struct Arc {
  QPointF radii;
  bool large = false;
  bool clockwise = false;
  QPointF end;
};

/// Adds the arc of an ellipse whose axes are not rotated, from the path's end to `arc.end`, as Bezier curves of at most
/// a quarter turn.
void addArc(QPainterPath& path, const Arc& arc) {
  double across = std::abs(arc.radii.x());
  double down = std::abs(arc.radii.y());
  const QPointF begin = path.currentPosition();
  if (begin == arc.end) return;
  if (across == 0 || down == 0) {
    path.lineTo(arc.end);
    return;
  }
  // In coordinates in which the ellipse is the unit circle: half the chord, and the vector from its middle to the
  // centre.
  QPointF half((arc.end.x() - begin.x()) / 2 / across, (arc.end.y() - begin.y()) / 2 / down);
  double halfSquared = QPointF::dotProduct(half, half);
  if (halfSquared > 1) {
    // Radii that are too small are scaled up until the arc reaches its end.
    const double scale = std::sqrt(halfSquared);
    across *= scale;
    down *= scale;
    half /= scale;
    halfSquared = 1;
  }
  const double distance = std::sqrt((1 - halfSquared) / halfSquared) * (arc.large == arc.clockwise ? -1 : 1);
  const QPointF centre(begin.x() / across + half.x() - half.y() * distance,
                       begin.y() / down + half.y() + half.x() * distance);
  const double first = std::atan2(begin.y() / down - centre.y(), begin.x() / across - centre.x());
  double sweep = std::atan2(arc.end.y() / down - centre.y(), arc.end.x() / across - centre.x()) - first;
  if (arc.clockwise && sweep < 0) sweep += 4 * quarter;
  if (!arc.clockwise && sweep > 0) sweep -= 4 * quarter;

  constexpr double rounding = 1e-9;
  const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / quarter - rounding)));
  const double step = sweep / pieces;
  const double reach = 4.0 / 3 * std::tan(step / 4);
  const auto point = [&](double x, double y) { return QPointF((centre.x() + x) * across, (centre.y() + y) * down); };
  for (int piece = 0; piece < pieces; ++piece) {
    const double from = first + piece * step;
    const double to = from + step;
    const QPointF end = piece + 1 == pieces ? arc.end : point(std::cos(to), std::sin(to));
    path.cubicTo(point(std::cos(from) - reach * std::sin(from), std::sin(from) + reach * std::cos(from)),
                 point(std::cos(to) + reach * std::sin(to), std::sin(to) - reach * std::cos(to)), end);
  }
}

class Reader {
 public:
  explicit Reader(QStringView text) : scanner_(text) {}

  std::optional<QPainterPath> read() {
    // A path begins with a move. Further numbers after those of a command repeat the command.
    while (!scanner_.atEnd()) {
      const QChar letter = scanner_.command();
      const QChar command = letter.isNull() ? repeated_ : letter;
      if (!moved_ && command.toUpper() != QLatin1Char('M')) return std::nullopt;
      if (!follow(command)) return std::nullopt;
      moved_ = true;
      const bool curved = command.toUpper() == QLatin1Char('C') || command.toUpper() == QLatin1Char('S');
      if (!curved) control_ = path_.currentPosition();
      repeated_ = next(command);
    }
    return path_;
  }

 private:
  /// The command that numbers without a letter repeat: lines after a move, none after a closed figure.
  [[nodiscard]] static QChar next(QChar command) {
    if (command == QLatin1Char('M')) return QLatin1Char('L');
    if (command == QLatin1Char('m')) return QLatin1Char('l');
    return command.toUpper() == QLatin1Char('Z') ? QChar() : command;
  }

  [[nodiscard]] bool follow(QChar command) {
    origin_ = command.isLower() ? path_.currentPosition() : QPointF();
    switch (command.toUpper().unicode()) {
      case u'M':
        return withPoint([this](const QPointF& point) { path_.moveTo(point); });
      case u'L':
        return withPoint([this](const QPointF& point) { path_.lineTo(point); });
      case u'H':
        return withNumber([this](double x) { path_.lineTo(origin_.x() + x, path_.currentPosition().y()); });
      case u'V':
        return withNumber([this](double y) { path_.lineTo(path_.currentPosition().x(), origin_.y() + y); });
      case u'C':
        return curve();
      case u'S':
        return smoothCurve();
      case u'A':
        return arc();
      case u'Z':
        path_.closeSubpath();
        return true;
      default:
        return false;
    }
  }

  std::optional<QPointF> point() {
    const std::optional<double> x = scanner_.number();
    const std::optional<double> y = x ? scanner_.number() : std::nullopt;
    return y ? std::optional(origin_ + QPointF(*x, *y)) : std::nullopt;
  }

  template <typename Draw>
  bool withPoint(Draw draw) {
    const std::optional<QPointF> where = point();
    if (where) draw(*where);
    return where.has_value();
  }

  template <typename Draw>
  bool withNumber(Draw draw) {
    const std::optional<double> number = scanner_.number();
    if (number) draw(*number);
    return number.has_value();
  }

  bool curve() {
    const std::optional<QPointF> first = point();
    return first && curveFrom(*first);
  }

  /// Its first control point mirrors the second one of the curve before; without one it is the current position.
  bool smoothCurve() { return curveFrom(2 * path_.currentPosition() - control_); }

  bool curveFrom(const QPointF& first) {
    const std::optional<QPointF> second = point();
    const std::optional<QPointF> end = second ? point() : std::nullopt;
    if (!end) return false;
    path_.cubicTo(first, *second, *end);
    control_ = *second;
    return true;
  }

  bool arc() {
    const std::optional<double> across = scanner_.number();
    const std::optional<double> down = across ? scanner_.number() : std::nullopt;
    const std::optional<double> turned = down ? scanner_.number() : std::nullopt;
    if (!turned || *turned != 0) return false;
    const std::optional<bool> large = scanner_.flag();
    const std::optional<bool> clockwise = large ? scanner_.flag() : std::nullopt;
    if (!clockwise) return false;
    return withPoint([&](const QPointF& end) { addArc(path_, {QPointF(*across, *down), *large, *clockwise, end}); });
  }

  Scanner scanner_;
  QPainterPath path_;
  QPointF origin_;   ///< origin of the numbers of the command
  QPointF control_;  ///< second control point of the curve before; the path's end after anything else
  QChar repeated_;
  bool moved_ = false;
};

}  // namespace

std::optional<QPainterPath> readPathData(QStringView text) {
  return Reader(text).read();
}

}  // namespace korvel::ui
