#include <QByteArray>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "output/pictures/picture.h"

namespace korvel::output::pictures {

namespace {

/// A length with two digits at most behind the point, so that files are short and equal everywhere.
QByteArray number(qreal value) {
  constexpr qreal steps = 100;
  QByteArray text = QByteArray::number(std::round(value * steps) / steps, 'f', 2);
  while (text.endsWith('0')) text.chop(1);
  if (text.endsWith('.')) text.chop(1);
  return text == "-0" ? QByteArray("0") : text;
}

/// Text for an XML file: what has a meaning there is escaped, what may not be there is U+FFFD.
QByteArray escaped(QString text) {
  for (QChar& each : text) {
    const char16_t code = each.unicode();
    constexpr char16_t blank = 0x20;
    constexpr char16_t firstNoCharacter = 0xFFFE;
    if ((code < blank && each != u'\t' && each != u'\n') || code >= firstNoCharacter)
      each = QChar::ReplacementCharacter;
  }
  return text.toHtmlEscaped().toUtf8();
}

QByteArray colorName(const QColor& color) {
  return color.name(QColor::HexRgb).toLatin1();
}

QByteArray textElement(const PictureText& text) {
  constexpr std::array<const char*, 3> anchors = {"start", "middle", "end"};
  QByteArray element = "<text x=\"" + number(text.place.x()) + "\" y=\"" + number(text.place.y()) + "\" fill=\"" +
                       colorName(text.color) + '"';
  if (text.anchor != TextAnchor::start)
    element.append(" text-anchor=\"").append(anchors.at(static_cast<std::size_t>(text.anchor))).append('"');
  if (text.isBold) element.append(" font-weight=\"bold\"");
  return element + '>' + escaped(text.text) + "</text>\n";
}

}  // namespace

void writeSvg(const Picture& picture, const ByteSink& sink) {
  const QByteArray width = number(picture.size.width());
  const QByteArray height = number(picture.size.height());
  QByteArray file =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width +
      "\" height=\"" + height + "\" viewBox=\"0 0 " + width + ' ' + height +
      "\" role=\"img\" aria-labelledby=\"title description\" font-family=\"" + escaped(picture.font.family()) +
      ", sans-serif\" font-size=\"" + QByteArray::number(picture.font.pixelSize()) + "\">\n<title id=\"title\">" +
      escaped(picture.title) + "</title>\n<desc id=\"description\">" + escaped(picture.description) +
      "</desc>\n<rect width=\"" + width + "\" height=\"" + height + "\" fill=\"" + colorName(picture.ground) + "\"/>\n";
  // One path a colour, in the order in which the colours come first: a file of thousands of boxes stays small.
  std::vector<std::pair<QRgb, QByteArray>> paths;
  for (const PictureBox& box : picture.boxes) {
    auto path =
        std::find_if(paths.begin(), paths.end(), [&](const auto& each) { return each.first == box.fill.rgb(); });
    if (path == paths.end()) path = paths.insert(paths.end(), {box.fill.rgb(), {}});
    path->second += 'M' + number(box.area.x()) + ' ' + number(box.area.y()) + 'h' + number(box.area.width()) + 'v' +
                    number(box.area.height()) + 'h' + number(-box.area.width()) + 'z';
  }
  for (const auto& [color, path] : paths)
    file.append("<path fill=\"").append(colorName(QColor(color))).append("\" d=\"").append(path).append("\"/>\n");
  for (const PictureLine& line : picture.lines)
    file.append("<path stroke=\"" + colorName(line.color) + "\" d=\"M" + number(line.line.x1()) + ' ' +
                number(line.line.y1()) + 'L' + number(line.line.x2()) + ' ' + number(line.line.y2()) + "\"/>\n");
  for (const PictureText& text : picture.texts) file.append(textElement(text));
  file.append("</svg>\n");
  sink({file.constData(), static_cast<std::size_t>(file.size())});
}

}  // namespace korvel::output::pictures
