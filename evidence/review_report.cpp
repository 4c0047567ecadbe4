#include "evidence/review_report.h"

#include <algorithm>
#include <map>
#include <new>
#include <nlohmann/json.hpp>
#include <string_view>
#include <tuple>
#include <unordered_map>

#include "base/paths.h"
#include "base/text.h"
#include "query/audit_record.h"
#include "results/memory_watch.h"

namespace korvel::evidence {

namespace {

using Json = nlohmann::ordered_json;
using results::ResultList;
using results::RowId;
using settings::LanguageOffset;
using settings::ownText;

constexpr std::string_view formatName = "korvel-audit-review-report";
constexpr unsigned formatVersion = 1;
/// How many spans of entry numbers are written out before the rest of them is only counted.
constexpr std::size_t mostSpans = 30;

// By RowReview.
constexpr std::array<std::string_view, rowReviewCount> reviewNames = {"not reviewed", "reviewed", "question",
                                                                      "changed since reviewed"};
/// The order in which records stand: what is open comes first.
constexpr std::array<RowReview, rowReviewCount> reviewOrder = {RowReview::question, RowReview::changed, RowReview::none,
                                                               RowReview::reviewed};

std::size_t placeOf(RowReview review) {
  return static_cast<std::size_t>(std::find(reviewOrder.begin(), reviewOrder.end(), review) - reviewOrder.begin());
}

/// What a record says, in a line: "2004-03-09 12:00:00 UPDATE Limit: 5 -> 7".
std::string entryText(const ResultList& list, RowId record) {
  const auto text = [&](std::string_view column) {
    const auto at = query::auditColumnOf(list, column);
    return at ? std::string(trimBlanks(list.store()->cell(record, *at).text)) : std::string();
  };
  std::string line;
  for (const std::string_view column : {"DateTime", "EventType", "EventItem"})
    if (const std::string part = text(column); !part.empty()) line.append(line.empty() ? "" : " ").append(part);
  const std::string before = text("OldValue");
  const std::string now = text("NewValue");
  if (!before.empty() || !now.empty()) line.append(": ").append(before).append(" -> ").append(now);
  return line;
}

class Making {
 public:
  Making(const ReviewFile& file, const ReviewMarks& marks, const ResultList* answer) : marks_(marks), answer_(answer) {
    report_.file = utf8FromPath(file.file().filename());
    report_.facts = file.facts();
    report_.lastDigest = file.lastDigest();
    report_.marks = marks.all().size();
  }

  ReviewReport make() {
    countReviewers();
    if (answer_ != nullptr) lookAtAnswer();
    for (const ReviewMark& mark : marks_.all()) recordOf(mark).marks.push_back(mark);
    std::stable_sort(report_.records.begin(), report_.records.end(), [](const auto& a, const auto& b) {
      return std::tuple(placeOf(a.review), a.number) < std::tuple(placeOf(b.review), b.number);
    });
    return std::move(report_);
  }

 private:
  using Record = ReviewReport::Record;

  void countReviewers() {
    for (const ReviewMark& mark : marks_.all()) {
      auto found = std::find_if(report_.reviewers.begin(), report_.reviewers.end(),
                                [&](const auto& each) { return each.user == mark.user; });
      if (found == report_.reviewers.end())
        found = report_.reviewers.insert(found, {.user = mark.user, .first = mark.time});
      ++found->marks;
      found->last = mark.time;
    }
  }

  void lookAtAnswer() {
    report_.answer = reviewOf(*answer_, marks_);
    auto identifier = RecordIdentifier::of(*answer_);
    if (!report_.answer || !identifier) throw settings::localizedError(unspecifiedFailure, "reviewReport.noRecords");
    std::vector<std::int64_t> numbers;
    for (const RowId record : answer_->wholeRows()) {
      const auto number = identifier->numberOf(record);
      const RowReview review = report_.answer->of(record);
      if (review == RowReview::none) {
        if (number)
          numbers.push_back(*number);
        else
          ++report_.notReviewedWithoutNumber;
      }
      if (!marks_.areUnder(number)) continue;
      if (review == RowReview::changed)
        changed_.emplace(*number, record);
      else
        there_.emplace(hexText(identifier->identityOf(record).digest), record);
    }
    joinNumbers(std::move(numbers));
  }

  void joinNumbers(std::vector<std::int64_t> numbers) {
    std::sort(numbers.begin(), numbers.end());
    for (const std::int64_t number : numbers) {
      if (!report_.notReviewed.empty() && number - 1 <= report_.notReviewed.back().last)
        report_.notReviewed.back().last = number;
      else
        report_.notReviewed.push_back({number, number});
    }
  }

  Record& recordOf(const ReviewMark& mark) {
    const std::string digest = hexText(mark.row);
    const auto there = there_.find(digest);
    const auto changed = mark.number ? changed_.find(*mark.number) : changed_.end();
    const bool isChanged = there == there_.end() && changed != changed_.end();
    // A record that changed has the marks of all that it was before.
    const auto [place, isNew] =
        places_.try_emplace(isChanged ? std::to_string(*mark.number) : digest, report_.records.size());
    if (isNew) {
      Record record{.number = mark.number, .review = isChanged ? RowReview::changed : marks_.ofRow(mark.row)};
      if (isChanged || there != there_.end()) {
        record.isInAnswer = true;
        record.entry = entryText(*answer_, isChanged ? changed->second : there->second);
      }
      report_.records.push_back(std::move(record));
    }
    return report_.records[place->second];
  }

  const ReviewMarks& marks_;
  const ResultList* answer_;
  ReviewReport report_;
  std::unordered_map<std::string, RowId> there_;         ///< marked records of the answer, by digest
  std::unordered_map<std::int64_t, RowId> changed_;      ///< by entry number
  std::unordered_map<std::string, std::size_t> places_;  ///< in the report, by digest or number
};

std::string numbersText(const std::vector<ReviewReport::Numbers>& spans, std::string_view dash) {
  std::string text;
  for (std::size_t i = 0; i < spans.size() && i < mostSpans; ++i) {
    text.append(i == 0 ? "" : ", ").append(std::to_string(spans[i].first));
    if (spans[i].last != spans[i].first) text.append(dash).append(std::to_string(spans[i].last));
  }
  if (spans.size() > mostSpans) text += ", …";
  return text;
}

/// A text of ours with its places filled.
std::string filledText(std::string_view key, const std::vector<std::string>& values, const LanguageOffset& language) {
  return settings::filled(ownText(key, language), values);
}

void add(Json& object, const char* name, const std::string& text) {
  if (!text.empty()) object[name] = text;
}

Json recordJson(const ReviewReport& report, const ReviewReport::Record& record) {
  Json json;
  json["number"] = record.number ? Json(*record.number) : Json();
  json["state"] = reviewNames.at(static_cast<std::size_t>(record.review));
  if (report.answer) json["inAnswer"] = record.isInAnswer;
  add(json, "entry", record.entry);
  for (const ReviewMark& mark : record.marks) {
    Json each = {{"place", mark.place},
                 {"kind", markKinds().at(static_cast<std::size_t>(mark.kind)).name},
                 {"row", hexText(mark.row)}};
    add(each, "comment", mark.comment);
    add(each, "user", mark.user);
    add(each, "computer", mark.computer);
    add(each, "time", mark.time);
    json["marks"].push_back(std::move(each));
  }
  return json;
}

Json answerJson(const ReviewReport& report) {
  Json json = {{"records", report.answer->records},
               {"reviewed", report.answer->count(RowReview::reviewed)},
               {"questions", report.answer->count(RowReview::question)},
               {"changedSinceReviewed", report.answer->count(RowReview::changed)},
               {"notReviewed", report.answer->count(RowReview::none)}};
  json["notReviewedNumbers"] = Json::array();
  for (const ReviewReport::Numbers& each : report.notReviewed)
    json["notReviewedNumbers"].push_back({{"first", each.first}, {"last", each.last}});
  if (report.notReviewedWithoutNumber > 0) json["notReviewedWithoutNumber"] = report.notReviewedWithoutNumber;
  return json;
}

}  // namespace

std::size_t ReviewReport::count(RowReview review) const {
  if (answer) return answer->count(review);
  return static_cast<std::size_t>(
      std::count_if(records.begin(), records.end(), [review](const Record& each) { return each.review == review; }));
}

ReviewReport makeReviewReport(const ReviewFile& file, const ReviewMarks& marks, const ResultList* answer) {
  try {
    return Making(file, marks, answer).make();
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

std::string reviewReportJson(const ReviewReport& report) {
  Json json;
  json["format"] = formatName;
  json["version"] = formatVersion;
  json["file"] = report.file;
  json["trail"] = {{"server", report.facts.trail.server}, {"database", report.facts.trail.database}};
  json["created"] = {{"time", report.facts.created},
                     {"user", report.facts.user},
                     {"computer", report.facts.computer},
                     {"program", report.facts.program}};
  json["marks"] = report.marks;
  json["lastDigest"] = hexText(report.lastDigest);
  json["reviewers"] = Json::array();
  for (const ReviewReport::Reviewer& each : report.reviewers)
    json["reviewers"].push_back(
        {{"user", each.user}, {"marks", each.marks}, {"first", each.first}, {"last", each.last}});
  if (report.answer) json["answer"] = answerJson(report);
  json["records"] = Json::array();
  for (const ReviewReport::Record& record : report.records) json["records"].push_back(recordJson(report, record));
  // Names of users and comments may have bytes that are no text.
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

ResultList reviewReportList(const ReviewReport& report, const LanguageOffset& language) {
  std::vector<db::Field> fields;
  std::vector<results::ColumnHeader> headers;
  for (const std::string_view key :
       {"reviewReport.state", "reviewReport.number", "reviewReport.entry", "reviewReport.mark", "reviewReport.comment",
        "reviewReport.reviewer", "reviewReport.computer", "reviewReport.time"}) {
    const std::string caption(ownText(key, language));
    fields.push_back({caption});
    headers.push_back({caption, results::standardColumnWidth, 0});
  }
  const auto store = std::make_shared<results::RowStore>();
  store->beginResult(fields);
  std::vector<RowId> rows;
  for (const ReviewReport::Record& record : report.records) {
    std::string state(ownText(rowReviewTexts.at(static_cast<std::size_t>(record.review)), language));
    if (report.answer && !record.isInAnswer) state.append(", ").append(ownText("reviewReport.notInAnswer", language));
    const std::string number = record.number ? std::to_string(*record.number) : std::string();
    for (const ReviewMark& mark : record.marks) {
      const std::string_view kind = ownText(markKinds().at(static_cast<std::size_t>(mark.kind)).textKey, language);
      std::vector<db::Cell> cells;
      for (const std::string_view text : std::initializer_list<std::string_view>{
               state, number, record.entry, kind, mark.comment, mark.user, mark.computer, mark.time})
        cells.push_back({text, text.empty()});
      rows.push_back(store->append(cells));
    }
  }
  ResultList list(results::RowFilling::whole);
  list.setColumns(std::move(headers));
  list.setRows(store, std::move(rows));
  return list;
}

std::vector<std::string> reviewReportSentences(const ReviewReport& report, const LanguageOffset& language,
                                               const std::function<std::string(std::size_t)>& count) {
  std::vector<std::string> sentences;
  const std::string reviewed = count(report.count(RowReview::reviewed));
  sentences.push_back(report.answer
                          ? filledText("reviewReport.progress", {reviewed, count(report.answer->records)}, language)
                          : filledText("reviewReport.reviewed", {reviewed}, language));
  sentences.push_back(filledText("reviewReport.openQuestions", {count(report.count(RowReview::question))}, language));
  if (report.answer)
    sentences.push_back(filledText("reviewReport.changed", {count(report.count(RowReview::changed))}, language));
  return sentences;
}

void addReviewFacts(output::PageHead& head, const ReviewReport& report, const LanguageOffset& language,
                    const std::function<std::string(std::size_t)>& count) {
  std::vector<output::PageHead::Fact> facts;
  facts.push_back(
      {std::string(ownText("reviewReport.file", language)),
       report.file + ", " + filledText("reviewReport.created", {report.facts.created, report.facts.user}, language)});
  std::string reviewers;
  for (const ReviewReport::Reviewer& each : report.reviewers)
    reviewers.append(reviewers.empty() ? "" : "; ")
        .append(
            filledText("reviewReport.reviewerMarks", {each.user, count(each.marks), each.first, each.last}, language));
  if (!reviewers.empty()) facts.push_back({std::string(ownText("reviewReport.reviewers", language)), reviewers, 8});
  if (report.answer && report.count(RowReview::none) > 0) {
    std::string missing = count(report.count(RowReview::none));
    if (!report.notReviewed.empty()) missing += " (" + numbersText(report.notReviewed, "–") + ")";
    facts.push_back({std::string(ownText("review.none", language)), missing});
  }
  facts.push_back({std::string(ownText("reviewReport.lastDigest", language)), hexText(report.lastDigest)});
  head.facts.insert(head.facts.begin(), facts.begin(), facts.end());
}

}  // namespace korvel::evidence
