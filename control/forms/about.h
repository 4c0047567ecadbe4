#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace korvel::ui {
class ApplicationIconPicture;
}

namespace korvel::control {

struct LibraryVersion {
  int majorNumber = 0;
  int minorNumber = 0;
  int revision = 0;
};

/// The version of the component library that this code is part of.
[[nodiscard]] LibraryVersion libraryVersion() noexcept;

/// The text of the version label. Deliberately English in every language, as the whole box is.
[[nodiscard]] QString aboutText(const LibraryVersion& version);

/// The about box: a fixed dialog with a picture, the version and a button.
class frmAbout final : public QDialog {
  Q_OBJECT

 public:
  frmAbout(const LibraryVersion& version, QWidget* owner);

 private:
  ui::ApplicationIconPicture* Image1_;
  QLabel* lblVersion_;
  QPushButton* btOk_;
};

}  // namespace korvel::control
