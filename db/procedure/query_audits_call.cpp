#include "db/procedure/query_audits_call.h"

#include <bitset>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvel::db {
namespace {

constexpr std::string_view procedureName = "QueryAudits";

/// The server's own numbers for a call that it refuses.
enum Refusal : std::int32_t {
  syntaxError = 102,
  unclosedQuote = 105,
  unclosedComment = 113,
  positionAfterName = 119,
  unknownVariable = 137,
  missingParameter = 201,
  repeatedParameter = 8143,
  tooManyArguments = 8144,
  unknownParameter = 8145
};

constexpr bool startsWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '#' ||
         static_cast<unsigned char>(c) >= 0x80;
}
constexpr bool continuesWord(char c) {
  return startsWord(c) || isDigit(c) || c == '@' || c == '$';
}

std::string parameterName(std::size_t index) {
  constexpr std::array<std::string_view, 3> dateParameters = {"bDate", "FromDate", "ToDate"};
  const std::string_view name =
      index < categoryCount ? categoryConditions()[index].parameter : dateParameters.at(index - categoryCount);
  return "@" + std::string(name);
}

std::optional<std::size_t> parameterIndex(std::string_view name) {
  for (std::size_t index = 0; index < procedureParameterCount; ++index)
    if (equalsIgnoringAsciiCase(name, parameterName(index))) return index;
  return std::nullopt;
}

/// Reads the pieces of a T-SQL call one after the other; every function first skips blanks and comments.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  [[nodiscard]] char peek() {
    skipBlanksAndComments();
    return at_ < text_.size() ? text_[at_] : '\0';
  }
  [[nodiscard]] bool atEnd() {
    skipBlanksAndComments();
    return at_ >= text_.size();
  }
  bool take(char expected) {
    if (atEnd() || text_[at_] != expected) return false;
    ++at_;
    return true;
  }

  /// A name, bare or in brackets or double quotes; empty where there is none.
  std::string name() {
    const char opening = peek();
    if (opening == '[') return enclosed(']');
    if (opening == '"') return enclosed('"');
    return word();
  }

  std::string word() {
    if (atEnd() || !startsWord(text_[at_])) return {};
    return span([](char c) { return continuesWord(c); });
  }

  std::string variable() {
    if (!take('@')) return {};
    return "@" + span([](char c) { return continuesWord(c); });
  }

  /// A value of the call: quoted text, number, or a bare word, which the server takes as a text of its own.
  std::string value() {
    const char first = peek();
    const bool national = (first == 'N' || first == 'n') && at_ + 1 < text_.size() && text_[at_ + 1] == '\'';
    if (national) ++at_;
    if (national || first == '\'') return enclosed('\'');
    if (isDigit(first) || first == '-' || first == '+' || first == '.') {
      const std::size_t start = at_++;
      span([](char c) { return isDigit(c) || c == '.'; });
      return std::string(text_.substr(start, at_ - start));
    }
    if (first == '@') throw Error(unknownVariable, "The variable " + variable() + " has no value here.");
    std::string bare = name();
    if (bare.empty() && first != '[' && first != '"') refuseHere();
    return bare;
  }

  [[noreturn]] void refuseHere() {
    if (atEnd()) throw Error(syntaxError, "The call of QueryAudits ends too early.");
    throw Error(syntaxError, "Unexpected text in the call of QueryAudits: " + std::string(text_.substr(at_, 40)));
  }

 private:
  template <typename Belongs>
  std::string span(Belongs belongs) {
    const std::size_t start = at_;
    while (at_ < text_.size() && belongs(text_[at_])) ++at_;
    return std::string(text_.substr(start, at_ - start));
  }

  /// The text up to the closing mark, which stands doubled where it belongs to the text.
  std::string enclosed(char closing) {
    std::string content;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == closing) {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != closing) {
          ++at_;
          return content;
        }
        ++at_;
      }
      content += text_[at_];
    }
    throw Error(unclosedQuote, std::string("The text before the end of the call lacks its closing ") + closing + ".");
  }

  void skipBlanksAndComments() {
    while (at_ < text_.size()) {
      const std::string_view rest = text_.substr(at_);
      if (std::string_view(" \t\r\n\f\v").find(rest.front()) != std::string_view::npos) {
        ++at_;
      } else if (rest.starts_with("--")) {
        const auto lineEnd = rest.find('\n');
        at_ = lineEnd == std::string_view::npos ? text_.size() : at_ + lineEnd + 1;
      } else if (rest.starts_with("/*")) {
        skipBlockComment();
      } else {
        return;
      }
    }
  }

  /// Block comments nest, as they do on the server.
  void skipBlockComment() {
    std::size_t depth = 0;
    do {
      const std::string_view rest = text_.substr(at_);
      if (rest.empty()) throw Error(unclosedComment, "A comment lacks its closing */.");
      if (rest.starts_with("/*")) {
        ++depth;
        at_ += 2;
      } else if (rest.starts_with("*/")) {
        --depth;
        at_ += 2;
      } else {
        ++at_;
      }
    } while (depth > 0);
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

/// Whether the text calls QueryAudits; leaves the scanner behind the name.
bool readName(Scanner& scanner) {
  const char first = scanner.peek();
  if (!startsWord(first) && first != '[' && first != '"') return false;
  std::string name = scanner.name();
  const bool bare = startsWord(first);
  if (bare && (equalsIgnoringAsciiCase(name, "EXEC") || equalsIgnoringAsciiCase(name, "EXECUTE")))
    name = scanner.name();
  if (equalsIgnoringAsciiCase(name, "dbo") && scanner.take('.')) name = scanner.name();
  return equalsIgnoringAsciiCase(name, procedureName) && scanner.peek() != '.' && scanner.peek() != '(';
}

class ArgumentReader {
 public:
  explicit ArgumentReader(Scanner& scanner) : scanner_(scanner) {}

  QueryAuditsCall read() {
    if (!scanner_.atEnd() && scanner_.peek() != ';') {
      do {
        readArgument();
      } while (scanner_.take(','));
    }
    while (scanner_.take(';')) {
    }
    if (!scanner_.atEnd()) scanner_.refuseHere();
    for (std::size_t index = 0; index < procedureParameterCount; ++index)
      if (!given_[index])
        throw Error(missingParameter, "QueryAudits expects " + std::to_string(procedureParameterCount) +
                                          " values; the one for " + parameterName(index) + " is missing.");
    return std::move(call_);
  }

 private:
  void readArgument() {
    std::size_t index = position_;
    if (scanner_.peek() == '@') {
      const std::string name = scanner_.variable();
      if (!scanner_.take('=')) throw Error(unknownVariable, "The variable " + name + " has no value here.");
      const auto known = parameterIndex(name);
      if (!known) throw Error(unknownParameter, "QueryAudits has no parameter " + name + ".");
      index = *known;
      named_ = true;
    } else if (named_) {
      throw Error(positionAfterName, "After a value given by name every further value must be given by name.");
    }
    std::string value = scanner_.value();
    if (index >= procedureParameterCount)
      throw Error(tooManyArguments,
                  "QueryAudits takes " + std::to_string(procedureParameterCount) + " values; the call has more.");
    if (given_[index])
      throw Error(repeatedParameter, "The parameter " + parameterName(index) + " is given more than once.");
    call_.values[index] = std::move(value);
    given_.set(index);
    ++position_;
  }

  Scanner& scanner_;
  QueryAuditsCall call_;
  std::bitset<procedureParameterCount> given_;
  std::size_t position_ = 0;
  bool named_ = false;
};

}  // namespace

std::optional<QueryAuditsCall> parseQueryAuditsCall(std::string_view commandText) {
  Scanner scanner(commandText);
  try {
    if (!readName(scanner)) return std::nullopt;
  } catch (const Error&) {
    return std::nullopt;  // an unclosed quote or comment before any name of ours: not our call to judge
  }
  return ArgumentReader(scanner).read();
}

}  // namespace korvel::db
