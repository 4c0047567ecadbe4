#include "query/sql_tokens.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvel::query {

namespace {

using namespace std::string_view_literals;

// Sorted, for it is searched by halves.
constexpr std::array keywords = {"ADD"sv,
                                 "ALL"sv,
                                 "ALTER"sv,
                                 "AND"sv,
                                 "ANY"sv,
                                 "AS"sv,
                                 "ASC"sv,
                                 "AUTHORIZATION"sv,
                                 "BACKUP"sv,
                                 "BEGIN"sv,
                                 "BETWEEN"sv,
                                 "BREAK"sv,
                                 "BROWSE"sv,
                                 "BULK"sv,
                                 "BY"sv,
                                 "CASCADE"sv,
                                 "CASE"sv,
                                 "CHECK"sv,
                                 "CHECKPOINT"sv,
                                 "CLOSE"sv,
                                 "CLUSTERED"sv,
                                 "COALESCE"sv,
                                 "COLLATE"sv,
                                 "COLUMN"sv,
                                 "COMMIT"sv,
                                 "COMPUTE"sv,
                                 "CONSTRAINT"sv,
                                 "CONTAINS"sv,
                                 "CONTAINSTABLE"sv,
                                 "CONTINUE"sv,
                                 "CONVERT"sv,
                                 "CREATE"sv,
                                 "CROSS"sv,
                                 "CURRENT"sv,
                                 "CURRENT_DATE"sv,
                                 "CURRENT_TIME"sv,
                                 "CURRENT_TIMESTAMP"sv,
                                 "CURRENT_USER"sv,
                                 "CURSOR"sv,
                                 "DATABASE"sv,
                                 "DBCC"sv,
                                 "DEALLOCATE"sv,
                                 "DECLARE"sv,
                                 "DEFAULT"sv,
                                 "DELETE"sv,
                                 "DENY"sv,
                                 "DESC"sv,
                                 "DISK"sv,
                                 "DISTINCT"sv,
                                 "DISTRIBUTED"sv,
                                 "DOUBLE"sv,
                                 "DROP"sv,
                                 "DUMP"sv,
                                 "ELSE"sv,
                                 "END"sv,
                                 "ERRLVL"sv,
                                 "ESCAPE"sv,
                                 "EXCEPT"sv,
                                 "EXEC"sv,
                                 "EXECUTE"sv,
                                 "EXISTS"sv,
                                 "EXIT"sv,
                                 "EXTERNAL"sv,
                                 "FETCH"sv,
                                 "FILE"sv,
                                 "FILLFACTOR"sv,
                                 "FOR"sv,
                                 "FOREIGN"sv,
                                 "FREETEXT"sv,
                                 "FREETEXTTABLE"sv,
                                 "FROM"sv,
                                 "FULL"sv,
                                 "FUNCTION"sv,
                                 "GOTO"sv,
                                 "GRANT"sv,
                                 "GROUP"sv,
                                 "HAVING"sv,
                                 "HOLDLOCK"sv,
                                 "IDENTITY"sv,
                                 "IDENTITYCOL"sv,
                                 "IDENTITY_INSERT"sv,
                                 "IF"sv,
                                 "IN"sv,
                                 "INDEX"sv,
                                 "INNER"sv,
                                 "INSERT"sv,
                                 "INTERSECT"sv,
                                 "INTO"sv,
                                 "IS"sv,
                                 "JOIN"sv,
                                 "KEY"sv,
                                 "KILL"sv,
                                 "LEFT"sv,
                                 "LIKE"sv,
                                 "LINENO"sv,
                                 "LOAD"sv,
                                 "MERGE"sv,
                                 "NATIONAL"sv,
                                 "NOCHECK"sv,
                                 "NONCLUSTERED"sv,
                                 "NOT"sv,
                                 "NULL"sv,
                                 "NULLIF"sv,
                                 "OF"sv,
                                 "OFF"sv,
                                 "OFFSETS"sv,
                                 "ON"sv,
                                 "OPEN"sv,
                                 "OPENDATASOURCE"sv,
                                 "OPENQUERY"sv,
                                 "OPENROWSET"sv,
                                 "OPENXML"sv,
                                 "OPTION"sv,
                                 "OR"sv,
                                 "ORDER"sv,
                                 "OUTER"sv,
                                 "OVER"sv,
                                 "PERCENT"sv,
                                 "PIVOT"sv,
                                 "PLAN"sv,
                                 "PRECISION"sv,
                                 "PRIMARY"sv,
                                 "PRINT"sv,
                                 "PROC"sv,
                                 "PROCEDURE"sv,
                                 "PUBLIC"sv,
                                 "RAISERROR"sv,
                                 "READ"sv,
                                 "READTEXT"sv,
                                 "RECONFIGURE"sv,
                                 "REFERENCES"sv,
                                 "REPLICATION"sv,
                                 "RESTORE"sv,
                                 "RESTRICT"sv,
                                 "RETURN"sv,
                                 "REVERT"sv,
                                 "REVOKE"sv,
                                 "RIGHT"sv,
                                 "ROLLBACK"sv,
                                 "ROWCOUNT"sv,
                                 "ROWGUIDCOL"sv,
                                 "RULE"sv,
                                 "SAVE"sv,
                                 "SCHEMA"sv,
                                 "SELECT"sv,
                                 "SESSION_USER"sv,
                                 "SET"sv,
                                 "SETUSER"sv,
                                 "SHUTDOWN"sv,
                                 "SOME"sv,
                                 "STATISTICS"sv,
                                 "SYSTEM_USER"sv,
                                 "TABLE"sv,
                                 "TABLESAMPLE"sv,
                                 "TEXTSIZE"sv,
                                 "THEN"sv,
                                 "TO"sv,
                                 "TOP"sv,
                                 "TRAN"sv,
                                 "TRANSACTION"sv,
                                 "TRIGGER"sv,
                                 "TRUNCATE"sv,
                                 "TSEQUAL"sv,
                                 "UNION"sv,
                                 "UNIQUE"sv,
                                 "UNPIVOT"sv,
                                 "UPDATE"sv,
                                 "UPDATETEXT"sv,
                                 "USE"sv,
                                 "USER"sv,
                                 "VALUES"sv,
                                 "VARYING"sv,
                                 "VIEW"sv,
                                 "WAITFOR"sv,
                                 "WHEN"sv,
                                 "WHERE"sv,
                                 "WHILE"sv,
                                 "WITH"sv,
                                 "WITHIN"sv,
                                 "WRITETEXT"sv};
static_assert(std::is_sorted(keywords.begin(), keywords.end()));
constexpr std::size_t longestKeyword = 20;

constexpr bool isDigit(char16_t c) noexcept {
  return c >= u'0' && c <= u'9';
}
constexpr bool isLetter(char16_t c) noexcept {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}
constexpr bool isHexDigit(char16_t c) noexcept {
  return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}
/// Blanks as SQL Server takes them; the no-break space among them, which comes along when a text is copied.
constexpr bool isBlank(char16_t c) noexcept {
  return c <= u' ' || c == u'\u00A0' || c == u'\u2028' || c == u'\u2029';
}
// Letters and signs of other scripts are not distinguished: both are shown as they are.
constexpr bool beginsWord(char16_t c) noexcept {
  return isLetter(c) || c == u'_' || c == u'#' || (c >= u'\u0080' && !isBlank(c));
}
constexpr bool continuesWord(char16_t c) noexcept {
  return beginsWord(c) || isDigit(c) || c == u'@' || c == u'$';
}

/// Reads a line from left to right.
class LineReader {
 public:
  LineReader(std::u16string_view line, SqlLineState& state) : line_(line), state_(state) {}

  std::vector<SqlToken> read() {
    while (at_ < line_.size()) {
      begin_ = at_;
      if (state_.open != SqlLineState::Open::nothing) {
        readOpen();
      } else if (isBlank(line_[at_])) {
        ++at_;
      } else {
        readToken();
      }
    }
    return std::move(tokens_);
  }

 private:
  using Open = SqlLineState::Open;

  [[nodiscard]] char16_t peek(std::size_t ahead) const noexcept {
    return at_ + ahead < line_.size() ? line_[at_ + ahead] : u'\0';
  }
  [[nodiscard]] bool startsWith(std::u16string_view text) const noexcept { return line_.substr(at_).starts_with(text); }
  template <typename Predicate>
  void skipWhile(Predicate predicate) {
    while (at_ < line_.size() && predicate(line_[at_])) ++at_;
  }
  void add(SqlTokenKind kind) { tokens_.push_back({begin_, at_ - begin_, kind}); }
  void addOne(SqlTokenKind kind) {
    ++at_;
    add(kind);
  }

  void readToken() {
    const char16_t c = line_[at_];
    if (c == u'\'' || (c == u'N' && peek(1) == u'\'')) {
      open(Open::text, c == u'N' ? 2 : 1);
    } else if (c == u'"') {
      open(Open::quotedName, 1);
    } else if (c == u'[') {
      open(Open::bracketedName, 1);
    } else if (startsWith(u"/*")) {
      state_.commentDepth = 1;
      open(Open::comment, 2);
    } else if (startsWith(u"--")) {
      skipWhile([](char16_t each) { return each != u'\n'; });
      add(SqlTokenKind::comment);
    } else if (startsNumber()) {
      readNumber();
    } else if (c == u'@') {
      skipWhile(continuesWord);
      add(SqlTokenKind::variable);
    } else if (beginsWord(c)) {
      skipWhile(continuesWord);
      add(isSqlKeyword(line_.substr(begin_, at_ - begin_)) ? SqlTokenKind::keyword : SqlTokenKind::name);
    } else {
      addOne(c == u'(' || c == u')' ? SqlTokenKind::parenthesis : SqlTokenKind::other);
    }
  }

  void open(Open what, std::size_t length) {
    at_ += length;
    state_.open = what;
    readOpen();
  }

  /// From `at_` to the end of what is open, or of the line.
  void readOpen() {
    switch (state_.open) {
      case Open::text:
        readQuoted(u'\'', SqlTokenKind::text);
        break;
      case Open::quotedName:
        readQuoted(u'"', SqlTokenKind::name);
        break;
      case Open::bracketedName:
        readQuoted(u']', SqlTokenKind::name);
        break;
      case Open::comment:
        readComment();
        break;
      case Open::nothing:
        break;
    }
  }

  /// A closing mark that stands twice is one of the text's own.
  void readQuoted(char16_t mark, SqlTokenKind kind) {
    while (at_ < line_.size()) {
      if (line_[at_] != mark) {
        ++at_;
      } else if (peek(1) == mark) {
        at_ += 2;
      } else {
        ++at_;
        state_.open = Open::nothing;
        break;
      }
    }
    add(kind);
  }

  void readComment() {
    while (at_ < line_.size() && state_.commentDepth > 0) {
      if (startsWith(u"/*")) {
        ++state_.commentDepth;
        at_ += 2;
      } else if (startsWith(u"*/")) {
        --state_.commentDepth;
        at_ += 2;
      } else {
        ++at_;
      }
    }
    if (state_.commentDepth == 0) state_.open = Open::nothing;
    add(SqlTokenKind::comment);
  }

  [[nodiscard]] bool startsNumber() const noexcept {
    const char16_t c = line_[at_];
    if (isDigit(c)) return true;
    return (c == u'.' || c == u'$') && isDigit(peek(1));
  }

  void readNumber() {
    if (line_[at_] == u'0' && (peek(1) == u'x' || peek(1) == u'X')) {
      at_ += 2;
      skipWhile(isHexDigit);
    } else {
      if (line_[at_] == u'$') ++at_;
      skipWhile(isDigit);
      if (peek(0) == u'.') {
        ++at_;
        skipWhile(isDigit);
      }
      readExponent();
    }
    add(SqlTokenKind::number);
  }

  void readExponent() {
    if (peek(0) != u'e' && peek(0) != u'E') return;
    const bool signedPart = peek(1) == u'+' || peek(1) == u'-';
    if (!isDigit(peek(signedPart ? 2 : 1))) return;
    at_ += signedPart ? 2 : 1;
    skipWhile(isDigit);
  }

  std::u16string_view line_;
  SqlLineState& state_;
  std::size_t at_ = 0;
  std::size_t begin_ = 0;
  std::vector<SqlToken> tokens_;
};

constexpr int openKinds = 5;
constexpr int deepest = 1 << 24;

}  // namespace

int toNumber(const SqlLineState& state) noexcept {
  return static_cast<int>(state.open) + openKinds * std::clamp(state.commentDepth, 0, deepest);
}

SqlLineState toLineState(int number) noexcept {
  // A line that was never looked at has a negative number in some editors.
  if (number < 0) return {};
  SqlLineState state{static_cast<SqlLineState::Open>(number % openKinds), std::min(number / openKinds, deepest)};
  if (state.open != SqlLineState::Open::comment) state.commentDepth = 0;
  if (state.open == SqlLineState::Open::comment) state.commentDepth = std::max(state.commentDepth, 1);
  return state;
}

std::vector<SqlToken> sqlTokens(std::u16string_view line, SqlLineState& state) {
  return LineReader(line, state).read();
}

bool isSqlKeyword(std::u16string_view word) noexcept {
  if (word.size() > longestKeyword) return false;
  std::array<char, longestKeyword> upper{};
  for (std::size_t i = 0; i < word.size(); ++i) {
    const char16_t c = word[i];
    if (c >= u'\u0080') return false;
    upper.at(i) = static_cast<char>(c >= u'a' && c <= u'z' ? c - (u'a' - u'A') : c);
  }
  return std::binary_search(keywords.begin(), keywords.end(), std::string_view(upper.data(), word.size()));
}

}  // namespace korvel::query
