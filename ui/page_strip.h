#pragma once

#include <QTabWidget>

namespace korvel::ui {

/// Pages with a strip of tabs above: the current tab is raised, joined to the page and carries the accent dot; the
/// others are grey text. In the platform's own style the dot is the tab's picture. Tabs are as wide as their semi-bold
/// text, so that nothing moves when the page changes. The pages fill the frame; elements on them keep their own
/// margins.
class PageStrip : public QTabWidget {
  Q_OBJECT

 public:
  explicit PageStrip(QWidget* parent = nullptr);

 protected:
  void tabInserted(int index) override;

 private:
  void markCurrent();
};

}  // namespace korvel::ui
