#pragma once

#include <stdio.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>

namespace korvel::test {

/// What a program of the system writes to its standard output; throws where it cannot be started.
inline std::string outputOf(const std::string& commandLine) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::_popen(commandLine.c_str(), "rb"), ::_pclose);
  if (!pipe) throw std::runtime_error("cannot run " + commandLine);
  std::string text;
  std::array<char, 4096> chunk{};
  for (std::size_t got = 0; (got = std::fread(chunk.data(), 1, chunk.size(), pipe.get())) > 0;)
    text.append(chunk.data(), got);
  return text;
}

}  // namespace korvel::test
