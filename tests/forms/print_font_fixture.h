#pragma once

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <memory>
#include <stdexcept>

#include "output/forms/print_font_form.h"
#include "tests/control/recorder.h"

namespace korvel::test {

/// The dialog of the print font, and the scripted answer of its font dialog.
class PrintFontForm : public ::testing::Test {
 protected:
  void open() {
    form = std::make_unique<output::frmPrintFont>(output::PrintFontContext{font, language, recorder}, nullptr);
    form->show();
  }
  template <typename Element>
  Element& element(const char* name) {
    auto* found = form->findChild<Element*>(name);
    if (found == nullptr) throw std::runtime_error(name);
    return *found;
  }
  void click(const char* button) { element<QPushButton>(button).click(); }
  QString labels() { return element<QLabel>("lblFontName").text() + ' ' + element<QLabel>("lblFontSize").text(); }

  output::PrintFont font;
  settings::LanguageOffset language;
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  std::unique_ptr<output::frmPrintFont> form;
};

}  // namespace korvel::test
