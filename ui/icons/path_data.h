#pragma once

#include <QPainterPath>
#include <QStringView>
#include <optional>

namespace korvel::ui {

/// The path that a text of commands describes: M L H V C S A Z in capitals and small letters, numbers written as
/// tightly as SVG allows. Nothing for a text with anything else in it, an arc of a turned ellipse included.
[[nodiscard]] std::optional<QPainterPath> readPathData(QStringView text);

}  // namespace korvel::ui
