// Whatever the system does to it, the command line ends with one line on standard error and its
// exit status, never by a signal: a file cut short while it is read, memory running out on any
// thread, a full disk, a file size limit.
#include "GlyphmillProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/fanotify.h>
#include <thread>
#include <unistd.h>

namespace glyphmill::testing {
namespace {

constexpr int unreadableInput = 66;
constexpr int internalError = 71;
constexpr int cannotWriteOutput = 74;

#ifdef GLYPHMILL_PROGRAM_SANITIZED
constexpr bool programIsSanitized = true;
#else
constexpr bool programIsSanitized = false;
#endif

std::string repeatedLines(std::size_t bytes) {
    std::string text;
    for (std::size_t line = 0; text.size() < bytes; ++line)
        text += std::to_string(line * 7919 % 100003) +
                " the quick brown fox jumps over the lazy dog, \xC3\xA9t\xC3\xA9\n";
    return text;
}

bool isOneLine(const std::string &text) {
    return text.starts_with("glyphmill: ") && text.find('\n') == text.size() - 1;
}

// Holds every read of one file until this test answers it, so that the file can be changed at an
// exact point of the reading however busy the machine is. Needs CAP_SYS_ADMIN (fanotify).
class ReadGate {
public:
    explicit ReadGate(const std::filesystem::path &file)
        : events_(::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC, O_RDONLY | O_CLOEXEC)),
          stop_(::eventfd(0, EFD_CLOEXEC)) {
        if (events_ >= 0 &&
            ::fanotify_mark(events_, FAN_MARK_ADD, FAN_ACCESS_PERM, AT_FDCWD, file.c_str()) != 0) {
            ::close(events_);
            events_ = -1;
        }
    }
    ~ReadGate() {
        if (events_ >= 0)
            ::close(events_);
        ::close(stop_);
    }
    ReadGate(const ReadGate &) = delete;
    ReadGate &operator=(const ReadGate &) = delete;

    bool available() const { return events_ >= 0 && stop_ >= 0; }

    // Lets every read through until stop(), calling beforeRead first for each; returns how many
    // reads there were. Runs on a thread of its own while the reader runs.
    int serve(const std::function<void(int read)> &beforeRead) {
        int reads = 0;
        alignas(fanotify_event_metadata) char buffer[4096];
        for (;;) {
            pollfd watched[2] = {{events_, POLLIN, 0}, {stop_, POLLIN, 0}};
            if (::poll(watched, 2, -1) < 0 && errno != EINTR)
                return reads;
            if (watched[0].revents & POLLIN) {
                const ssize_t length = ::read(events_, buffer, sizeof buffer);
                auto *event = reinterpret_cast<fanotify_event_metadata *>(buffer);
                for (ssize_t left = length; FAN_EVENT_OK(event, left); event = FAN_EVENT_NEXT(event, left)) {
                    if (event->mask & FAN_ACCESS_PERM) {
                        beforeRead(reads++);
                        const fanotify_response allow{event->fd, FAN_ALLOW};
                        (void)::write(events_, &allow, sizeof allow);
                    }
                    if (event->fd >= 0)
                        ::close(event->fd);
                }
            } else if (watched[1].revents & POLLIN) {
                return reads;
            }
        }
    }
    void stop() {
        const std::uint64_t one = 1;
        (void)::write(stop_, &one, sizeof one);
    }

private:
    int events_;
    int stop_;
};

class SystemFailure : public ::testing::Test {
protected:
    GlyphmillProcess glyphmill;
};

TEST_F(SystemFailure, FileTruncatedWhileItIsReadIsReportedAndNothingWritten) {
    struct Case {
        std::vector<std::string> command;
        std::size_t size; // small files and large ones are read into different memory
    };
    const Case cases[] = {{{"transform", "uppercase", "--defaults"}, 100000},
                          {{"transform", "uppercase", "--defaults"}, 3 << 20},
                          {{"lines", "sort"}, 3 << 20}};
    for (const auto &[command, size] : cases) {
        SCOPED_TRACE(command[0] + " " + std::to_string(size));
        const std::string text = repeatedLines(size);
        const auto file = glyphmill.writeFile("shrinking.txt", text);
        ReadGate gate(file);
        if (!gate.available())
            GTEST_SKIP() << "holding reads needs fanotify and CAP_SYS_ADMIN";
        // Another program cuts the file in half just as the first read begins.
        int reads = 0;
        std::thread server([&] {
            reads = gate.serve([&](int read) {
                if (read == 0)
                    std::filesystem::resize_file(file, text.size() / 2);
            });
        });
        std::vector<std::string> arguments = command;
        arguments.push_back(file.string());
        const ProcessResult result = glyphmill.run(arguments);
        gate.stop();
        server.join();

        ASSERT_GT(reads, 0) << "the file was not read with read()";
        EXPECT_EQ(result.exitStatus, unreadableInput);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(result.standardError, "glyphmill: cannot read \"" + file.string() +
                                            "\": the file was truncated while it was read\n");
    }
}

TEST_F(SystemFailure, FileThatFailsWhileReadIsNamedWithTheReason) {
    // Reading one's own memory from address zero fails with an input/output error.
    const ProcessResult result = glyphmill.run({"transform", "uppercase", "--defaults", "/proc/self/mem"});
    EXPECT_EQ(result.exitStatus, unreadableInput);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError, "glyphmill: cannot read \"/proc/self/mem\": Input/output error\n");

    // A file that reports more than it holds, as those under /sys do, is read as it is.
    const std::string setting = "/sys/kernel/mm/transparent_hugepage/enabled";
    if (std::filesystem::exists(setting)) {
        const ProcessResult reported = glyphmill.run({"transform", "uppercase", "--defaults", setting});
        EXPECT_EQ(reported.exitStatus, 0);
        EXPECT_NE(reported.standardOutput.find("NEVER"), std::string::npos);
    }
}

// Runs the command under ever larger limits on its address space, from the least the program
// starts with, until it succeeds: memory runs out at a different point of the work each time, on
// the main thread or a worker. Every run before must end with status 71 and one line.
void expectEveryShortageReported(const GlyphmillProcess &glyphmill, const std::vector<std::string> &arguments,
                                 rlim_t start, rlim_t step) {
    const ProcessResult unlimited = glyphmill.run(arguments);
    ASSERT_EQ(unlimited.exitStatus, 0) << unlimited.standardError;
    int outOfMemory = 0;
    for (rlim_t limit = start;; limit += step) {
        ASSERT_LT(limit, start + (rlim_t(4) << 30)) << "never had enough memory";
        const ProcessResult result =
            glyphmill.run(arguments, {}, OutputTarget::capturedPipe, {.addressSpace = limit});
        if (result.exitStatus == 0) {
            EXPECT_EQ(result.standardOutput, unlimited.standardOutput) << "with " << (limit >> 20) << " MiB";
            break;
        }
        ASSERT_EQ(result.exitStatus, internalError)
            << "with " << (limit >> 20) << " MiB: " << result.standardError;
        ASSERT_TRUE(isOneLine(result.standardError)) << result.standardError;
        outOfMemory += result.standardError == "glyphmill: not enough memory for this text\n";
    }
    EXPECT_GT(outOfMemory, 0);
}

TEST_F(SystemFailure, MemoryRunningOutOnAnyThreadEndsWithAMessage) {
    if (programIsSanitized)
        GTEST_SKIP() << "a sanitized program reserves more address space than any limit would leave";
    // The least address space in which the program starts and answers at all.
    constexpr rlim_t mebibyte = rlim_t(1) << 20;
    rlim_t least = 8 * mebibyte;
    while (glyphmill.run({"--version"}, {}, OutputTarget::capturedPipe, {.addressSpace = least}).exitStatus !=
           0) {
        least += mebibyte;
        ASSERT_LT(least, 1024 * mebibyte) << "the program does not start";
    }
    // Long enough for the transform to work on several threads, and to restart on huge pages.
    const auto text = glyphmill.writeFile("large.txt", repeatedLines(8 << 20));
    const auto lines = glyphmill.writeFile("lines.txt", repeatedLines(2 << 20));
    expectEveryShortageReported(glyphmill, {"transform", "uppercase", "--defaults", text.string()}, least,
                                2 * mebibyte);
    expectEveryShortageReported(glyphmill, {"lines", "sort", lines.string()}, least, 2 * mebibyte);
}

TEST_F(SystemFailure, OutputThatFindsNoRoomIsReportedByEveryCommand) {
    glyphmill.writeFile("input.txt", "some text\n");
    const std::vector<std::string> commands[] = {
        {"transform", "title-case", "--defaults", "input.txt"},
        {"lines", "number", "input.txt"},
        {"stats", "input.txt"},
        {"html-to-text", "--text", "<p>hello</p>"},
        {"terms", "list"},
        {"--help"},
        {"--version"},
    };
    for (const auto &command : commands) {
        SCOPED_TRACE(command[0]);
        const ProcessResult full = glyphmill.run(command, {}, OutputTarget::deviceFull);
        EXPECT_EQ(full.exitStatus, cannotWriteOutput);
        EXPECT_EQ(full.standardError,
                  "glyphmill: cannot write to standard output: No space left on device\n");
    }

    // A file size limit is a full disk too, not a signal.
    const std::string large = repeatedLines(1 << 20);
    glyphmill.writeFile("large.txt", large);
    const ProcessResult limited = glyphmill.run({"transform", "uppercase", "--defaults", "large.txt"}, {},
                                                OutputTarget::regularFile, {.fileSize = 4096});
    EXPECT_EQ(limited.exitStatus, cannotWriteOutput);
    EXPECT_EQ(limited.standardError, "glyphmill: cannot write to standard output: File too large\n");
    EXPECT_EQ(limited.standardOutput.size(), 4096u);
}

} // namespace
} // namespace glyphmill::testing
