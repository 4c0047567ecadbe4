#pragma once

#include <string>

class QPoint;

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AuditQueries;
class MessageBoxes;
class Surface;

/// The elements above the list of custom queries: the query text, and the buttons that open, save, clear and compose
/// it.
class CustomPage {
 public:
  /// All must outlive the page.
  CustomPage(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AuditQueries& queries);
  CustomPage(const CustomPage&) = delete;
  CustomPage& operator=(const CustomPage&) = delete;

  /// Texts and names in the current language.
  void showTexts();
  /// An empty query text on the page that is shown becomes the query for everything.
  void offerCustomQuery();
  /// Puts a query file into the query text, in front of the other pages. Throws Error where it cannot be read.
  void openQueryFile(const std::string& path);
  /// Whether earlier queries are offered depends on what is remembered.
  void offerRecent();

 private:
  void btOpen_Click();
  void btSave_Click();
  void btClearAdvQuery_Click();
  void btEmunFields_Click();
  void showRecent(const QPoint& place);

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  AuditQueries& queries_;
};

}  // namespace korvel::control
