#pragma once

#include <QString>

class QAbstractScrollArea;
class QDialog;
class QDialogButtonBox;
class QLabel;
class QVBoxLayout;
class QWidget;

namespace korvel::ui {

/// Sets the object name of an element and returns the element.
template <typename Element>
Element* named(Element* element, const char* name) {
  element->setObjectName(QLatin1String(name));
  return element;
}

/// Sets up what all dialogs have in common: margins of 12 px, 8 px between elements, no help button in the title.
/// Returns the layout for the content, top to bottom; addButtons() comes last.
QVBoxLayout* styleDialog(QDialog& dialog);

/// Sets the size that a dialog opens with, in px at 96 dpi; never more than nine tenths of the screen.
void setFirstSize(QDialog& dialog, int width, int height);

/// Makes a dialog as high as its wrapped texts need at its width; never lower than it is. Call it when texts have
/// changed.
void growToTexts(QDialog& dialog);

/// Appends the right-aligned row of buttons. Its default button is filled; Enter and Esc reach it and Cancel.
void addButtons(QDialog& dialog, QDialogButtonBox* buttons);

/// Gives an element with one line of text a fixed height: `at96` px at 96 dpi, or more where its font needs more.
/// Follows changes of the font.
void setLineHeight(QWidget& element, int at96);

/// Shows a text that can be selected, also by keyboard. Without a text the label is no stop of the Tab key, where a
/// screen reader would have nothing to say.
void showSelectable(QLabel& label, const QString& text);

/// Grey explanatory text.
void setMuted(QLabel& label);

/// Paints `text` in grey in the middle of the area's viewport: the message of an empty list. Call it from the
/// paintEvent of the area, which paints on its viewport.
void paintEmptyMessage(QAbstractScrollArea& area, const QString& text);

}  // namespace korvel::ui
