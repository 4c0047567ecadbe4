#pragma once

#include <QJsonObject>
#include <QString>
#include <QVariantMap>

#include "korvel/ViewerApplication.h"

namespace korvel::host {

/// Where the viewer keeps what it remembers from one start to the next, beside the standard form file.
[[nodiscard]] QString rememberedPath();

/// The form that contains the control, as a file: a JSON object with the control's stored properties and the settings
/// of the window around it.
class FormFile {
 public:
  explicit FormFile(QString path) : path_(std::move(path)) {}

  /// korvel/viewer-form.json in the user's configuration folder.
  [[nodiscard]] static QString standardPath();

  [[nodiscard]] const QString& path() const noexcept { return path_; }

  /// Reads the file. A file that does not exist is a new form, not a failure. Returns why it cannot be read, else an
  /// empty text.
  [[nodiscard]] QString load(const ViewerLanguage& language);
  /// Whether there was no file to load.
  [[nodiscard]] bool isNew() const noexcept { return isNew_; }
  [[nodiscard]] QVariantMap properties() const { return content_.toVariantMap(); }

  /// From now on the file is left as it is: what stands in it could not be used.
  void leaveAsItIs() noexcept { untouchable_ = true; }
  /// Writes the file, whole or not at all, unless it says the same already or is to be left as it is. What the file
  /// holds beside the control's stored properties stays in it. Returns why it cannot be written, else an empty text.
  [[nodiscard]] QString save(const QVariantMap& properties);

  /// A text that the file held, when it was loaded, beside the control's properties; empty where there was none.
  [[nodiscard]] QString text(const QString& name) const { return content_.value(name).toString(); }
  /// Sets such a text in the file as it stands now: what another window has saved meanwhile stays. Where there is no
  /// form to set it in, or the file cannot be written or is to be left as it is, nothing happens.
  void keepText(const QString& name, const QString& text);

 private:
  [[nodiscard]] QString write(const QJsonObject& content) const;

  QString path_;
  QJsonObject content_;
  bool isNew_ = true;
  bool untouchable_ = false;
};

}  // namespace korvel::host
