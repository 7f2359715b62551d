// Runs the glyphmill program as a child process with its own configuration directory, and
// captures everything it writes.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace glyphmill::testing {

struct ProcessResult {
    int exitStatus = -1; // -1 when the process ended by a signal
    std::string standardOutput;
    std::string standardError;
};

// What the child's standard output is connected to. A regular file is read back into
// standardOutput once the child has ended.
enum class OutputTarget { capturedPipe, pipeWithReaderClosed, deviceFull, regularFile };

// Resource limits the child starts with; none leaves the limit as the test program has it.
struct ChildLimits {
    std::optional<rlim_t> addressSpace = std::nullopt; // RLIMIT_AS, bytes
    std::optional<rlim_t> fileSize = std::nullopt;     // RLIMIT_FSIZE, bytes
};

class GlyphmillProcess {
public:
    GlyphmillProcess();  // a fresh, empty XDG_CONFIG_HOME
    ~GlyphmillProcess(); // removes it again

    ProcessResult run(const std::vector<std::string> &arguments, const std::string &standardInput = {},
                      OutputTarget output = OutputTarget::capturedPipe, const ChildLimits &limits = {}) const;

    const std::filesystem::path &directory() const { return directory_; } // also the working directory
    std::filesystem::path configHome() const { return directory_ / "config"; }
    std::filesystem::path preferenceFile() const { return configHome() / "glyphmill" / "preferences.json"; }
    std::filesystem::path writeFile(const std::string &name, const std::string &contents) const;

private:
    std::filesystem::path directory_;
};

} // namespace glyphmill::testing
