// The processes of the benchmark: this program in other roles, and the service.
#pragma once

#include <string>
#include <vector>

namespace hbbtv::bench {

// Arguments of the program.
constexpr char kFloorPlatform[] = "--as-floor-platform";
constexpr char kLibraryPlatform[] = "--as-library-platform";
constexpr char kClient[] = "--as-client";  // followed by the number of a family
constexpr char kCountedClient[] = "--as-counted-client";
constexpr char kCountedService[] = "--as-counted-service";

// The directory of this program, and its path.
std::string ProgramDirectory();
std::string ProgramPath();

// Return command lines. The processes ignore Ctrl-C, so that what has been measured can still be printed.
std::vector<std::string> Shielded(const std::vector<std::string>& command);
std::vector<std::string> RoleCommand(const std::string& role);
std::vector<std::string> ServiceCommand();

// Records to a file, which must not exist.
std::vector<std::string> MonitorCommand(const std::string& file);

// Returns the addition to the environment with which the service finds its implementation.
std::string ServiceEnvironment();

}  // namespace hbbtv::bench
