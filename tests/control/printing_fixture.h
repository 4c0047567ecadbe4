#pragma once

#include <QPrinter>
#include <string>

#include "tests/control/exports_fixture.h"

namespace korvel::test {

/// Whoever is asked for a printer chooses a file.
class Printing : public Outputs {
 protected:
  Printing() {
    recorder->onPrinter = [this](QPrinter& printer) {
      printer.setOutputFormat(QPrinter::PdfFormat);
      printer.setOutputFileName(path("printed.pdf"));
      return true;
    };
  }
  /// The report viewer says that it has the report when the event loop runs.
  static void completeDocuments() { QCoreApplication::processEvents(); }
  [[nodiscard]] std::string printed() const { return written("printed.pdf"); }
};

}  // namespace korvel::test
