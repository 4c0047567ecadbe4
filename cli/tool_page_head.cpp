#include "cli/tool_page_head.h"

#include <chrono>
#include <utility>

#include "cli/manifest_option.h"
#include "cli/standard_question.h"
#include "evidence/origin.h"

namespace korvel::cli {

output::PageHead toolPageHead(evidence::Manifest manifest, evidence::PrintedPart part) {
  if (manifest.program.empty()) {
    const evidence::Manifest begun = begunManifest({}, {});
    manifest.program = begun.program;
    manifest.programVersion = begun.programVersion;
    manifest.user = begun.user;
    manifest.computer = begun.computer;
  }
  part.printed = evidence::localTimeText(std::chrono::system_clock::now());
  return evidence::manifestHead(manifest, part, settings::LanguageOffset{}, groupedNumber);
}

}  // namespace korvel::cli
