// glyphmill: case transforms, the protected terms and the line tools, from the command line.
#include "cli/Arguments.h"
#include "cli/Commands.h"
#include "cli/Failure.h"
#include "cli/Help.h"
#include "cli/HugePages.h"
#include "cli/InputOutput.h"

#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>

using namespace glyphmill::cli;

namespace {

ExitStatus run(std::span<const char *const> arguments, char **argv) {
    Invocation invocation = parseArguments(arguments);
    if (auto *help = std::get_if<ShowHelp>(&invocation)) {
        writeStandardOutput(helpText(*help));
        return ExitStatus::success;
    }
    if (std::holds_alternative<ShowVersion>(invocation)) {
        writeStandardOutput(versionText());
        return ExitStatus::success;
    }
    if (auto *transform = std::get_if<TransformRequest>(&invocation)) {
        if (!transform->text)
            restartOnHugePagesForLargeInput(argv, transform->file);
        return runTransform(*transform);
    }
    if (auto *lines = std::get_if<LinesRequest>(&invocation))
        return runLines(*lines);
    if (auto *textCommand = std::get_if<TextCommandRequest>(&invocation)) {
        // A document's parse tree takes some 30 times its size in small allocations: on huge
        // pages they cost a fraction of the page faults. A pipe's size is not known beforehand,
        // and the restart costs about a millisecond, so every read document gets it.
        if (textCommand->command == TextCommand::htmlToText && !textCommand->input.text)
            restartOnHugePages(argv);
        return runTextCommand(*textCommand);
    }
    if (std::holds_alternative<LaunchApplication>(invocation))
        launchApplication(argv);
    return runTerms(std::get<TermsRequest>(invocation));
}

// The last resort for what cannot be thrown to main: an exception leaving a function that must
// not throw, or memory so short that not even the exception could be made.
[[noreturn]] void stopOnTerminate() {
    // Threads that get here together: one reports, the others wait for the end.
    static std::atomic<bool> stopping{false};
    if (stopping.exchange(true))
        for (;;)
            ::pause();
    bool outOfMemory = false;
    if (auto current = std::current_exception()) {
        try {
            std::rethrow_exception(current);
        } catch (const std::bad_alloc &) {
            outOfMemory = true;
        } catch (...) {
        }
    }
    writeDiagnostic(outOfMemory ? "not enough memory for this text"
                                : "internal error: the program could not go on");
    std::_Exit(static_cast<int>(ExitStatus::internalError));
}

} // namespace

int main(int argc, char **argv) {
    std::set_terminate(stopOnTerminate);
    // A closed pipe or an output file over the size limit must become a reported write error,
    // not a silent death by signal.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    // Long texts pass through several buffers of their size in turn. Keeping freed memory in
    // the heap lets each new buffer reuse pages already mapped instead of faulting in fresh ones.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    try {
        return static_cast<int>(run({argv + 1, static_cast<std::size_t>(argc > 0 ? argc - 1 : 0)}, argv));
    } catch (const Failure &failure) {
        writeDiagnostic(failure.message);
        return static_cast<int>(failure.status);
    } catch (const std::bad_alloc &) {
        // On whichever thread memory ran out: the worker threads hand their failures back here.
        writeDiagnostic("not enough memory for this text");
        return static_cast<int>(ExitStatus::internalError);
    } catch (const std::length_error &) {
        // A buffer larger than any the library can hold.
        writeDiagnostic("not enough memory for this text");
        return static_cast<int>(ExitStatus::internalError);
    } catch (const std::exception &error) {
        // Any other failure of the library: a message too, never std::terminate.
        char message[512];
        std::snprintf(message, sizeof message, "internal error: %s", error.what());
        writeDiagnostic(message);
        return static_cast<int>(ExitStatus::internalError);
    }
}
