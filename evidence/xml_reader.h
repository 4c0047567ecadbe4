#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace korvel::evidence {

/// Reads XML in UTF-8 as the parts of a workbook are, a tag or a text at a time, in little memory. Throws Error with a
/// sentence for what is no such XML: tags that are not closed, unknown entities, a document type.
class XmlReader {
 public:
  enum class Token { begin, end, text, done };
  /// Gives the next bytes, valid until the next call; empty at the end.
  using Source = std::function<std::string_view()>;

  explicit XmlReader(Source source) : source_(std::move(source)) {}

  /// The next begin or end of an element, or text between two of them. An element without content has both.
  Token next();
  /// The element's name, without what stands before a colon.
  [[nodiscard]] std::string_view name() const noexcept { return name_; }
  /// The value of an attribute of the element that begins; also where it stands behind a prefix ("r:id").
  [[nodiscard]] std::optional<std::string> attribute(std::string_view name) const;
  /// The text, its entities replaced.
  [[nodiscard]] const std::string& text() const noexcept { return text_; }

 private:
  /// Room for `count` more bytes at the place, if there are as many.
  bool fill(std::size_t count);
  /// The place of `mark` behind the current one; throws where it does not come.
  std::size_t find(std::string_view mark, std::size_t from);
  void skipTo(std::string_view end);
  void take(std::size_t count);
  Token takeTag();
  Token takeText(std::size_t length);

  Source source_;
  std::string buffer_;
  std::size_t at_ = 0;  ///< in the buffer
  bool ended_ = false;
  bool endFollows_ = false;  ///< of an element without content
  std::string name_;
  std::string attributes_;
  std::string text_;
};

}  // namespace korvel::evidence
