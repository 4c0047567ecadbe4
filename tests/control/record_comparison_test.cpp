#include <gmock/gmock.h>

#include <QLabel>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <deque>
#include <optional>
#include <stdexcept>

#include "control/forms/record_view.h"
#include "control/forms/value_field.h"
#include "control/library_state.h"
#include "tests/control/list_fixture.h"
#include "ui/style/theme.h"

namespace korvel::test {
namespace {

using control::RecordView;
using control::ValueField;
using Value = std::optional<std::string>;

/// A list of changes, each an old and a new value, and the view of its records.
class ComparedRecord : public ListModel {
 protected:
  void fillChanges(const std::vector<std::pair<Value, Value>>& changes,
                   const std::vector<std::string>& names = {"Nr", "OldValue", "NewValue"}) {
    const ResultListModel::RowsChange change(model);
    auto store = std::make_shared<results::RowStore>();
    std::vector<db::Field> fields;
    std::vector<ColumnHeader> columns;
    for (const std::string& name : names) {
      fields.push_back({name});
      columns.push_back({name, {1440}});
    }
    list.setColumns(columns);
    store->beginResult(fields);
    std::vector<RowId> ids;
    for (const auto& [before, after] : changes) {
      std::vector<db::Cell> cells;
      for (const std::string& name : names) {
        const Value value = name == "OldValue" ? before : name == "NewValue" ? after : Value("other");
        values_.push_back(value.value_or(""));
        cells.push_back({values_.back(), !value.has_value()});
      }
      ids.push_back(store->append(cells));
    }
    list.setRows(store, ids);
  }
  void show(const Value& before, const Value& after) {
    fillChanges({{before, after}});
    record.showRecord(view, 0);
    QCoreApplication::processEvents();
  }

  ValueField& field(const QString& caption) const {
    for (auto* each : record.findChildren<ValueField*>())
      if (each->accessibleName() == caption) return *each;
    throw std::runtime_error("no field " + caption.toStdString());
  }
  ValueField& before() const { return field("OldValue"); }
  ValueField& after() const { return field("NewValue"); }
  QString words() const {
    const auto* note = record.findChild<QLabel*>(QStringLiteral("lblDifference"));
    return note == nullptr ? QStringLiteral("none") : note->text();
  }

  /// The text of a field with brackets around the characters that are painted on a tint.
  static std::string painted(ValueField& field) {
    const bool removed = field.accessibleName() == QLatin1String("OldValue");
    const ui::Theme& theme = ui::Theme::of(field);
    const QImage image = field.viewport()->grab().toImage();
    const QString text = field.toPlainText();
    std::string shown;
    bool inside = false;
    for (int at = 0; at <= text.size(); ++at) {
      const bool tinted =
          at < text.size() && count(image, placeOf(field, at), removed ? theme.removed : theme.added) > 0;
      if (tinted != inside) shown += tinted ? '[' : ']';
      inside = tinted;
      if (at < text.size()) shown += QString(text[at]).toStdString();
    }
    return shown;
  }
  /// Where a character of the field is in its viewport; of a line break, the first pixels.
  static QRect placeOf(const ValueField& field, int position) {
    QTextCursor cursor(field.document());
    cursor.setPosition(position);
    const QRect caret = field.cursorRect(cursor);
    const QTextLine line = cursor.block().layout()->lineForTextPosition(cursor.positionInBlock());
    const auto leading = line.cursorToX(cursor.positionInBlock());
    const auto trailing = line.cursorToX(cursor.positionInBlock(), QTextLine::Trailing);
    const int width = std::max(2, static_cast<int>(std::abs(trailing - leading)) - 2);
    const int left = trailing < leading ? caret.center().x() - width - 1 : caret.center().x() + 1;
    return {left, caret.top(), width, caret.height()};
  }
  static int count(const QImage& image, const QRect& part, const QColor& color) {
    int found = 0;
    for (int y = part.top(); y <= part.bottom(); ++y)
      for (int x = part.left(); x <= part.right(); ++x)
        if (image.valid(x, y)) found += static_cast<int>(image.pixelColor(x, y) == color);
    return found;
  }

  ResultListView view{model};
  RecordView record{&view};

 private:
  std::deque<std::string> values_;
};

TEST_F(ComparedRecord, WhatDiffersIsMarkedInBothValues) {
  show("9.14 bar", "9.5 bar");
  EXPECT_EQ(painted(before()), "9.[14] bar");
  EXPECT_EQ(painted(after()), "9.[5] bar");
  EXPECT_EQ(words(), "Characters that differ are marked: 2 in the old value, 1 in the new value.");
  EXPECT_EQ(before().accessibleDescription(), "Only in this value: “14”");
  EXPECT_EQ(after().accessibleDescription(), "Only in this value: “5”");
}

TEST_F(ComparedRecord, LinesUnderTheMarksTellOldFromNewWithoutColours) {
  show("same WWWWWWWW", "same MMMMMMMM");
  const auto lineUnder = [](ValueField& field, const QColor& color) {
    const QImage image = field.viewport()->grab().toImage();
    const QRect place = placeOf(field, 5).united(placeOf(field, 12));
    int most = 0;
    int inAll = 0;
    for (int x = place.left(), run = 0; x <= place.right(); ++x) {
      const bool drawn = count(image, QRect(x, place.top(), 1, place.height() + 1), color) > 0;
      run = drawn ? run + 1 : 0;
      inAll += static_cast<int>(drawn);
      most = std::max(most, run);
    }
    return std::pair(most, place.width() - inAll);
  };
  const ui::Theme& theme = ui::Theme::of(record);
  const auto [longestDash, gaps] = lineUnder(before(), theme.removedLine);
  EXPECT_GT(longestDash, 0);
  EXPECT_LE(longestDash, 4);
  EXPECT_GE(gaps, 10);
  const auto [whole, none] = lineUnder(after(), theme.addedLine);
  EXPECT_GT(whole, 40);
  EXPECT_EQ(none, 0);
}

TEST_F(ComparedRecord, WordsSayWhatMarksCannot) {
  show("same", "same");
  EXPECT_EQ(painted(before()) + painted(after()), "samesame");
  EXPECT_EQ(words(), "Old and new value are the same.");
  record.close();
  show(std::nullopt, "");
  EXPECT_EQ(words(), "One value is missing, the other one is an empty text.");
  EXPECT_EQ(before().accessibleDescription(), "No value (NULL)");
  record.close();
  show(std::nullopt, std::nullopt);
  EXPECT_EQ(words(), "Old and new value are the same.");
  record.close();
  show(std::nullopt, "new");
  EXPECT_EQ(painted(after()), "[new]");
  EXPECT_EQ(words(), "Characters that differ are marked: 0 in the old value, 3 in the new value.");
}

TEST_F(ComparedRecord, EveryRecordHasItsOwnMarks) {
  fillChanges({{"1 a", "1 b"}, {"2", "2"}, {std::nullopt, std::nullopt}});
  record.showRecord(view, 0);
  EXPECT_EQ(painted(before()), "1 [a]");
  record.showNext();
  EXPECT_EQ(painted(before()) + painted(after()), "22");
  EXPECT_EQ(before().accessibleDescription(), "");
  record.showNext();
  EXPECT_EQ(before().accessibleDescription(), "No value (NULL)");
  record.showPrevious();
  record.showPrevious();
  EXPECT_EQ(painted(after()), "1 [b]");
}

TEST_F(ComparedRecord, LineBreaksAreMarkedAtTheEndOfTheirLines) {
  show("one\ntwo", "onetwo");
  EXPECT_EQ(painted(before()), "one[\n]two");
  EXPECT_EQ(painted(after()), "onetwo");
  record.close();
  // Two kinds of line breaks, which look the same.
  show("one\r\ntwo", "one\ntwo");
  EXPECT_EQ(painted(before()), "one[\n]two");
  EXPECT_EQ(painted(after()), "one[\n]two");
  record.close();
  // CR LF is one place in the field, and two characters of the value.
  show("a\r\n\r\nb\r\nc 1 d", "a\r\n\r\nb\r\nc 2 d");
  EXPECT_EQ(painted(before()), "a\n\nb\nc [1] d");
}

TEST_F(ComparedRecord, CharactersOfSeveralUnitsAreMarkedWhole) {
  show("a 😀😁 e\u0301 z", "a 😀😎 e\u0300 z");
  EXPECT_EQ(before().accessibleDescription(), "Only in this value: “😁”, “e\u0301”");
  EXPECT_EQ(words(), "Characters that differ are marked: 2 in the old value, 2 in the new value.");
}

TEST_F(ComparedRecord, WhatTakesNoRoomIsMarkedToo) {
  show("10\u200B0", "100");
  const QImage image = before().viewport()->grab().toImage();
  EXPECT_GT(count(image, image.rect(), ui::Theme::of(before()).removed), 10);
  EXPECT_EQ(words(), "Characters that differ are marked: 1 in the old value, 0 in the new value.");
}

TEST_F(ComparedRecord, WritingFromRightToLeftIsMarkedUnderItsCharacters) {
  show("אבגד", "אבהד");
  EXPECT_EQ(painted(before()), "אב[ג]ד");
  EXPECT_EQ(painted(after()), "אב[ה]ד");
  EXPECT_LT(placeOf(before(), 2).right(), placeOf(before(), 1).left());
  record.close();
  // Both directions in one line.
  show("Pump אבג 12", "Pump אבד 13");
  EXPECT_EQ(painted(before()), "Pump אב[ג] 1[2]");
}

TEST_F(ComparedRecord, TheFirstDifferenceIsInSight) {
  std::string value;
  for (int i = 0; i < 300; ++i) value += "line " + std::to_string(i) + '\n';
  std::string changed = value;
  changed.replace(changed.find("line 200"), 4, "LINE");
  show(value, changed);
  for (ValueField* const each : {&before(), &after()}) {
    EXPECT_LE(each->firstLineShown(), 200);
    EXPECT_GT(each->firstLineShown() + 12, 200);
    EXPECT_GT(count(each->viewport()->grab().toImage(), each->viewport()->rect(),
                    each == &before() ? ui::Theme::of(record).removed : ui::Theme::of(record).added),
              50);
  }
  record.close();
  // Values without differences are shown from their beginning.
  show(value, value);
  EXPECT_EQ(before().verticalScrollBar()->value(), 0);
}

TEST_F(ComparedRecord, DifferencesBehindWhatIsShownAreToldInWords) {
  const std::string same(ValueField::mostCharacters + 10, 'x');
  show(same + "1", same + "2");
  EXPECT_EQ(words(),
            "Characters that differ are marked: 1 in the old value, 1 in the new value. All of them are behind the "
            "characters that are shown.");
  EXPECT_FALSE(before().showsMarks());
  EXPECT_EQ(after().accessibleDescription(), "Only in this value: “2”");
}

TEST_F(ComparedRecord, LargeValuesThatDifferEverywhereAreMarkedWhole) {
  std::string one;
  while (one.size() < 1000000) one += std::to_string(one.size());
  show("[" + one, "[" + std::string(one.rbegin(), one.rend()));
  EXPECT_EQ(words(),
            "The values differ in too many places to compare every character; everything from the first to the last "
            "difference is marked.");
  EXPECT_TRUE(before().showsMarks());
  EXPECT_LE(before().accessibleDescription().size(), 300);
}

TEST_F(ComparedRecord, OldValueIsLeftOfNewValueWhereverTheyAreInTheRecord) {
  fillChanges({{"1", "2"}}, {"NewValue", "Nr", "oldvalue", "OldValue"});
  record.showRecord(view, 0);
  QCoreApplication::processEvents();
  EXPECT_EQ(field("oldvalue").geometry().top(), after().geometry().top());
  EXPECT_LT(field("oldvalue").geometry().right(), after().geometry().left());
  EXPECT_LT(after().geometry().top(), field("Nr").mapTo(after().parentWidget(), QPoint()).y());
  // The first of two old values is compared; the other one is a field like any.
  EXPECT_FALSE(before().showsMarks());
  record.close();
  fillChanges({{"1", "2"}}, {"Nr", "OldValue"});
  record.showRecord(view, 0);
  EXPECT_EQ(words(), "none");
  EXPECT_FALSE(before().showsMarks());
}

TEST_F(ComparedRecord, SpeaksTheLanguage) {
  show("1", "2");
  control::libraryState().language = settings::LanguageOffset("10000");
  record.showRecord(view, 0);
  const QString german = words();
  control::libraryState().language = settings::LanguageOffset("0");
  EXPECT_EQ(german, "Abweichende Zeichen sind markiert: 1 im alten Wert, 1 im neuen Wert.");
}

}  // namespace
}  // namespace korvel::test
