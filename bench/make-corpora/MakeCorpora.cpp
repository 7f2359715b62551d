// Writes the benchmark corpora and the 1,000-term list into a directory, for measurements of
// whole processes such as the command line (see cli-throughput.sh and clipboard-throughput.sh).
#include "ClipboardCorpus.h"
#include "Corpus.h"

#include "common/Utf8.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

using glyphmill::bench::Lettering;

bool writeFile(const std::filesystem::path &path, const std::string &contents) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    file.close();
    if (!file) {
        std::cerr << "make_corpora: cannot write " << path.string() << "\n";
        return false;
    }
    std::cout << path.string() << "\t" << contents.size() << " bytes\n";
    return true;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2 || std::string_view(argv[1]).starts_with('-')) {
        std::cerr << "Usage: make_corpora DIRECTORY\n"
                     "Writes mixed-SIZE.txt and all-caps-SIZE.txt for SIZE 100KB, 1MB and 10MB,\n"
                     "lines-SIZE.txt, page-SIZE.html and document-SIZE.rtf for SIZE 1MB and 10MB, and\n"
                     "terms-1000.txt (one term a line), creating DIRECTORY if needed.\n";
        return 64;
    }
    std::filesystem::path directory(argv[1]);
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        std::cerr << "make_corpora: cannot create " << directory.string() << ": " << error.message() << "\n";
        return 73;
    }

    for (const auto &size : glyphmill::bench::corpusSizes) {
        for (Lettering lettering : {Lettering::mixed, Lettering::allCaps}) {
            std::string name = std::string(lettering == Lettering::mixed ? "mixed-" : "all-caps-") +
                               std::string(size.name) + ".txt";
            if (!writeFile(directory / name, glyphmill::bench::makeCorpus(size.utf8Bytes, lettering)))
                return 74;
        }
        // The clipboard text tools: a list of lines, a web page and a word processor's document.
        if (size.utf8Bytes < 1'000'000)
            continue;
        auto path = [&](std::string_view stem, std::string_view extension) {
            return directory / (std::string(stem) + "-" + std::string(size.name) + std::string(extension));
        };
        if (!writeFile(path("lines", ".txt"), glyphmill::bench::makeLineList(size.utf8Bytes)) ||
            !writeFile(path("page", ".html"), glyphmill::bench::makeHtmlPage(size.utf8Bytes)) ||
            !writeFile(path("document", ".rtf"), glyphmill::bench::makeRtfDocument(size.utf8Bytes)))
            return 74;
    }

    std::string termLines;
    for (const auto &term : glyphmill::bench::makeLargeTermList())
        termLines += glyphmill::utf8::encode(term) + "\n";
    if (!writeFile(directory / "terms-1000.txt", termLines))
        return 74;
    return 0;
}
