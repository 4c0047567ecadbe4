#include "query/limit_reached.h"

#include <algorithm>

#include "query/audit_record.h"

namespace korvel::query {

namespace {

std::string wholeTrail() {
  return std::string(pageCaptions[0]);
}

}  // namespace

std::vector<std::string> limitReached(const CategoryFlags& flags, const QueryReport& report) {
  std::vector<std::string> captions;
  if (flags.all()) {
    captions.push_back(wholeTrail());
  } else {
    for (std::size_t i = 0; i < flags.size(); ++i)
      if (flags[i]) captions.push_back(categoryCaption(i));
  }
  std::vector<std::string> reached;
  for (const std::size_t result : report.fullResults)
    reached.push_back(report.resultCount == captions.size()
                          ? captions.at(result)
                          : "result set " + std::to_string(result + 1) + " of " + std::to_string(report.resultCount));
  return reached;
}

std::vector<std::string> limitReached(const CompletionReport& report) {
  std::vector<std::string> reached;
  for (const IncompletePart& part : report.incomplete) {
    // What lacks a date was not cut by the limit: it could not be asked for.
    if (part.kind == IncompletePart::Kind::undated) continue;
    const std::string caption = part.category ? categoryCaption(*part.category) : wholeTrail();
    if (std::find(reached.begin(), reached.end(), caption) == reached.end()) reached.push_back(caption);
  }
  return reached;
}

}  // namespace korvel::query
