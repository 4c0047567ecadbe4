#pragma once

#include <windows.h>

#include <streambuf>
#include <string>

namespace korvel::cli {

/// A stream buffer for a console: takes UTF-8 and writes whole characters.
class ConsoleBuffer final : public std::streambuf {
 public:
  explicit ConsoleBuffer(HANDLE console) noexcept : console_(console) {}

 protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* bytes, std::streamsize count) override;
  int sync() override;

 private:
  /// Writes the first `size` of the bytes that are waiting.
  bool write(std::size_t size);

  HANDLE console_;
  std::string waiting_;
};

/// How many bytes of `text` end with a character's last byte.
[[nodiscard]] std::size_t lengthInWholeCharacters(std::string_view text) noexcept;

}  // namespace korvel::cli
