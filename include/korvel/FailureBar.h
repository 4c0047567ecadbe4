#pragma once

#include <QDateTime>
#include <QString>
#include <QWidget>
#include <memory>

#include "korvel/Export.h"
#include "korvel/ViewerApplication.h"

namespace korvel {

class AuditViewer;

/// A bar that says why the last query of a control failed: number, time and reason. Place it above the control. Hidden
/// while there is nothing to say; it never takes the focus by itself.
class KORVEL_AUDIT_VIEWER_EXPORT FailureBar final : public QWidget {
  Q_OBJECT

 public:
  explicit FailureBar(QWidget* parent = nullptr);
  ~FailureBar() override;

  /// From now on shows the failures of `viewer`, in the language that it is switched to, and hides when a query begins.
  void follow(AuditViewer& viewer);

  /// Shows a failure in the words of that language, and announces it to assistive technology.
  void showFailure(int number, const QString& text, const QDateTime& time, const ViewerLanguage& language);

  /// The bar's own words in another language; what the failure says itself stays as it was said.
  void setLanguage(const ViewerLanguage& language);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Q_DECL_HIDDEN Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace korvel
