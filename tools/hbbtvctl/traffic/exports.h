// The files for other programs that hbbtvctl show writes.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "traffic/select/selection.h"

namespace hbbtv::ctl {

struct ExportOptions {
    std::string pcapng;  // names of files; "-" is standard output
    std::string perfetto;
    std::string walk;
    std::string html;

    // Returns the name of the file, or an empty string.
    std::string File() const { return pcapng + perfetto + walk + html; }
};

// Returns the options, which exclude each other.
std::vector<CLI::Option*> AddExports(CLI::App& command, ExportOptions& options);

// Writes the selected records. `live`: the records arrive while they are written. Throws Failure(kUsage) if the file
// cannot be written.
void WriteExport(const ExportOptions& options, traffic::Selection& selection, bool live);

}  // namespace hbbtv::ctl
