// Runs the glyphmill program as a child process with its own configuration directory, and
// captures everything it writes.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace glyphmill::testing {

struct ProcessResult {
    int exitStatus = -1; // -1 when the process ended by a signal
    std::string standardOutput;
    std::string standardError;
};

// What the child's standard output is connected to.
enum class OutputTarget { capturedPipe, pipeWithReaderClosed, deviceFull };

class GlyphmillProcess {
public:
    GlyphmillProcess();  // a fresh, empty XDG_CONFIG_HOME
    ~GlyphmillProcess(); // removes it again

    ProcessResult run(const std::vector<std::string> &arguments, const std::string &standardInput = {},
                      OutputTarget output = OutputTarget::capturedPipe) const;

    const std::filesystem::path &directory() const { return directory_; } // also the working directory
    std::filesystem::path configHome() const { return directory_ / "config"; }
    std::filesystem::path preferenceFile() const { return configHome() / "glyphmill" / "preferences.json"; }
    std::filesystem::path writeFile(const std::string &name, const std::string &contents) const;

private:
    std::filesystem::path directory_;
};

} // namespace glyphmill::testing
