#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace korvel::output {

/// What a document says of itself in its properties. Texts are UTF-8; empty ones are left out.
struct DocumentAbout {
  std::string title;
  std::string author;
  std::string creator;      ///< the program with its version
  std::string created;      ///< local time with its offset: "2026-11-22T16:05:03+01:00"
  std::string language;     ///< of its own words: "en"
  std::string description;  ///< where the rows come from, and whether some are missing
};

/// What stands above and below the rows of a report, in words of one language. Texts are UTF-8.
struct PageHead {
  /// Something that a reader must know about the rows; on the first page.
  struct Fact {
    std::string name;
    std::string text;
    std::size_t mostLines = 0;  ///< where it is longer, it ends in an ellipsis; 0: as many as it takes
  };
  std::string title;  ///< of the pages; empty: the caption of the section, as in the report's file
  std::vector<Fact> facts;
  std::string source;   ///< where the rows come from, in short: on the pages after the first
  std::string warning;  ///< that rows are missing: in a frame on every page
  std::string remark;   ///< what else a reader would not expect: on every page
  std::string origin;   ///< at the foot: who made the pages, when, with which program
  DocumentAbout about;
};

}  // namespace korvel::output
