#include "evidence/manifest_head.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "db/procedure/audit_conditions.h"

namespace korvel::evidence {

namespace {

using output::PageHead;

/// Texts of some size are shortened on paper; a manifest has all of them.
constexpr std::size_t shownBytes = 1500;
constexpr std::size_t queryLines = 3;
constexpr std::size_t longLines = 4;
constexpr std::string_view ellipsis = "\u2026";
constexpr std::string_view separator = " \u00B7 ";

std::string joined(const std::vector<std::string>& texts, std::string_view between) {
  std::string all;
  for (const std::string& text : texts) {
    if (text.empty()) continue;
    if (!all.empty()) all += between;
    all += text;
  }
  return all;
}

/// The beginning of a text, blanks and line breaks in a row as one blank.
std::string onOneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const bool isBlank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
    if (isBlank && (line.empty() || line.back() == ' ')) continue;
    if (line.size() >= shownBytes && (static_cast<unsigned char>(c) & 0xC0U) != 0x80U) return line.append(ellipsis);
    line += isBlank ? ' ' : c;
  }
  if (!line.empty() && line.back() == ' ') line.pop_back();
  return line;
}

/// Categories, "Configuration / Alarms", under the names of their groups: "Configuration: Alarms, Tag Logging".
std::string categoryWords(const std::vector<std::string>& categories) {
  constexpr std::string_view behindGroup = " / ";
  std::string words;
  std::string_view group;
  for (const std::string& category : categories) {
    const std::size_t at = category.find(behindGroup);
    const std::string_view own = std::string_view(category).substr(0, at == std::string::npos ? 0 : at);
    if (!words.empty()) words += !own.empty() && own == group ? ", " : "; ";
    if (!own.empty() && own != group) words.append(own) += ": ";
    words += own.empty() ? category : category.substr(at + behindGroup.size());
    group = own;
  }
  return words;
}

std::string dayOf(const std::string& moment) {
  return moment.substr(0, moment.find(' '));
}

class HeadMaker {
 public:
  HeadMaker(const Manifest& manifest, const PrintedPart& part, const settings::LanguageOffset& language,
            const std::function<std::string(std::size_t)>& count)
      : manifest_(manifest), part_(part), language_(language), count_(count) {}

  PageHead make() {
    trail();
    question();
    choice();
    records();
    completeness();
    head_.remark = part_.remark;
    head_.source = joined({place(), isStandard() ? rangeText() : std::string()}, separator);
    head_.origin = originText();
    head_.about = about();
    return std::move(head_);
  }

 private:
  [[nodiscard]] std::string text(std::string_view key, const std::vector<std::string>& values = {}) const {
    return settings::filled(settings::ownText(key, language_), values);
  }
  void add(std::string_view key, std::string said, std::size_t mostLines = 0) {
    if (!said.empty()) head_.facts.push_back({text(key), std::move(said), mostLines});
  }
  [[nodiscard]] bool isStandard() const { return !manifest_.question.categories.empty(); }
  [[nodiscard]] std::string limit() const { return count_(db::rowLimitPerResult); }

  [[nodiscard]] std::string place() const {
    return joined({onOneLine(manifest_.source.server), onOneLine(manifest_.source.database)}, ", ");
  }
  void trail() {
    const Manifest::Source& source = manifest_.source;
    const std::string login = source.login.empty() ? std::string() : text("page.login", {onOneLine(source.login)});
    add("page.trail", joined({place(), onOneLine(source.engine), login}, separator), longLines);
  }

  [[nodiscard]] std::string rangeText() const {
    const Manifest::Question& question = manifest_.question;
    if (question.from.empty()) return text("page.allDates");
    return text("page.days", {dayOf(question.from), dayOf(question.to)});
  }
  void question() {
    const Manifest::Question& question = manifest_.question;
    if (isStandard()) {
      const bool all = question.categories.size() == db::categoryCount;
      add("page.question", all ? text("page.allCategories") : categoryWords(question.categories), longLines);
      add("page.range", rangeText() + separator.data() + text("page.wallClock"));
      return;
    }
    if (question.text.empty()) return;  // nothing was asked
    add("page.query", onOneLine(question.text), queryLines);
    add("page.querySum", hexText(Sha256::of(question.text)));
    add("page.times", text("page.queriedTimes"));
  }

  void choice() {
    if (manifest_.question.text.empty()) return;
    const std::string filters = onOneLine(joined(manifest_.question.filters, "; "));
    add("page.filters", filters.empty() ? text("page.none") : filters, longLines);
    const std::string& sorted = manifest_.question.sortedBy;
    add("page.sortedBy", sorted.empty() ? text("page.asAnswered") : onOneLine(sorted), longLines);
    add("page.columnsLeftOut", onOneLine(joined(part_.columnsLeftOut, ", ")), longLines);
  }

  void records() {
    std::string said;
    if (part_.isCounted)
      said = text("page.counts", {count_(part_.rows)});
    else if (part_.rows == part_.ofRows)
      said = text("page.rows", {count_(part_.rows)});
    else
      said = text("page.rowsOf", {count_(part_.rows), count_(part_.ofRows)});
    std::vector<std::string> lists;
    for (const Manifest::ListCount& list : manifest_.lists) lists.push_back(list.caption + ' ' + count_(list.rows));
    if (!lists.empty()) said.append(separator) += text("page.answer", {joined(lists, ", ")});
    add("page.records", std::move(said));
  }

  void completeness() {
    const Manifest::Question& question = manifest_.question;
    if (manifest_.isComplete && !*manifest_.isComplete) {
      if (question.beyondLimit)
        head_.warning = text("page.notFinished", {limit()});
      else if (manifest_.limitReached.empty())
        head_.warning = text("page.incomplete", {limit()});
      else
        head_.warning = text("page.incompleteIn", {limit(), categoryWords(manifest_.limitReached)});
    } else if (manifest_.isComplete) {
      complete_ = text(question.beyondLimit ? "page.completed" : "page.complete", {limit()});
      add("page.completeness", complete_);
    }
    add("page.notes", onOneLine(joined(part_.notes, separator)), longLines);
  }

  [[nodiscard]] std::string originText() const {
    // The time as people read it.
    std::string time = part_.printed;
    std::replace(time.begin(), time.end(), 'T', ' ');
    if (const std::size_t offset = time.find_last_of("+-"); offset != std::string::npos && offset > 10)
      time.insert(offset, " ");
    const auto named = [&](std::string_view key, const std::string& name) {
      return name.empty() ? std::string() : text(key, {onOneLine(name)});
    };
    return joined({named("print.printedAt", time), named("page.user", manifest_.user),
                   named("page.computer", manifest_.computer), program()},
                  separator);
  }
  [[nodiscard]] std::string program() const { return joined({manifest_.program, manifest_.programVersion}, " "); }

  [[nodiscard]] output::DocumentAbout about() const {
    constexpr std::array<std::string_view, settings::languageCount> names = {"en", "de", "fr", "es", "it"};
    output::DocumentAbout about;
    about.title = joined({"KorvelAudit Report", joined({part_.caption, place()}, ", ")}, ": ");
    about.author = manifest_.user;
    about.creator = program();
    about.created = part_.printed;
    about.language = names.at(static_cast<std::size_t>(language_.language().index));
    // What a reader must know comes first: programs show the beginning.
    std::vector<std::string> sentences{head_.warning.empty() ? complete_ : head_.warning};
    for (const PageHead::Fact& fact : head_.facts)
      if (fact.text != complete_) sentences.push_back(fact.name + ": " + fact.text);
    sentences.push_back(head_.remark);
    about.description = joined(sentences, ". ");
    return about;
  }

  const Manifest& manifest_;
  const PrintedPart& part_;
  const settings::LanguageOffset& language_;
  const std::function<std::string(std::size_t)>& count_;
  PageHead head_;
  std::string complete_;
};

}  // namespace

PageHead manifestHead(const Manifest& manifest, const PrintedPart& part, const settings::LanguageOffset& language,
                      const std::function<std::string(std::size_t)>& count) {
  return HeadMaker(manifest, part, language, count).make();
}

}  // namespace korvel::evidence
