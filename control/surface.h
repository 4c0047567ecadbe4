#pragma once

#include <QPointer>
#include <array>
#include <memory>

#include "control/command_menus.h"
#include "control/command_toolbar.h"
#include "control/filter_tree_view.h"
#include "control/layout.h"
#include "control/list_area.h"
#include "control/result_list_model.h"
#include "control/result_list_view.h"
#include "control/status_panels.h"
#include "query/filter_tree.h"
#include "query/forms/sql_editor.h"
#include "query/standard_query.h"
#include "ui/buttons.h"
#include "ui/card_frame.h"
#include "ui/page_strip.h"

class QLabel;

namespace korvel::control {

class ReportViewer;

/// The visible elements of one control: creates, names and places them; their behaviour is defined elsewhere. Elements
/// are children of the owner and are deleted with it.
class Surface {
 public:
  /// All three must outlive the surface.
  Surface(QWidget& owner, query::ResultLists& lists, query::FilterTree& tree);
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  /// The resize routine: places the elements for the owner's present size.
  void arrange(bool viewSideTools);
  /// Puts everything into the tab order, from the toolbar to the lists; once more when the toolbar has got its buttons.
  void orderFocus() const;

  /// Index 0..5 of the selected page.
  [[nodiscard]] std::size_t currentTab() const;
  /// The list of the selected page.
  [[nodiscard]] ResultListView& currentList() const;
  [[nodiscard]] QSize preferredSize() const;
  /// The least size at which everything that is shown can be reached.
  [[nodiscard]] QSize minimumSize(bool viewSideTools) const;

  // Command surfaces.
  CommandMenuBar* SmartMenu = nullptr;
  CommandToolbar* SmartToolbar = nullptr;
  CommandPopup* SmartPopup = nullptr;
  /// What a right click shows where SmartPopup could not be built.
  QMenu* mnupopup = nullptr;
  QAction* mnupopupitem = nullptr;
  // Side strip.
  ui::CardFrame* frameFilter = nullptr;
  FilterTreeView* tvTreeView = nullptr;
  QPushButton* btDateRangeFilter = nullptr;
  QPushButton* btClearDateRange = nullptr;
  QLabel* lblDateRange = nullptr;
  ui::CardFrame* frameTools = nullptr;
  QPushButton* btQuery = nullptr;
  QToolButton* btSelectDB = nullptr;
  QToolButton* btDBInfo = nullptr;
  QToolButton* btClear = nullptr;
  QToolButton* btSelectALL = nullptr;
  QToolButton* btUnselectALL = nullptr;
  QToolButton* btExcel = nullptr;
  QToolButton* btPrint = nullptr;
  // Pages.
  ui::PageStrip* SSTab1 = nullptr;
  std::array<std::unique_ptr<ResultListModel>, query::listCount> models;
  std::array<ResultListView*, query::listCount> lvListView{};
  /// The lists with what stands over and under them while they are filtered or searched.
  std::array<ListArea*, query::listCount> areas{};
  // Above the list of the custom page.
  ui::CardFrame* frameAdvQry = nullptr;
  query::SqlEditor* txtAdvancedQuery = nullptr;
  QToolButton* btOpen = nullptr;
  QToolButton* btSave = nullptr;
  QToolButton* btClearAdvQuery = nullptr;
  QToolButton* btEmunFields = nullptr;
  StatusPanels* StatusBar1 = nullptr;
  /// Of the find bars of all lists.
  ui::FindHistory findHistory;
  /// Invisible: prints or previews the report that it is given.
  ReportViewer* WebBrowser1 = nullptr;

 private:
  void buildCommandSurfaces();
  void buildFilterFrame(query::FilterTree& tree);
  void buildToolsFrame();
  void buildPages(query::ResultLists& lists);
  void buildQueryFrame(QWidget& page);
  void placeLists();
  /// Places the query frame and its elements; returns the topmost position for the list below it.
  int placeQueryFrame(const QPoint& pageCorner);
  [[nodiscard]] int menuHeight() const;
  /// 0 for a hidden toolbar.
  [[nodiscard]] int toolbarHeight() const;

  QWidget& owner_;
  SurfaceBoxes boxes_ = designTimeBoxes();
};

}  // namespace korvel::control
