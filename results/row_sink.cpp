#include "results/row_sink.h"

#include <new>

#include "results/out_of_memory.h"

namespace korvel::results {

void RowSink::beginResult(std::span<const db::Field> fields) {
  try {
    if (firstRows_.empty()) firstFields_.assign(fields.begin(), fields.end());
    firstRows_.push_back(filler_.rowCount());
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
  if (!firstOnly_ || firstRows_.size() == 1) filler_.beginResult(fields);
}

bool RowSink::row(std::span<const db::Cell> cells) {
  // Nobody asked for more than the first result set: the server need not go on sending.
  if (firstOnly_ && firstRows_.size() > 1) return false;
  filler_.append(cells);
  return true;
}

void RowSink::endResult() {
  filler_.finish();
}

std::shared_ptr<const RowStore> RowSink::takeStore() {
  firstRows_.clear();
  firstFields_.clear();
  return filler_.takeStore();
}

}  // namespace korvel::results
