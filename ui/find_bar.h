#pragma once

#include <QFrame>
#include <QStringList>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

class QComboBox;
class QLabel;
class QToolButton;

namespace korvel::ui {

/// What is searched for, and how.
struct FindRequest {
  QString text;
  bool exactCase = false;
  bool wholeValue = false;
  bool regularExpression = false;
  friend bool operator==(const FindRequest&, const FindRequest&) = default;
};

/// The last ten texts that were searched for, the newest first; shared by all find bars of a control.
class FindHistory {
 public:
  static constexpr int size = 10;
  void remember(const QString& text);
  /// Replaces the texts, the newest first.
  void restore(const QStringList& texts) { texts_ = texts.mid(0, size); }
  [[nodiscard]] const QStringList& texts() const noexcept { return texts_; }

  /// Called with each text that is remembered; for an owner that keeps them.
  std::function<void(const QString& text)> used;

 private:
  QStringList texts_;
};

/// The bar in which a text is searched for. It searches nothing itself: it says what is wanted and shows what its owner
/// tells it. Enter asks for the next hit, Shift+Enter for the previous one, F3 and Shift+F3 too; Esc closes. A text
/// that was used goes into the history.
class FindBar : public QFrame {
  Q_OBJECT

 public:
  /// `history` must outlive the bar.
  explicit FindBar(FindHistory& history, QWidget* parent = nullptr);

  /// Texts in the current language, by their keys.
  void setTexts(const std::function<QString(std::string_view key)>& texts);
  /// Shows the bar with the keyboard on its text, which is selected. Puts a request into it, which is no change by the
  /// user, where one is given.
  void open(const std::optional<FindRequest>& request = {});
  [[nodiscard]] FindRequest request() const;
  /// What takes the keyboard, in the order of Tab.
  [[nodiscard]] std::vector<QWidget*> focusOrder() const;

  /// "12 of 3,451"; without a current hit (0) their number alone, and plain words where there is none.
  void showCount(std::size_t current, std::size_t hits);
  /// While hits are not known yet. A filter can be asked for already.
  void showSearching();
  /// Why nothing can be searched for, such as what is wrong with a regular expression; in the current language.
  void showProblem(const std::function<QString()>& text);
  /// While nothing is searched for.
  void showNothing();
  /// Whether a filter can be asked for, where that is not a matter of the hits alone.
  void enableFilter(bool enabled);

 Q_SIGNALS:
  /// Another text is wanted, or the same otherwise.
  void requestChanged(const korvel::ui::FindRequest& request);
  void nextRequested();
  void previousRequested();
  /// Only rows with the text are to be shown.
  void filterRequested();
  /// The bar is to be closed; its owner hides it.
  void closeRequested();

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QToolButton* addToggle(const QString& caption, const char* name);
  /// Returns whether the key is one of the bar's; does what it says unless `onlyAsked`.
  bool handleKey(int key, Qt::KeyboardModifiers modifiers, bool onlyAsked);
  void showCountText(const QString& text);
  void enableSteps(bool enabled);
  /// Fills the list under the text, which is wanted only now and then.
  void offerHistory();

  FindHistory& history_;
  std::function<QString(std::string_view)> texts_;
  QComboBox* text_;
  QLabel* count_;
  QToolButton* previous_;
  QToolButton* next_;
  QToolButton* exactCase_;
  QToolButton* wholeValue_;
  QToolButton* regularExpression_;
  QToolButton* filter_;
  QToolButton* close_;
  /// What the count shows, for another language.
  std::function<void()> shown_;
};

}  // namespace korvel::ui
