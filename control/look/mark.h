#pragma once

#include <QIcon>
#include <QWidget>

namespace korvel::look {

/// The viewer's own sign: a list under a lens on a filled tile.
[[nodiscard]] QIcon markIcon();

/// The sign as a picture in the colours of its palette.
class MarkPicture : public QWidget {
  Q_OBJECT

 public:
  explicit MarkPicture(QWidget* parent = nullptr);
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace korvel::look
