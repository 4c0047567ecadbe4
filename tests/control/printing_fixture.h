#pragma once

#include <QPrinter>
#include <string>

#include "tests/control/exports_fixture.h"

namespace korvel::test {

/// The print dialog is answered with a file.
class Printing : public Outputs {
 protected:
  Printing() {
    recorder->onPrinter = [this](QPrinter& printer) {
      printer.setOutputFormat(QPrinter::PdfFormat);
      printer.setOutputFileName(path("printed.pdf"));
      return true;
    };
  }
  /// The report viewer reports that it has the report when the event loop runs.
  static void completeDocuments() { QCoreApplication::processEvents(); }
  [[nodiscard]] std::string printed() const { return written("printed.pdf"); }
};

}  // namespace korvel::test
