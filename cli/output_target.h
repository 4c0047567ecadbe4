#pragma once

#include <functional>
#include <iosfwd>
#include <string>

#include "db/embedded/embedded_folder.h"
#include "evidence/manifest.h"
#include "output/byte_sink.h"

namespace korvel::cli {

/// The tool never replaces a database by its output.
using db::isDatabaseFile;

/// Whether what is written to `target` appears on a terminal.
[[nodiscard]] bool isTerminal(const std::string& target, const std::ostream& out);

/// Gives the manifest of an output that is completely written.
using ManifestMaker = std::function<evidence::Manifest()>;

/// Runs `write` with a sink for the place that `target` names: "-" is `out`, a file is written atomically, a device or
/// pipe directly. With `manifest`, which only a file can have, the file appears together with it. Throws Error with the
/// system's error number.
void writeTo(const std::string& target, std::ostream& out, const std::function<void(const output::ByteSink&)>& write,
             const ManifestMaker& manifest = {});

/// Thrown by a sink once the program was asked to end: the output is abandoned.
struct Stopped {};

/// Reports it; gives the exit status.
int stopped(std::ostream& err);

/// A sink that writes to `target`, which outlives it, until the program is asked to end; see Interruption.
[[nodiscard]] output::ByteSink untilInterrupted(const output::ByteSink& target);

}  // namespace korvel::cli
