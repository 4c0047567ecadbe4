#pragma once

#include <QByteArray>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "output/page_head.h"

namespace korvel::output::pages {

/// `about` as the metadata of a PDF/A-1b document (XMP), which the toolkit takes. Empty title, program and time of
/// creation must not be.
[[nodiscard]] QByteArray archiveMetadata(const DocumentAbout& about);

/// What is to be written behind a document of the toolkit, which does not take author, subject and language: an
/// incremental update that replaces the document's properties by those of `about`, so that they agree with its
/// metadata, and names the language. `beginning` and `end` are parts of the document, `size` is its size in bytes.
/// Nothing where they do not have the form in which the toolkit writes them.
[[nodiscard]] std::optional<std::string> propertiesUpdate(std::string_view beginning, std::string_view end,
                                                          std::uint64_t size, const DocumentAbout& about);

}  // namespace korvel::output::pages
