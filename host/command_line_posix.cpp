#include "host/command_line.h"

#include <iostream>

namespace korvel::host {

QStringList rawArguments(int argc, char** argv) {
  QStringList arguments;
  for (int i = 1; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
  return arguments;
}

void writeOutput(const QString& text) {
  std::cout << text.toStdString() << std::flush;
}

void writeErrors(const QString& text) {
  std::cerr << text.toStdString() << std::flush;
}

}  // namespace korvel::host
