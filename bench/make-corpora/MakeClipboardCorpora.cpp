// Writes the inputs of the clipboard text benchmarks into a directory, for measurements of
// whole processes such as the command line (see clipboard-throughput.sh).
#include "ClipboardCorpus.h"
#include "Corpus.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

bool writeFile(const std::filesystem::path &path, const std::string &contents) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    file.close();
    if (!file) {
        std::cerr << "make_clipboard_corpora: cannot write " << path.string() << "\n";
        return false;
    }
    std::cout << path.string() << "\t" << contents.size() << " bytes\n";
    return true;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2 || std::string_view(argv[1]).starts_with('-')) {
        std::cerr << "Usage: make_clipboard_corpora DIRECTORY\n"
                     "Writes lines-SIZE.txt, prose-SIZE.txt, page-SIZE.html and document-SIZE.rtf for\n"
                     "SIZE 1MB and 10MB, creating DIRECTORY if needed.\n";
        return 64;
    }
    std::filesystem::path directory(argv[1]);
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        std::cerr << "make_clipboard_corpora: cannot create " << directory.string() << ": " << error.message()
                  << "\n";
        return 73;
    }
    using namespace glyphmill::bench;
    for (const auto &size : corpusSizes) {
        if (size.utf8Bytes < 1'000'000)
            continue;
        auto path = [&](std::string_view stem, std::string_view extension) {
            return directory / (std::string(stem) + "-" + std::string(size.name) + std::string(extension));
        };
        if (!writeFile(path("lines", ".txt"), makeLineList(size.utf8Bytes)) ||
            !writeFile(path("prose", ".txt"), makeCorpus(size.utf8Bytes, Lettering::mixed)) ||
            !writeFile(path("page", ".html"), makeHtmlPage(size.utf8Bytes)) ||
            !writeFile(path("document", ".rtf"), makeRtfDocument(size.utf8Bytes)))
            return 74;
    }
    return 0;
}
