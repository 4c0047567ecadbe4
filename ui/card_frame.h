#pragma once

#include <QGroupBox>

namespace korvel::ui {

/// A frame of the side strip: rounded border on the surface colour, small semi-bold caption in grey, 8 px all around.
/// A group box to assistive technology. The 8 px and the caption's space belong to the frame: layouts on it start with
/// zero margins; children placed by hand use contentsRect(). In another style, which draws its border right around the
/// contents, layouts keep a margin.
class CardFrame : public QGroupBox {
  Q_OBJECT

 public:
  explicit CardFrame(QWidget* parent = nullptr);
  explicit CardFrame(const QString& title, QWidget* parent = nullptr);

  /// Moves the frame and its content away from the left and right edge of the widget by so many pixels.
  void setSideInset(int pixels);

 protected:
  bool event(QEvent* event) override;
  void initStyleOption(QStyleOptionGroupBox* option) const override;

 private:
  void setDistances();

  int sideInset_ = 0;
};

}  // namespace korvel::ui
