#pragma once

#include <QString>
#include <functional>

class QMenu;
class QWidget;

namespace korvel::control {

/// What happens with the user's choice.
struct RecentQueryChoice {
  std::function<void(const QString& text)> useText;
  std::function<void(const QString& path)> openFile;
};

/// A menu of the queries and query files that were used last, each on one line, and with an entry that forgets them.
/// The caller owns it.
[[nodiscard]] QMenu* makeRecentQueriesMenu(QWidget* owner, const RecentQueryChoice& choice);

}  // namespace korvel::control
