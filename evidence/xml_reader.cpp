#include "evidence/xml_reader.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "base/error.h"
#include "base/text.h"

namespace korvel::evidence {

namespace {

/// The longest tag or text: a cell's text has 32,767 units, each of seven bytes at most.
constexpr std::size_t mostTokenBytes = std::size_t{1} << 20U;
constexpr std::string_view blanks = " \t\r\n";

[[noreturn]] void refuse(const std::string& why) {
  throw Error(unspecifiedFailure, "it holds XML that no workbook has: " + why);
}

/// Appends text with its entities replaced.
void appendDecoded(std::string_view coded, std::string& text) {
  for (;;) {
    const std::size_t at = coded.find('&');
    text.append(coded.substr(0, at));
    if (at == std::string_view::npos) return;
    const std::size_t end = coded.find(';', at);
    if (end == std::string_view::npos) refuse("an entity that does not end");
    const std::string_view entity = coded.substr(at + 1, end - at - 1);
    coded.remove_prefix(end + 1);
    if (entity == "amp") {
      text += '&';
    } else if (entity == "lt") {
      text += '<';
    } else if (entity == "gt") {
      text += '>';
    } else if (entity == "quot") {
      text += '"';
    } else if (entity == "apos") {
      text += '\'';
    } else {
      const bool isHex = entity.starts_with("#x");
      const std::string_view digits = entity.substr(std::min<std::size_t>(isHex ? 2 : 1, entity.size()));
      std::uint32_t code = 0;
      constexpr int hexBase = 16;
      constexpr int decimalBase = 10;
      const auto [stop, error] =
          std::from_chars(digits.data(), digits.data() + digits.size(), code, isHex ? hexBase : decimalBase);
      if (!entity.starts_with('#') || error != std::errc{} || stop != digits.data() + digits.size() || digits.empty())
        refuse("the entity " + std::string(entity.substr(0, 40)));
      appendCodePoint(static_cast<char32_t>(code), text);
    }
  }
}

}  // namespace

bool XmlReader::fill(std::size_t count) {
  while (buffer_.size() - at_ < count && !ended_) {
    if (at_ > 0) {
      buffer_.erase(0, at_);
      at_ = 0;
    }
    const std::string_view more = source_();
    ended_ = more.empty();
    buffer_ += more;
  }
  return buffer_.size() - at_ >= count;
}

std::size_t XmlReader::find(std::string_view mark, std::size_t from) {
  for (;;) {
    const std::size_t found = buffer_.find(mark, at_ + from);
    if (found != std::string::npos) return found - at_;
    const std::size_t had = buffer_.size() - at_;
    if (had > mostTokenBytes) refuse("a tag or text that is too long");
    if (!fill(had + 1)) refuse("it ends within a tag");
    from = had - std::min(had, mark.size() - 1);
  }
}

void XmlReader::take(std::size_t count) {
  at_ += count;
}

void XmlReader::skipTo(std::string_view end) {
  take(find(end, 0) + end.size());
}

XmlReader::Token XmlReader::next() {
  if (endFollows_) {
    endFollows_ = false;
    return Token::end;
  }
  for (;;) {
    if (!fill(1)) return Token::done;
    if (buffer_[at_] != '<') {
      std::size_t length = buffer_.find('<', at_);
      while (length == std::string::npos) {
        const std::size_t had = buffer_.size() - at_;
        if (had > mostTokenBytes) refuse("a tag or text that is too long");
        if (!fill(had + 1)) return takeText(had);
        length = buffer_.find('<', at_ + had);
      }
      return takeText(length - at_);
    }
    constexpr std::string_view comment = "<!--";
    constexpr std::string_view data = "<![CDATA[";
    fill(data.size());
    const std::string_view rest = std::string_view(buffer_).substr(at_);
    if (rest.starts_with("<?")) {
      skipTo("?>");
    } else if (rest.starts_with(comment)) {
      take(comment.size());
      skipTo("-->");
    } else if (rest.starts_with(data)) {
      constexpr std::string_view dataEnd = "]]>";
      take(data.size());
      const std::size_t length = find(dataEnd, 0);
      text_.assign(buffer_, at_, length);
      take(length + dataEnd.size());
      return Token::text;
    } else if (rest.starts_with("<!")) {
      refuse("a document type");
    } else {
      return takeTag();
    }
  }
}

XmlReader::Token XmlReader::takeText(std::size_t length) {
  text_.clear();
  appendDecoded(std::string_view(buffer_).substr(at_, length), text_);
  take(length);
  return Token::text;
}

XmlReader::Token XmlReader::takeTag() {
  // An end mark may stand in an attribute's value.
  std::size_t end = 1;
  for (char quote = '\0';; ++end) {
    if (at_ + end >= buffer_.size()) {
      if (end > mostTokenBytes) refuse("a tag or text that is too long");
      if (!fill(end + 1)) refuse("it ends within a tag");
    }
    const char c = buffer_[at_ + end];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      break;
    }
  }
  std::string_view tag = std::string_view(buffer_).substr(at_ + 1, end - 1);
  const bool isEnd = tag.starts_with('/');
  if (isEnd) tag.remove_prefix(1);
  endFollows_ = !isEnd && tag.ends_with('/');
  if (endFollows_) tag.remove_suffix(1);
  const std::size_t nameEnd = std::min(tag.find_first_of(blanks), tag.size());
  std::string_view name = tag.substr(0, nameEnd);
  if (const std::size_t colon = name.find(':'); colon != std::string_view::npos) name.remove_prefix(colon + 1);
  if (name.empty()) refuse("a tag without a name");
  name_ = name;
  attributes_ = tag.substr(nameEnd);
  take(end + 1);
  return isEnd ? Token::end : Token::begin;
}

std::optional<std::string> XmlReader::attribute(std::string_view name) const {
  std::string_view rest = attributes_;
  for (;;) {
    rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    if (rest.empty()) return std::nullopt;
    const std::size_t equals = rest.find('=');
    if (equals == std::string_view::npos || equals == 0) refuse("an attribute without a value");
    const std::string_view key = rest.substr(0, rest.find_last_not_of(blanks, equals - 1) + 1);
    rest.remove_prefix(equals + 1);
    rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    const char quote = rest.empty() ? '\0' : rest.front();
    const std::size_t end = quote == '"' || quote == '\'' ? rest.find(quote, 1) : std::string_view::npos;
    if (end == std::string_view::npos) refuse("an attribute without a value");
    if (key == name || (key.ends_with(name) && key.size() > name.size() && key[key.size() - name.size() - 1] == ':')) {
      std::string value;
      appendDecoded(rest.substr(1, end - 1), value);
      return value;
    }
    rest.remove_prefix(end + 1);
  }
}

}  // namespace korvel::evidence
