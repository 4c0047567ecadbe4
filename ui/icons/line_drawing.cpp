#include "ui/icons/line_drawing.h"

#include <QBrush>
#include <QPainter>
#include <QPen>
#include <QStringList>
#include <QXmlStreamReader>
#include <algorithm>
#include <array>
#include <initializer_list>

#include "ui/icons/path_data.h"

namespace korvel::ui {

/// Reads one drawing. Functions that read return false for anything that is not supported.
class DrawingReader {
 public:
  explicit DrawingReader(const QByteArray& svg) : xml_(svg) {}

  std::optional<LineDrawing> read() {
    if (!xml_.readNextStartElement() || !drawing()) return std::nullopt;
    while (!xml_.atEnd()) {
      switch (xml_.readNext()) {
        case QXmlStreamReader::StartElement:
          if (!shape()) return std::nullopt;
          break;
        case QXmlStreamReader::Characters:
          if (!xml_.isWhitespace()) return std::nullopt;
          break;
        case QXmlStreamReader::EndElement:
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::EndDocument:
          break;
        default:
          return std::nullopt;
      }
    }
    return xml_.hasError() ? std::nullopt : std::optional(drawing_);
  }

 private:
  /// Fill and stroke of shapes that do not set their own.
  struct ShapeStyle {
    bool filled = false;
    bool stroked = false;
    double strokeWidth = 1;
  };

  using Outline = bool (DrawingReader::*)(QPainterPath& path);
  struct Element {
    const char* name = nullptr;
    std::initializer_list<const char*> attributes{};  ///< apart from those of fill and stroke
    Outline outline = nullptr;
  };

  bool drawing() {
    if (xml_.name() != QLatin1String("svg")) return false;
    const QStringList box = text("viewBox").split(QLatin1Char(' '));
    const auto side = [&box](qsizetype index) { return box.value(index).toDouble(); };
    if (box.size() != 4 || box.at(0) != QLatin1String("0") || box.at(1) != QLatin1String("0")) return false;
    drawing_.size_ = QSizeF(side(2), side(3));
    // The root must set all four: the defaults of SVG are not those of our icons.
    const bool setsAll = has("fill") && has("stroke") && has("stroke-linecap") && has("stroke-linejoin");
    return setsAll && !drawing_.size_.isEmpty() && knows({"viewBox"}) && takeStyle(style_);
  }

  bool shape() {
    static const std::array<Element, 4> elements{{
        {"path", {"d"}, &DrawingReader::pathOutline},
        {"rect", {"x", "y", "width", "height", "rx"}, &DrawingReader::rectangleOutline},
        {"circle", {"cx", "cy", "r"}, &DrawingReader::circleOutline},
        {"ellipse", {"cx", "cy", "rx", "ry"}, &DrawingReader::ellipseOutline},
    }};
    const auto* const element = std::find_if(elements.begin(), elements.end(), [this](const Element& each) {
      return xml_.name() == QLatin1String(each.name);
    });
    ShapeStyle style = style_;
    QPainterPath path;
    if (element == elements.end() || !knows(element->attributes) || !takeStyle(style) ||
        !(this->*element->outline)(path))
      return false;
    drawing_.shapes_.push_back({path, style.filled, style.stroked ? style.strokeWidth : 0});
    return true;
  }

  /// Whether the element has only these attributes and those of fill and stroke.
  [[nodiscard]] bool knows(std::initializer_list<const char*> names) const {
    constexpr std::array styleNames{"fill", "stroke", "stroke-width", "stroke-linecap", "stroke-linejoin"};
    const QXmlStreamAttributes attributes = xml_.attributes();
    return std::all_of(attributes.begin(), attributes.end(), [&](const QXmlStreamAttribute& attribute) {
      const auto isIt = [&](const char* name) { return attribute.qualifiedName() == QLatin1String(name); };
      return std::any_of(names.begin(), names.end(), isIt) || std::any_of(styleNames.begin(), styleNames.end(), isIt);
    });
  }

  bool takeStyle(ShapeStyle& style) const {
    const auto isRound = [this](const char* name) { return !has(name) || text(name) == QLatin1String("round"); };
    return takeColour("fill", style.filled) && takeColour("stroke", style.stroked) &&
           (!has("stroke-width") || takeNumber("stroke-width", style.strokeWidth)) && isRound("stroke-linecap") &&
           isRound("stroke-linejoin");
  }

  bool takeColour(const char* name, bool& drawn) const {
    if (!has(name)) return true;
    drawn = text(name) == QLatin1String("currentColor");
    return drawn || text(name) == QLatin1String("none");
  }

  bool takeNumber(const char* name, double& number) const {
    bool understood = false;
    number = text(name).toDouble(&understood);
    return understood;
  }

  bool pathOutline(QPainterPath& path) {
    const QString commands = text("d");
    const std::optional<QPainterPath> read = has("d") ? readPathData(commands) : std::nullopt;
    if (read) path = *read;
    return read.has_value();
  }

  bool rectangleOutline(QPainterPath& path) {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    double radius = 0;
    if (!takeNumber("x", x) || !takeNumber("y", y) || !takeNumber("width", width) || !takeNumber("height", height) ||
        (has("rx") && !takeNumber("rx", radius)))
      return false;
    path.addRoundedRect(QRectF(x, y, width, height), radius, radius);
    return true;
  }

  bool circleOutline(QPainterPath& path) { return roundOutline(path, "r", "r"); }
  bool ellipseOutline(QPainterPath& path) { return roundOutline(path, "rx", "ry"); }

  bool roundOutline(QPainterPath& path, const char* acrossName, const char* downName) const {
    double x = 0;
    double y = 0;
    double across = 0;
    double down = 0;
    if (!takeNumber("cx", x) || !takeNumber("cy", y) || !takeNumber(acrossName, across) || !takeNumber(downName, down))
      return false;
    path.addEllipse(QPointF(x, y), across, down);
    return true;
  }

  [[nodiscard]] bool has(const char* name) const { return xml_.attributes().hasAttribute(QLatin1String(name)); }
  [[nodiscard]] QString text(const char* name) const { return xml_.attributes().value(QLatin1String(name)).toString(); }

  QXmlStreamReader xml_;
  LineDrawing drawing_;
  ShapeStyle style_;
};

std::optional<LineDrawing> LineDrawing::read(const QByteArray& svg) {
  return DrawingReader(svg).read();
}

void LineDrawing::paint(QPainter& painter, const QRectF& into, const QColor& ink) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(into.topLeft());
  painter.scale(into.width() / size_.width(), into.height() / size_.height());
  for (const Shape& shape : shapes_) {
    painter.setBrush(shape.filled ? QBrush(ink) : QBrush(Qt::NoBrush));
    painter.setPen(shape.strokeWidth > 0 ? QPen(ink, shape.strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)
                                         : QPen(Qt::NoPen));
    painter.drawPath(shape.path);
  }
  painter.restore();
}

}  // namespace korvel::ui
