#include "query/query_failure.h"

#include "results/memory_watch.h"

namespace korvel::query {

namespace {

/// Not the table's own sentence is looked up here: there may be no memory for it.
Error explained(std::int32_t number, const char* english, const char* key) {
  Error error(number, english);
  error.setText(key, {});
  return error;
}

}  // namespace

Error internalFailure() {
  return explained(internalErrorNumber, "Internal error", "query.internalError");
}

Error memoryFailure() {
  return explained(results::outOfMemoryNumber, "Out of memory", "query.outOfMemory");
}

Error inWords(const Error& error) {
  const bool isMissingMemory = error.number() == results::outOfMemoryNumber && error.textKey().empty() &&
                               error.description() == results::outOfMemory().description();
  return isMissingMemory ? memoryFailure() : error;
}

}  // namespace korvel::query
