#pragma once

#include <QByteArray>
#include <QIcon>
#include <QPixmap>
#include <QWidget>
#include <array>

namespace korvel::ui {

/// Side lengths of the pictures in pixels, those that systems ask for.
inline constexpr std::array applicationIconSides{16, 24, 32, 48, 64, 256};

/// One picture of the viewer's icon, of any side length in pixels.
[[nodiscard]] QPixmap applicationIconPixmap(int side);

/// The same as a document of SVG, for desktops that draw icons themselves.
[[nodiscard]] QByteArray applicationIconSvg();

/// The icon of the viewer: a list under a lens on a filled tile.
[[nodiscard]] QIcon applicationIcon();

/// Shows the application icon in the colours of the palette.
class ApplicationIconPicture : public QWidget {
  Q_OBJECT

 public:
  explicit ApplicationIconPicture(QWidget* parent = nullptr);
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace korvel::ui
