#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace korvel::designer {

/// The control in the widget box of Qt Designer, and in forms that QUiLoader loads.
///
/// Qt Designer calls initialize(): the controls that it shows, also in its previews, are in design mode. QUiLoader does
/// not: a form that a program loads at run time has controls that work.
class AuditViewerPlugin final : public QObject, public QDesignerCustomWidgetInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QDesignerCustomWidgetInterface_iid)
  Q_INTERFACES(QDesignerCustomWidgetInterface)

 public:
  [[nodiscard]] QString name() const override;
  [[nodiscard]] QString group() const override;
  [[nodiscard]] QString toolTip() const override;
  [[nodiscard]] QString whatsThis() const override;
  [[nodiscard]] QString includeFile() const override;
  [[nodiscard]] QIcon icon() const override;
  [[nodiscard]] bool isContainer() const override { return false; }
  [[nodiscard]] QWidget* createWidget(QWidget* parent) override;
  [[nodiscard]] bool isInitialized() const override { return initialized_; }
  void initialize(QDesignerFormEditorInterface* core) override;
  /// A new control, with the two properties that are always stored, and the descriptions of all four.
  [[nodiscard]] QString domXml() const override;

 private:
  bool initialized_ = false;
};

}  // namespace korvel::designer
