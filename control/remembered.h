#pragma once

#include <QList>
#include <QSize>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

#include "base/twips.h"
#include "korvel/ViewerApplication.h"

class QJsonValue;

namespace korvel::control {

/// What a person changed about a column.
struct RememberedColumn {
  QString name;
  std::optional<Twips> width{};
  std::optional<bool> shown{};
};

/// What a person changed about the columns of a list.
struct RememberedColumns {
  QList<RememberedColumn> columns;
  /// Names of all columns from left to right; empty while they have the list's own order.
  QStringList order;

  /// The column of this name, which is added where it is missing.
  RememberedColumn& column(const QString& name);
};

/// What a person used and arranged, from one start of a program to the next: a file of the program around the control.
/// It is a convenience: a file that cannot be read is an empty one, nothing is said where it cannot be written, and a
/// file of another form or of a newer version is left as it is. Several programs and windows may use one file: each
/// change reads it anew, under a lock, and replaces it atomically.
class Remembered {
 public:
  enum class Extent {
    nothing,
    layout,  ///< columns and sizes; nothing that says what somebody worked on
    all
  };
  /// Lists of texts, the newest first. A text that is used again moves to the front.
  enum class Texts { find, queries, queryFiles };

  /// Remembers nothing.
  Remembered() = default;
  Remembered(QString file, Extent extent);

  /// Whether columns and sizes are remembered.
  [[nodiscard]] bool keepsLayout() const noexcept { return extent_ != Extent::nothing && !file_.isEmpty(); }
  /// Whether texts, databases and folders are remembered.
  [[nodiscard]] bool keepsWork() const noexcept { return extent_ == Extent::all && !file_.isEmpty(); }

  [[nodiscard]] QStringList texts(Texts which) const;
  /// A text that is too long for a list to choose from is not added.
  void addText(Texts which, const QString& text) const;
  void forgetTexts(Texts which) const;

  /// The last ten that were selected, the newest first.
  [[nodiscard]] QList<RecentDatabase> databases() const;
  void addDatabase(const RecentDatabase& database) const;
  void forgetDatabases() const;

  /// The folder that was chosen last for a purpose; empty where none was.
  [[nodiscard]] QString folder(const QString& purpose) const;
  void setFolder(const QString& purpose, const QString& folder) const;

  /// `list` is the list's name, the same in every language.
  [[nodiscard]] RememberedColumns columns(const QString& list) const;
  void changeColumns(const QString& list, const std::function<void(RememberedColumns&)>& change) const;
  void forgetColumns(const QString& list) const;

  /// The inner size of a window in device-independent pixels; not valid where none is remembered.
  [[nodiscard]] QSize size(const QString& window) const;
  void setSize(const QString& window, const QSize& size) const;
  /// The place of a window's splitter.
  [[nodiscard]] std::optional<Twips> splitter(const QString& window) const;
  void setSplitter(const QString& window, Twips place) const;

 private:
  enum class Kind { layout, work };
  [[nodiscard]] bool keeps(Kind kind) const noexcept;
  [[nodiscard]] QJsonValue entry(Kind kind, const QString& name) const;
  /// Replaces an entry by what `changed` makes of it, with the file as it stands now.
  void change(Kind kind, const QString& name, const std::function<QJsonValue(const QJsonValue&)>& changed) const;

  QString file_;
  Extent extent_ = Extent::nothing;
};

}  // namespace korvel::control
