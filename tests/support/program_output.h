#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

namespace korvel::test {

/// What a program of the system writes to its standard output; throws where it fails.
inline std::string outputOf(const std::string& commandLine) {
  const auto close = [](std::FILE* pipe) {
    if (pipe != nullptr) ::pclose(pipe);
  };
  std::unique_ptr<std::FILE, decltype(close)> pipe(::popen(commandLine.c_str(), "r"), close);  // NOLINT(cert-env33-c)
  if (!pipe) throw std::runtime_error("cannot run " + commandLine);
  std::string text;
  std::array<char, 65536> chunk{};
  for (std::size_t got = 0; (got = std::fread(chunk.data(), 1, chunk.size(), pipe.get())) > 0;)
    text.append(chunk.data(), got);
  if (::pclose(pipe.release()) != 0) throw std::runtime_error("failed: " + commandLine);
  return text;
}

}  // namespace korvel::test
