#include "control/find_matcher.h"

#include <atomic>
#include <memory>
#include <string>
#include <variant>

#include "control/texts.h"

namespace korvel::control {

FindMatcher findMatcher(const ui::FindRequest& request, unsigned steps) {
  FindMatcher result;
  if (request.text.isEmpty()) return result;
  const std::string text = request.text.toStdString();
  const results::TextMatcher::Options options{request.exactCase, request.wholeValue};
  if (!request.regularExpression) {
    result.matcher.emplace(text, options);
    return result;
  }
  result.gaveUp = std::make_shared<std::atomic<bool>>(false);
  auto made = results::regexMatcher(text, options, result.gaveUp, steps);
  if (const auto* problem = std::get_if<results::PatternProblem>(&made))
    result.problem = fromUtf8(problem->text);
  else
    result.matcher = std::get<results::TextMatcher>(std::move(made));
  return result;
}

}  // namespace korvel::control
