#include "evidence/comparison_head.h"

#include <algorithm>
#include <utility>

#include "evidence/manifest_head.h"
#include "evidence/origin.h"

namespace korvel::evidence {

namespace {

constexpr std::string_view separator = " \u00B7 ";
constexpr std::size_t longLines = 4;

std::string joined(const std::vector<std::string>& texts, std::string_view between) {
  std::string all;
  for (const std::string& text : texts)
    if (!text.empty()) all.append(all.empty() ? "" : between).append(text);
  return all;
}

/// A moment as people read it.
std::string readable(std::string moment) {
  std::replace(moment.begin(), moment.end(), 'T', ' ');
  return moment;
}

std::string loginText(const std::string& login, const ComparisonLanguage& language) {
  return login.empty() ? std::string() : language.text("page.login", {login});
}

std::string snapshotText(const SnapshotFacts& facts, const ComparisonLanguage& language) {
  const SnapshotSource& source = facts.source;
  constexpr std::size_t dayLength = 10;
  const std::string range =
      source.from.empty()
          ? language.text("page.allDates")
          : language.text("page.days", {source.from.substr(0, dayLength), source.to.substr(0, dayLength)});
  return joined({joined({source.server, source.database}, ", "), facts.engine, loginText(facts.login, language), range,
                 language.text("compare.taken", {readable(facts.begun)}),
                 language.text("compare.rows", {language.count(facts.rows)})},
                separator);
}

std::string trailText(const ComparedSnapshot& compared, const ComparisonLanguage& language) {
  return joined({joined({compared.server, compared.database}, ", "), compared.engine,
                 loginText(compared.login, language), language.text("compare.compared", {readable(compared.begun)}),
                 language.text("compare.rows", {language.count(compared.found.rowsNow)})},
                separator);
}

}  // namespace

output::PageHead comparisonHead(const ComparedSnapshot& compared, const ComparisonLanguage& language,
                                const PrintingProgram& by) {
  // What is said of the origin is the same on all pages of the program.
  Manifest manifest;
  manifest.program = by.program;
  manifest.programVersion = by.version;
  manifest.user = systemUser();
  manifest.computer = computerName();
  manifest.source = {compared.server, compared.database, compared.engine, compared.login};
  PrintedPart part;
  part.caption = language.text("compare.caption");
  part.printed = by.printed;
  output::PageHead head = manifestHead(manifest, part, language.language, language.count);

  const std::vector<std::string> sentences = comparisonSentences(compared, language);
  const std::string all = joined(sentences, ". ");
  head.title = part.caption;
  head.facts = {{language.text("compare.snapshot"), snapshotText(compared.snapshot, language), longLines},
                {language.text("compare.comparedWith"), trailText(compared, language), longLines},
                {language.text("compare.result"), all, 2 * longLines}};
  if (!compared.isUnchanged()) head.warning = sentences.front();
  head.about.description = joined(
      {all, head.facts[0].name + ": " + head.facts[0].text, head.facts[1].name + ": " + head.facts[1].text}, ". ");
  return head;
}

}  // namespace korvel::evidence
