#pragma once

#include <QIcon>
#include <QWidget>
#include <array>

namespace korvel::ui {

/// Lengths of the sign's pictures in pixels, those that systems ask for.
inline constexpr std::array applicationIconSides{16, 24, 32, 48, 64, 256};

/// The viewer's own sign: a list under a lens on a filled tile.
[[nodiscard]] QIcon applicationIcon();

/// The sign as a picture in the colours of its palette.
class ApplicationIconPicture : public QWidget {
  Q_OBJECT

 public:
  explicit ApplicationIconPicture(QWidget* parent = nullptr);
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace korvel::ui
