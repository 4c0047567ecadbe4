#include "cli/marks_command.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "base/paths.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "cli/tool_page_head.h"
#include "evidence/review_report.h"
#include "query/query_failure.h"
#include "settings/string_table.h"

namespace korvel::cli {

namespace {

using evidence::ReviewFile;
using evidence::ReviewMarks;
using evidence::ReviewReport;

constexpr std::string_view jsonFormat = "json";

constexpr const char* footer =
    "FILE is a review file of the viewer. Its marks are written, one a line: who marked which row, as\n"
    "reviewed, with a question or with a comment, and when. Open questions come first. A mark that\n"
    "was changed by another program is named, and nothing is written.\n"
    "\n"
    "With --with-trail the trail that was reviewed is asked, too, all of it or a part (--category,\n"
    "--from, --list): which of its records are not reviewed, and which were changed since. Another\n"
    "server or database must hold the same trail, as a snapshot does.\n"
    "\n"
    "As JSON the report has its parts apart: reviewers, counts, and the marks of each record.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit marks batch-7.review\n"
    "  korvel-audit marks batch-7.review --with-trail --format pdf --output review.pdf\n"
    "  korvel-audit marks batch-7.review --with-trail --from 2004-03-01 --to 2004-03-31 --format json\n";

/// A review file, and all of its marks.
struct ReadReview {
  explicit ReadReview(const std::string& name) : file(pathFromUtf8(name), std::nullopt, ReviewFile::Use::read) {
    marks.add(file.takeNewMarks());
  }
  ReviewFile file;
  ReviewMarks marks;
};

void writeReport(const MarksOptions& options, const ReviewReport& report, const evidence::Manifest& described,
                 const std::string& answerRemark, const output::ByteSink& sink, std::ostream& err) {
  const settings::LanguageOffset english;
  std::string remark;
  for (const std::string& sentence : evidence::reviewReportSentences(report, english, groupedNumber)) {
    if (!options.quiet) err << sentence << '\n';
    addSentence(remark, sentence);
  }
  if (!answerRemark.empty()) addSentence(remark, answerRemark);
  if (options.format->name == jsonFormat) return sink(evidence::reviewReportJson(report));
  const results::ResultList list = evidence::reviewReportList(report, english);
  evidence::PrintedPart part{.caption = std::string(settings::ownText("reviewReport.caption", english)),
                             .rows = list.rowCount(),
                             .ofRows = list.rowCount(),
                             .notes = described.notes,
                             .remark = remark};
  options.format->write({list, part.caption, remark,
                         [&] {
                           output::PageHead head = toolPageHead(described, part);
                           evidence::addReviewFacts(head, report, english, groupedNumber);
                           return head;
                         }},
                        sink, err);
}

/// The question of a report: the trail that was reviewed, unless another one is named.
StandardQuestion questionOf(const MarksOptions& options, const evidence::ReviewedTrail& trail) {
  StandardQuestion question = static_cast<const StandardQuestion&>(options);
  if (question.server.empty()) question.server = trail.server;
  if (question.database.empty()) question.database = trail.database;
  question.complete = true;
  return question;
}

int reportOnFile(const MarksOptions& options, const ReadReview& review, std::ostream& out, std::ostream& err) {
  const Interruption interruption;
  evidence::Manifest described;
  described.source.server = review.file.facts().trail.server;
  described.source.database = review.file.facts().trail.database;
  const auto failure = query::failureOf([&] {
    const ReviewReport report = evidence::makeReviewReport(review.file, review.marks, nullptr);
    writeTo(options.output, out, [&](const output::ByteSink& sink) {
      writeReport(options, report, described, {}, untilInterrupted(sink), err);
    });
  });
  return failure ? outputFailed(err, *failure) : exitDone;
}

int reportOnAnswer(const MarksOptions& options, const ReadReview& review, const query::Connector& connect,
                   std::ostream& out, std::ostream& err) {
  return writeAnswer(
      questionOf(options, review.file.facts().trail), connect, options.output, out, err,
      [&](results::ResultList& list, Answered& answer, const output::ByteSink& sink) -> std::optional<int> {
        const evidence::Manifest described = answer.described();
        const evidence::ReviewedTrail asked = evidence::trailOf(described.source);
        if (!isSameTrail(asked, review.file.facts().trail)) {
          const evidence::ReviewedTrail& trail = review.file.facts().trail;
          throw settings::localizedError(unspecifiedFailure, "review.otherTrail",
                                         {options.file, trail.database, trail.server, asked.database, asked.server});
        }
        const ReviewReport report = evidence::makeReviewReport(review.file, review.marks, &list);
        writeReport(options, report, described, answer.pageRemark, sink, err);
        return std::nullopt;
      });
}

}  // namespace

CLI::App* addMarksCommand(CLI::App& app, MarksOptions& options) {
  CLI::App* command = app.add_subcommand("marks", "Write what reviewers said: who reviewed what, when, what is open");
  command->add_option("file", options.file, "Review file")->option_text("FILE")->required();
  command->add_flag("--with-trail", options.withTrail, "Ask the trail what was changed, and what is not reviewed");
  addQuestion(*command, options);
  // Where they are not given, the review file says what it is of.
  options.server.clear();
  options.database.clear();
  for (const char* const name : {"--server", "--database", "--category", "--from", "--to"})
    command->get_option(name)->needs("--with-trail");
  addList(*command, options);
  command->get_option("--list")->needs("--with-trail");
  addTarget(*command, options.format, options.output);
  addQuiet(*command, options);
  command->footer(footer);
  return command;
}

int runMarks(const MarksOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = questionProblem(options)) return refused(err, *problem);
  if (const auto problem = targetProblem(*options.format, options.output, out)) return refused(err, *problem);
  std::optional<ReadReview> review;
  if (const auto failure = query::failureOf([&] { review.emplace(options.file); })) {
    say(err, errorText(*failure));
    return exitDatabase;
  }
  return options.withTrail ? reportOnAnswer(options, *review, connect, out, err)
                           : reportOnFile(options, *review, out, err);
}

}  // namespace korvel::cli
