#include "query/forms/sql_editor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <QVBoxLayout>

#include "query/forms/sql_highlighter.h"
#include "settings/string_table.h"
#include "ui/style/palettes.h"
#include "ui/style/theme.h"

namespace korvel::test {
namespace {

using query::SqlColours;
using query::SqlEditor;

class SqlEditorTest : public ::testing::Test {
 protected:
  SqlEditorTest() {
    auto* column = new QVBoxLayout(&window);
    column->addWidget(editor);
    column->addWidget(after);
    window.show();
    QApplication::setActiveWindow(&window);
    editor->setFocus();
  }
  /// The colour of the text at a position; invalid for the plain one.
  QColor colourAt(int place) {
    const QTextBlock block = editor->document()->findBlock(place);
    for (const QTextLayout::FormatRange& range : block.layout()->formats())
      if (place - block.position() >= range.start && place - block.position() < range.start + range.length)
        return range.format.foreground().color();
    return {};
  }
  QColor colourOf(const QString& part) { return colourAt(editor->document()->find(part).selectionStart()); }
  SqlColours colours() { return SqlColours::of(ui::Theme::of(*editor)); }
  /// The places of the marked parentheses.
  QList<int> pair() {
    QList<int> places;
    for (const QTextEdit::ExtraSelection& mark : editor->extraSelections())
      if (mark.cursor.hasSelection()) places.append(mark.cursor.selectionStart());
    return places;
  }
  void putCursor(int place) {
    QTextCursor cursor = editor->textCursor();
    cursor.setPosition(place);
    editor->setTextCursor(cursor);
  }

  QWidget window;
  SqlEditor* editor = new SqlEditor;
  QLineEdit* after = new QLineEdit;
};

TEST_F(SqlEditorTest, LinesAreHandedOutWithTheirEnds) {
  for (const char* text : {"a\r\nb\r\n", "a\nb\n", "a\rb\r"}) {
    editor->setQueryText(text);
    EXPECT_EQ(editor->document()->blockCount(), 3) << text;
    EXPECT_EQ(editor->queryText(), "a\r\nb\r\n") << text;
  }
  editor->setQueryText("one line");
  EXPECT_EQ(editor->queryText(), "one line");
  editor->setQueryText("");
  EXPECT_EQ(editor->queryText(), "");
}

TEST_F(SqlEditorTest, NothingOfATextIsTakenForSomethingElse) {
  const QString text = QString::fromUtf8("'\u00A0'\t\u20AC \u4E2D");
  editor->setQueryText(text);
  EXPECT_EQ(editor->queryText(), text);
}

TEST_F(SqlEditorTest, EveryKindOfEnterEndsALine) {
  editor->setQueryText("");
  QTest::keyClicks(editor, "a");
  QTest::keyClick(editor, Qt::Key_Return);
  QTest::keyClicks(editor, "b");
  QTest::keyClick(editor, Qt::Key_Return, Qt::ShiftModifier);
  QTest::keyClicks(editor, "c");
  EXPECT_EQ(editor->queryText(), "a\r\nb\r\nc");
  EXPECT_EQ(editor->document()->blockCount(), 3);
}

TEST_F(SqlEditorTest, PastedTextsAreAsPlainAsTyped) {
  auto* both = new QMimeData;
  both->setText(QString("select\n") + QChar(QChar::LineSeparator) + "1");
  both->setHtml("<b>select</b>");
  QGuiApplication::clipboard()->setMimeData(both);
  editor->setQueryText("");
  editor->paste();
  EXPECT_EQ(editor->queryText(), "select\r\n\r\n1");
  auto* markup = new QMimeData;
  markup->setHtml("<b>no</b>");
  QGuiApplication::clipboard()->setMimeData(markup);
  editor->paste();
  EXPECT_EQ(editor->queryText(), "select\r\n\r\n1");
}

TEST_F(SqlEditorTest, ReplacingTheTextCanBeUndone) {
  editor->setQueryText("first");
  editor->setQueryText("second");
  editor->undo();
  EXPECT_EQ(editor->queryText(), "first");
}

TEST_F(SqlEditorTest, F5AndCtrlEnterRun) {
  editor->setQueryText("x");
  QSignalSpy runs(editor, &SqlEditor::runRequested);
  QTest::keyClick(editor, Qt::Key_F5);
  QTest::keyClick(editor, Qt::Key_Return, Qt::ControlModifier);
  QTest::keyClick(editor, Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier);
  EXPECT_EQ(runs.count(), 3);
  QTest::keyClick(editor, Qt::Key_F5, Qt::ShiftModifier);
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(runs.count(), 3);
  EXPECT_EQ(editor->queryText(), "\r\nx");
}

TEST_F(SqlEditorTest, TabLeavesIt) {
  editor->setQueryText("");
  QTest::keyClick(editor, Qt::Key_Tab);
  EXPECT_TRUE(after->hasFocus());
  QTest::keyClick(after, Qt::Key_Backtab);
  EXPECT_TRUE(editor->hasFocus());
  EXPECT_EQ(editor->queryText(), "");
}

TEST_F(SqlEditorTest, KindsHaveTheirColours) {
  editor->setQueryText("select x, 'a', 12 -- note");
  EXPECT_EQ(colourOf("select"), colours().keyword);
  EXPECT_FALSE(colourOf("x").isValid());
  EXPECT_EQ(colourOf("'a'"), colours().literal);
  EXPECT_EQ(colourOf("12"), colours().literal);
  EXPECT_EQ(colourOf("note"), colours().comment);
}

TEST_F(SqlEditorTest, WhatALineOpensColoursTheNext) {
  editor->setQueryText("a /* b\nselect\n*/ select");
  EXPECT_EQ(colourAt(7), colours().comment);
  EXPECT_EQ(colourAt(17), colours().keyword);
  // Closed in the first line, the second one is a keyword again.
  putCursor(6);
  QTest::keyClicks(editor, "*/");
  EXPECT_EQ(colourAt(9), colours().keyword);
}

TEST_F(SqlEditorTest, ColoursFollowThePalette) {
  for (const QPalette& palette : {ui::lightPalette(), ui::darkPalette(), ui::lightPalette(QColor(Qt::yellow)),
                                  ui::darkPalette(QColor(Qt::darkBlue))}) {
    editor->setPalette(palette);
    editor->setQueryText("select 1 -- c");
    const ui::Theme& theme = ui::Theme::of(palette);
    const SqlColours now = SqlColours::of(theme);
    EXPECT_EQ(colourOf("select"), now.keyword);
    for (const QColor& ground : {theme.surface, now.errorLine, now.pair})
      for (const QColor& ink : {now.keyword, now.literal, now.comment, theme.text})
        EXPECT_GE(ui::contrastRatio(ink, ground), 4.5) << ink.name().toStdString() << ground.name().toStdString();
  }
}

TEST_F(SqlEditorTest, ItsFontIsMonospacedAndAsLargeAsThoseAround) {
  if (QSysInfo::kernelType() == QLatin1String("winnt") &&
      !QFontInfo(QFontDatabase::systemFont(QFontDatabase::FixedFont)).fixedPitch())
    GTEST_SKIP() << "the offscreen platform has no monospaced font of Windows";
  for (const int points : {9, 20}) {
    QFont font = window.font();
    font.setPointSize(points);
    window.setFont(font);
    EXPECT_EQ(editor->font().pointSize(), points);
    const QFontMetrics metrics(editor->font());
    EXPECT_EQ(metrics.horizontalAdvance('i'), metrics.horizontalAdvance('W'));
  }
}

TEST_F(SqlEditorTest, ParenthesesAreShownInPairs) {
  editor->setQueryText("f(a, ')', /*)*/ (b)\n)");
  putCursor(1);
  EXPECT_EQ(pair(), (QList<int>{1, 20}));
  putCursor(2);
  EXPECT_EQ(pair(), (QList<int>{1, 20}));
  putCursor(21);
  EXPECT_EQ(pair(), (QList<int>{20, 1}));
  putCursor(19);
  EXPECT_EQ(pair(), (QList<int>{18, 16}));
  // In a string and in a comment it is not a parenthesis.
  putCursor(7);
  EXPECT_EQ(pair(), QList<int>());
  editor->setQueryText("(a");
  putCursor(1);
  EXPECT_EQ(pair(), QList<int>());
}

TEST_F(SqlEditorTest, TheLineOfAnErrorIsMarkedUntilTheNextEdit) {
  editor->setQueryText("select\r\nfrom\r\nx");
  editor->setErrorLine(2);
  ASSERT_EQ(editor->errorLine(), 2);
  ASSERT_EQ(editor->extraSelections().size(), 1);
  EXPECT_EQ(editor->extraSelections()[0].cursor.block().text(), "from");
  EXPECT_EQ(editor->extraSelections()[0].format.background().color(), colours().errorLine);
  EXPECT_EQ(editor->textCursor().block().text(), "from");
  // Moving the cursor and changing the palette are not edits.
  putCursor(0);
  editor->setPalette(ui::darkPalette());
  EXPECT_EQ(editor->errorLine(), 2);
  QTest::keyClicks(editor, "x");
  EXPECT_EQ(editor->errorLine(), std::nullopt);
  EXPECT_TRUE(editor->extraSelections().isEmpty());
}

TEST_F(SqlEditorTest, ALineThatIsNotThereIsNotMarked) {
  editor->setQueryText("select");
  for (const int line : {0, -1, 2, 1'000'000}) {
    editor->setErrorLine(line);
    EXPECT_EQ(editor->errorLine(), std::nullopt) << line;
  }
  editor->setErrorLine(1);
  editor->setErrorLine(std::nullopt);
  EXPECT_TRUE(editor->extraSelections().isEmpty());
}

TEST_F(SqlEditorTest, ItsMenuSpeaksTheLanguage) {
  const settings::LanguageOffset german("10000");
  editor->setTexts([&](std::string_view key) {
    const std::string_view text = settings::ownText(key, german);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  });
  EXPECT_TRUE(editor->placeholderText().contains("Strg+Eingabe"));
  QGuiApplication::clipboard()->setText("text");
  editor->setQueryText("a");
  editor->setQueryText("b");
  QContextMenuEvent event(QContextMenuEvent::Keyboard, {1, 1}, editor->mapToGlobal(QPoint(1, 1)));
  QCoreApplication::sendEvent(editor, &event);
  auto* menu = editor->findChild<QMenu*>();
  ASSERT_NE(menu, nullptr);
  QStringList texts;
  for (const QAction* action : menu->actions())
    if (!action->isSeparator()) texts.append((action->isEnabled() ? "" : "-") + action->text());
  EXPECT_EQ(texts, (QStringList{"Rückgängig", "-Wiederholen", "-Ausschneiden", "-Kopieren", "Einfügen", "-Löschen",
                                "Alles auswählen"}));
  menu->actions().first()->trigger();
  EXPECT_EQ(editor->queryText(), "a");
}

}  // namespace
}  // namespace korvel::test
