#include "GlyphmillProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char **environ;

namespace glyphmill::testing {
namespace {

void check(int result, const char *what) {
    if (result != 0)
        throw std::runtime_error(std::string(what) + ": " + std::strerror(result < 0 ? errno : result));
}

struct Pipe {
    int readEnd = -1;
    int writeEnd = -1;
    Pipe() {
        int ends[2];
        check(::pipe2(ends, O_CLOEXEC), "pipe2");
        readEnd = ends[0];
        writeEnd = ends[1];
    }
    ~Pipe() {
        closeRead();
        closeWrite();
    }
    void closeRead() {
        if (readEnd >= 0)
            ::close(readEnd);
        readEnd = -1;
    }
    void closeWrite() {
        if (writeEnd >= 0)
            ::close(writeEnd);
        writeEnd = -1;
    }
};

// The parent's environment, with the configuration and home directories moved into the sandbox.
std::vector<std::string> childEnvironment(const std::filesystem::path &directory) {
    std::vector<std::string> variables;
    for (char **entry = environ; *entry; ++entry) {
        std::string_view variable = *entry;
        if (!variable.starts_with("XDG_CONFIG_HOME=") && !variable.starts_with("HOME="))
            variables.emplace_back(variable);
    }
    variables.push_back("XDG_CONFIG_HOME=" + (directory / "config").string());
    variables.push_back("HOME=" + (directory / "home").string());
    return variables;
}

std::vector<char *> pointers(std::vector<std::string> &strings) {
    std::vector<char *> result;
    for (auto &text : strings)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

// Feeds the input and drains both outputs together, so that no pipe fills up and stalls the child.
void communicate(int inputEnd, const std::string &input, int outputEnd, std::string &output, int errorEnd,
                 std::string &error) {
    std::size_t written = 0;
    if (input.empty() && inputEnd >= 0) {
        ::close(inputEnd);
        inputEnd = -1;
    }
    char buffer[1 << 16];
    while (inputEnd >= 0 || outputEnd >= 0 || errorEnd >= 0) {
        pollfd watched[3] = {{inputEnd, POLLOUT, 0}, {outputEnd, POLLIN, 0}, {errorEnd, POLLIN, 0}};
        if (::poll(watched, 3, -1) < 0) {
            if (errno == EINTR)
                continue;
            throw std::runtime_error("poll failed");
        }
        if (inputEnd >= 0 && watched[0].revents) {
            ssize_t count = ::write(inputEnd, input.data() + written, input.size() - written);
            if (count > 0)
                written += static_cast<std::size_t>(count);
            if ((count < 0 && errno != EAGAIN && errno != EINTR) || written == input.size()) {
                ::close(inputEnd); // the child may have stopped reading; that is its business
                inputEnd = -1;
            }
        }
        int *ends[2] = {&outputEnd, &errorEnd};
        std::string *targets[2] = {&output, &error};
        for (int k = 0; k < 2; ++k) {
            if (*ends[k] < 0 || !watched[k + 1].revents)
                continue;
            ssize_t count = ::read(*ends[k], buffer, sizeof buffer);
            if (count > 0) {
                targets[k]->append(buffer, static_cast<std::size_t>(count));
            } else if (count == 0 || errno != EINTR) {
                ::close(*ends[k]);
                *ends[k] = -1;
            }
        }
    }
}

} // namespace

GlyphmillProcess::GlyphmillProcess() {
    std::string pattern = (std::filesystem::temp_directory_path() / "glyphmill-cli-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    directory_ = pattern;
    std::filesystem::create_directory(directory_ / "home");
    // Writing to a pipe whose reader is gone must not end the test program itself.
    std::signal(SIGPIPE, SIG_IGN);
}

GlyphmillProcess::~GlyphmillProcess() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

std::filesystem::path GlyphmillProcess::writeFile(const std::string &name,
                                                  const std::string &contents) const {
    auto path = directory_ / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << contents;
    return path;
}

ProcessResult GlyphmillProcess::run(const std::vector<std::string> &arguments,
                                    const std::string &standardInput, OutputTarget outputTarget,
                                    const ChildLimits &limits) const {
    Pipe input, output, error;
    ::fcntl(input.writeEnd, F_SETFL, O_NONBLOCK);
    if (outputTarget != OutputTarget::capturedPipe)
        output.closeRead();

    // Everything the child needs is made before the fork: between fork and exec it may only make
    // calls that are safe in a copy of a program with other threads.
    std::vector<std::string> argumentStrings{GLYPHMILL_PROGRAM};
    argumentStrings.insert(argumentStrings.end(), arguments.begin(), arguments.end());
    auto argv = pointers(argumentStrings);
    auto environmentStrings = childEnvironment(directory_);
    auto envp = pointers(environmentStrings);
    const std::string outputFile = (directory_ / "standard-output").string();
    const char *outputPath = outputTarget == OutputTarget::deviceFull    ? "/dev/full"
                             : outputTarget == OutputTarget::regularFile ? outputFile.c_str()
                                                                         : nullptr;

    const pid_t child = ::fork();
    if (child < 0)
        throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
    if (child == 0) {
        ::dup2(input.readEnd, STDIN_FILENO);
        if (outputPath) {
            const int file = ::open(outputPath, O_WRONLY | O_CREAT | O_TRUNC, 0600);
            if (file < 0 || ::dup2(file, STDOUT_FILENO) < 0)
                ::_exit(127);
            ::close(file);
        } else {
            ::dup2(output.writeEnd, STDOUT_FILENO);
        }
        ::dup2(error.writeEnd, STDERR_FILENO);
        if (::chdir(directory_.c_str()) != 0)
            ::_exit(127);
        // The child starts with the default SIGPIPE action, as it would from a shell.
        struct sigaction defaultAction {};
        defaultAction.sa_handler = SIG_DFL;
        ::sigaction(SIGPIPE, &defaultAction, nullptr);
        const std::pair<int, std::optional<rlim_t>> wanted[] = {{RLIMIT_AS, limits.addressSpace},
                                                                {RLIMIT_FSIZE, limits.fileSize}};
        for (const auto &[resource, value] : wanted) {
            if (!value)
                continue;
            const rlimit limit{*value, *value};
            if (::setrlimit(resource, &limit) != 0)
                ::_exit(127);
        }
        ::execve(GLYPHMILL_PROGRAM, argv.data(), envp.data());
        ::_exit(127);
    }
    input.closeRead();
    output.closeWrite();
    error.closeWrite();

    ProcessResult result;
    communicate(std::exchange(input.writeEnd, -1), standardInput, std::exchange(output.readEnd, -1),
                result.standardOutput, std::exchange(error.readEnd, -1), result.standardError);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (outputTarget == OutputTarget::regularFile) {
        std::ifstream written(outputFile, std::ios::binary);
        result.standardOutput.assign(std::istreambuf_iterator<char>(written), {});
    }
    return result;
}

} // namespace glyphmill::testing
