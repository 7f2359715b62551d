#include "cli/Commands.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace glyphmill::cli {
namespace {

constexpr const char *applicationName = "glyphmill-app";

// Beside this program in a build tree; in ../libexec/glyphmill when installed.
std::vector<std::filesystem::path> applicationCandidates(const std::filesystem::path &self) {
    const std::filesystem::path directory = self.parent_path();
    return {directory / applicationName, directory.parent_path() / "libexec" / "glyphmill" / applicationName};
}

} // namespace

void launchApplication(char **argv) {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        fail(ExitStatus::unavailable, "cannot find where glyphmill is installed: " + error.message());
    for (const auto &candidate : applicationCandidates(self)) {
        if (::access(candidate.c_str(), X_OK) != 0)
            continue;
        // The same arguments; only the program changes. The application reads this limit at load
        // time (see its main); setting it here spares it a restart.
        ::setenv("OMP_THREAD_LIMIT", "1", 0);
        argv[0] = const_cast<char *>(candidate.c_str());
        ::execv(candidate.c_str(), argv);
        fail(ExitStatus::unavailable, "cannot start " + candidate.string() + ": " + std::strerror(errno));
    }
    fail(ExitStatus::unavailable, "the Glyphmill application is not installed (" +
                                      std::string(applicationName) + " is neither beside " + self.string() +
                                      " nor in ../libexec/glyphmill)");
}

} // namespace glyphmill::cli
