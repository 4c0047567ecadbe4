#pragma once

#include <QColor>
#include <QString>
#include <QWidget>
#include <vector>

namespace korvel::control {

/// What the parts of bars mean: a square and a name for each kind in one line, as many as fit. The tooltip has all.
class ActivityLegend final : public QWidget {
  Q_OBJECT

 public:
  struct Entry {
    QColor color;
    QString text;
  };
  explicit ActivityLegend(QWidget* parent = nullptr);

  /// The remark stands at the end of the line.
  void setEntries(std::vector<Entry> entries, const QString& remark);
  [[nodiscard]] const std::vector<Entry>& entries() const noexcept { return entries_; }
  [[nodiscard]] const QString& remark() const noexcept { return remark_; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<Entry> entries_;
  QString remark_;
};

}  // namespace korvel::control
