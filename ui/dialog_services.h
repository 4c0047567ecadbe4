#pragma once

#include <QFont>
#include <QString>
#include <optional>

class QWidget;

namespace korvel::ui {

enum class MessageIcon { none, critical, information };
/// Mouse pointers, by the system's numbers.
enum class Pointer { standard = 0, hourglass = 11 };

/// What a file is chosen for.
enum class ChosenFile { read, written };

/// What every dialog may show. Every call that shows a dialog returns when it is closed.
class DialogServices {
 public:
  virtual ~DialogServices() = default;

  /// A box with an OK button. Texts are shown as they are, never as markup.
  virtual void messageBox(QWidget* owner, MessageIcon icon, const QString& title, const QString& text) = 0;
  /// The font that was chosen, nothing for a cancelled dialog.
  virtual std::optional<QFont> chooseFont(QWidget* owner, const QFont& current) = 0;
  virtual void setPointer(Pointer pointer) = 0;
};

/// Shows the hourglass while it exists, also when the work ends in a failure.
class BusyPointer {
 public:
  explicit BusyPointer(DialogServices& services) : services_(services) { services_.setPointer(Pointer::hourglass); }
  ~BusyPointer() { services_.setPointer(Pointer::standard); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  DialogServices& services_;
};

}  // namespace korvel::ui
