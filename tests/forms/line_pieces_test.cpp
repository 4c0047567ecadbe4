// Long lines of the query box: kept in pieces, without a visible effect.
#include "query/forms/line_pieces.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <random>

#include "query/forms/sql_editor.h"
#include "query/forms/sql_highlighter.h"
#include "ui/style/theme.h"

namespace korvel::test {
namespace {

using query::LinePieces;
using query::SqlEditor;

class LongLines : public ::testing::Test {
 protected:
  explicit LongLines(int pieceLength = 4) {
    editor.pieces().setPieceLength(pieceLength);
    editor.show();
    QApplication::setActiveWindow(&editor);
    editor.setFocus();
  }
  /// The blocks as text, those of one line joined by "|".
  QString blocks() {
    QString text;
    for (QTextBlock block = editor.document()->firstBlock(); block.isValid(); block = block.next()) {
      if (block.blockNumber() > 0) text += LinePieces::continues(block) ? '|' : '/';
      EXPECT_EQ(LinePieces::isContinued(block), block.next().isValid() && LinePieces::continues(block.next()));
      text += block.text();
    }
    return text;
  }
  /// The text as one string, its lines ended by LF.
  QString text() { return editor.queryText().replace("\r\n", "\n"); }
  /// The place of a character of text(); between two pieces the end of the first one, or the beginning of the second.
  int placeOf(int character, bool later = false) {
    int begin = 0;
    for (QTextBlock block = editor.document()->firstBlock(); block.isValid(); block = block.next()) {
      const int length = block.length() - 1;
      const bool takesNext = later && character == begin + length && LinePieces::isContinued(block);
      if (character <= begin + length && !takesNext) return block.position() + character - begin;
      begin += length + (LinePieces::isContinued(block) ? 0 : 1);
    }
    ADD_FAILURE() << "no character " << character;
    return 0;
  }
  void select(int anchor, int place) {
    QTextCursor cursor = editor.textCursor();
    cursor.setPosition(anchor);
    cursor.setPosition(place, QTextCursor::KeepAnchor);
    editor.setTextCursor(cursor);
  }
  void putCursor(int place) { select(place, place); }
  void paste(const QString& pasted) {
    QGuiApplication::clipboard()->setText(pasted);
    editor.paste();
  }
  // As often as there can be steps, so that a step that undo adds fails the test.
  void undoAll() {
    for (int step = 0; step < mostSteps && editor.document()->isUndoAvailable(); ++step) editor.undo();
    EXPECT_FALSE(editor.document()->isUndoAvailable());
  }
  void redoAll() {
    for (int step = 0; step < mostSteps && editor.document()->isRedoAvailable(); ++step) editor.redo();
    EXPECT_FALSE(editor.document()->isRedoAvailable());
  }
  void key(Qt::Key code, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&editor, code, modifiers); }

  static constexpr int mostSteps = 500;
  SqlEditor editor;
};

TEST_F(LongLines, AreKeptInPiecesAndHandedOutWhole) {
  editor.setQueryText("abcdefghijkl\r\nshort\r\n\r\n");
  EXPECT_EQ(blocks(), "abcd|efghijkl/short//");
  EXPECT_EQ(editor.queryText(), "abcdefghijkl\r\nshort\r\n\r\n");
  // A piece ends behind a blank, where there is one near its end, and never inside a character.
  editor.setQueryText("abc defghijklm");
  EXPECT_EQ(blocks(), "abc |defg|hijklm");
  editor.setQueryText(QString::fromUtf8("abc\U0001F600defghi"));
  EXPECT_EQ(blocks(), QString::fromUtf8("abc|\U0001F600defghi"));
}

TEST_F(LongLines, TypingIntoALineSplitsItAndUndoingTakesThatBack) {
  editor.setQueryText("abcdefgh");
  EXPECT_EQ(blocks(), "abcdefgh");
  putCursor(4);
  QTest::keyClicks(&editor, "XYZ");
  EXPECT_EQ(blocks(), "abcd|XYZefgh");
  EXPECT_EQ(editor.queryText(), "abcdXYZefgh");
  QTest::keyClicks(&editor, "12");
  EXPECT_EQ(editor.queryText(), "abcdXYZ12efgh");
  undoAll();
  EXPECT_EQ(blocks(), "");
  redoAll();
  EXPECT_EQ(editor.queryText(), "abcdXYZ12efgh");
}

TEST_F(LongLines, KeysStepOverSeams) {
  editor.setQueryText("abcdefghijkl");
  ASSERT_EQ(blocks(), "abcd|efghijkl");
  putCursor(placeOf(4, true));
  key(Qt::Key_Backspace);
  EXPECT_EQ(text(), "abcefghijkl");
  putCursor(placeOf(3));
  key(Qt::Key_Delete);
  EXPECT_EQ(text(), "abcfghijkl");
  putCursor(placeOf(3, true));
  key(Qt::Key_Left);
  QTest::keyClicks(&editor, "1");
  EXPECT_EQ(text(), "ab1cfghijkl");
  putCursor(placeOf(4));
  key(Qt::Key_Right);
  QTest::keyClicks(&editor, "2");
  EXPECT_EQ(text(), "ab1cf2ghijkl");
  putCursor(placeOf(4));
  key(Qt::Key_Right, Qt::ShiftModifier);
  key(Qt::Key_Delete);
  EXPECT_EQ(text(), "ab1c2ghijkl");
}

TEST_F(LongLines, ALineEndIsOneWhereverItIsPut) {
  for (const int place : {0, 2, 4, 6, 12}) {
    for (const bool later : {false, true}) {
      editor.setQueryText("abcdefghijkl");
      putCursor(placeOf(place, later));
      key(Qt::Key_Return);
      EXPECT_EQ(text(), QString("abcdefghijkl").insert(place, '\n')) << place;
      key(Qt::Key_Backspace);
      EXPECT_EQ(text(), "abcdefghijkl") << place;
      paste("x\r\ny\n");
      EXPECT_EQ(text(), QString("abcdefghijkl").insert(place, "x\ny\n")) << place;
    }
  }
}

TEST_F(LongLines, WhatIsRemovedTakesNoLineEndAlongThatStays) {
  const QString whole = "ab\nabcdefghijklmnop\nqr\nstuvwxyzABCD\nE";
  for (int begin = 0; begin <= whole.size(); ++begin)
    for (int end = begin; end <= whole.size(); ++end)
      for (const bool beginLater : {false, true})
        for (const bool endLater : {false, true}) {
          editor.setQueryText(whole);
          const int anchor = placeOf(begin, beginLater);
          const int place = placeOf(end, endLater);
          if (anchor >= place) continue;
          select(anchor, place);
          editor.cut();
          ASSERT_EQ(text(), QString(whole).remove(begin, end - begin)) << begin << ' ' << end;
          blocks();
          editor.undo();
          ASSERT_EQ(text(), whole) << begin << ' ' << end;
        }
}

TEST_F(LongLines, CopiedTextHasNoSeams) {
  editor.setQueryText("abcdefghijkl\nmn");
  select(placeOf(2), placeOf(14));
  editor.copy();
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "cdefghijkl\nm");
}

TEST_F(LongLines, EditedAtRandomTheTextIsWhatAnyOtherWouldBe) {
  std::mt19937 random(20040307);
  const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
  const auto some = [&](int length) {
    const QString letters = "abcde ('-\n";
    QString made;
    for (int i = 0; i < length; ++i) made += letters.at(below(static_cast<int>(letters.size())));
    return made;
  };
  for (int round = 0; round < 60; ++round) {
    QString expected = some(below(60));
    editor.document()->clearUndoRedoStacks();
    editor.setQueryText(expected);
    for (int step = 0; step < 40; ++step) {
      const int size = static_cast<int>(expected.size());
      const int one = below(size + 1);
      const int other = std::min(size, one + below(12));
      const int anchor = placeOf(one, below(2) == 1);
      const bool selects = below(2) == 1;
      select(anchor, selects ? std::max(anchor, placeOf(other, below(2) == 1)) : anchor);
      const int from = one;
      const int count = selects ? other - one : 0;
      const bool onlySeam = count == 0 && editor.textCursor().hasSelection();
      const int action = below(6);
      if (action == 0) {
        const QString added = some(below(15));
        if (added.isEmpty()) continue;
        paste(added);
        expected.replace(from, count, added);
      } else if (action == 1) {
        QTest::keyClicks(&editor, "q");
        expected.replace(from, count, "q");
      } else if (action == 2) {
        key(Qt::Key_Return, below(2) == 1 ? Qt::ShiftModifier : Qt::NoModifier);
        expected.replace(from, count, "\n");
      } else if (action == 3) {
        key(Qt::Key_Backspace);
        if (count > 0) expected.remove(from, count);
        if (count == 0 && from > 0 && !onlySeam) expected.remove(from - 1, 1);
      } else if (action == 4) {
        key(Qt::Key_Delete);
        expected.remove(from, count > 0 ? count : onlySeam ? 0 : 1);
      } else {
        editor.undo();
        editor.redo();
      }
      ASSERT_EQ(text().toStdString(), expected.toStdString()) << round << ' ' << step << ' ' << action;
      for (QTextBlock block = editor.document()->firstBlock(); block.isValid(); block = block.next())
        ASSERT_LE(block.length() - 1, 8);
      blocks();
    }
    undoAll();
    redoAll();
    ASSERT_EQ(text().toStdString(), expected.toStdString()) << round;
  }
}

TEST_F(LongLines, TheLineOfAnErrorIsCountedByLineEnds) {
  editor.setQueryText("abcdefghijklmnop\nfrom\nx");
  editor.setErrorLine(2);
  ASSERT_EQ(editor.errorLine(), 2);
  EXPECT_EQ(editor.extraSelections().value(0).cursor.block().text(), "from");
  editor.setErrorLine(4);
  EXPECT_EQ(editor.errorLine(), std::nullopt);
}

class ColouredLongLines : public LongLines {
 protected:
  ColouredLongLines() : LongLines(10) {}
  /// The colour of each character, as the initial of its kind: keyword, literal, comment, plain.
  QString colours() {
    const query::SqlColours all = query::SqlColours::of(ui::Theme::of(editor));
    QString initials;
    for (QTextBlock block = editor.document()->firstBlock(); block.isValid(); block = block.next()) {
      QString line(block.length() - 1, '.');
      for (const QTextLayout::FormatRange& range : block.layout()->formats()) {
        const QColor ink = range.format.foreground().color();
        const QChar initial = ink == all.keyword ? 'k' : ink == all.literal ? 'l' : ink == all.comment ? 'c' : '?';
        for (int i = range.start; i < range.start + range.length; ++i) line[i] = initial;
      }
      initials += line + (LinePieces::isContinued(block) ? "" : "/");
    }
    return initials;
  }
};

TEST_F(ColouredLongLines, CommentsAndTextsGoOnInTheNextPieceAndEndWhereTheirLineDoes) {
  editor.setQueryText("1 -- aaaa select bbbb select\nselect");
  EXPECT_EQ(colours(), "l.cccccccccccccccccccccccccc/kkkkkk/");
  editor.setQueryText("'aaaa bbbb select cccc select' select\nselect");
  EXPECT_EQ(colours(), "llllllllllllllllllllllllllllll.kkkkkk/kkkkkk/");
  editor.setQueryText("/* -- aaaa bbbb select cccc\n-- */ select");
  EXPECT_EQ(colours(), "ccccccccccccccccccccccccccc/ccccc.kkkkkk/");
  // A line end in the middle of the comment ends it.
  editor.setQueryText("-- aaaa bb select cccc select");
  putCursor(placeOf(11, true));
  key(Qt::Key_Return);
  EXPECT_EQ(colours(), "ccccccccccc/kkkkkk......kkkkkk/");
}

TEST_F(ColouredLongLines, ParenthesesFindTheirPartnerInAnotherPiece) {
  editor.setQueryText("f(aaaa bbbb cccc dddd eeee ffff)");
  putCursor(2);
  ASSERT_EQ(editor.extraSelections().size(), 2);
  EXPECT_EQ(editor.extraSelections()[1].cursor.selectionStart(), placeOf(31));
}

TEST(VeryLongLines, NoBlockIsTooLongToBeLaidOutWithAKey) {
  SqlEditor editor;
  const QString word(1 << 20, 'a');
  editor.setQueryText(word);
  int longest = 0;
  for (QTextBlock block = editor.document()->firstBlock(); block.isValid(); block = block.next())
    longest = std::max(longest, block.length());
  EXPECT_LE(longest, 4097);
  EXPECT_EQ(editor.queryText(), word);
}

}  // namespace
}  // namespace korvel::test
