#pragma once

class QAbstractScrollArea;
class QCalendarWidget;
class QDialog;
class QDialogButtonBox;
class QLabel;
class QString;
class QVBoxLayout;

namespace korvel::ui {

/// The frame of every dialog: 12 px around, 8 px between, no help button in the title. Returns the layout that is to
/// take the content, top to bottom; end it with addButtons().
QVBoxLayout* styleDialog(QDialog& dialog);

/// Appends the right-aligned row of buttons. Its default button is filled; Enter and Esc reach it and Cancel.
void addButtons(QDialog& dialog, QDialogButtonBox* buttons);

/// A calendar without grid in the colours of the theme: chosen day filled, today semi-bold, week-ends not red.
void styleCalendar(QCalendarWidget& calendar);

/// Adds two arrow buttons beside those of the months, which move the page by a year and select nothing. The texts are
/// their names.
void addYearArrows(QCalendarWidget& calendar, const QString& previous, const QString& next);

/// Grey explanatory text.
void setMuted(QLabel& label);

/// Paints `text` in grey in the middle of the area's viewport: the message of an empty list. Call it from the
/// paintEvent of the area, which paints on its viewport.
void paintEmptyMessage(QAbstractScrollArea& area, const QString& text);

}  // namespace korvel::ui
