#pragma once

class QImage;
class QWidget;

namespace korvel::ocx {

/// Paints `viewer` as it is over the whole of `picture`, whose pixels are those of a screen of the viewer's density. A
/// viewer that is not shown takes the picture's size.
void paintStill(QWidget& viewer, QImage& picture);

}  // namespace korvel::ocx
