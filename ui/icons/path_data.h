#pragma once

#include <QPainterPath>
#include <QStringView>
#include <optional>

namespace korvel::ui {

/// The path of SVG path data with the commands M L H V C S A Z, absolute and relative, numbers written as tightly as
/// SVG allows. Nothing for a text with anything else in it, or with an arc of a rotated ellipse.
[[nodiscard]] std::optional<QPainterPath> readPathData(QStringView text);

}  // namespace korvel::ui
