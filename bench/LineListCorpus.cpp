// A list of lines as people paste it into the line tools: contacts, links, file names, CSV,
// TSV and log rows, list items and prose, with repeats, blank lines and untidy white space.
#include "ClipboardCorpus.h"

#include "CorpusVocabulary.h"
#include "SeededRandom.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace glyphmill::bench {
namespace {

constexpr std::uint64_t lineListSeed = 0x6C696E656C697374ULL;

// clang-format off
constexpr std::string_view firstNames[] = {
    "Anna", "Ben", "Chloé", "David", "Élodie", "Farid", "Grace", "Hannah", "Igor", "Júlia", "Kenji",
    "Lena", "Mateo", "Nadia", "Oskar", "Priya", "Quentin", "Rosa", "Søren", "Tomás", "Ulla", "Viktor",
    "Wen", "Xavier", "Yara", "Zoë", "Ελένη", "Дмитрий", "美咲", "Ngozi",
};
constexpr std::string_view lastNames[] = {
    "Andersen", "Bauer", "Costa", "Dubois", "Eriksson", "Fischer", "García", "Hughes", "Ivanova",
    "Jansen", "Kowalski", "López", "Müller", "Nakamura", "O'Brien", "Petrović", "Quinn", "Rossi",
    "Schmidt", "Tanaka", "Umarov", "Virtanen", "Wójcik", "Xu", "Yılmaz", "Zimmermann",
    "Παπαδόπουλος", "Смирнов", "山田", "Okafor",
};
constexpr std::string_view mailDomains[] = {"example.com", "mail.example.org", "example.net",
                                            "shop.example.co.uk", "uni-example.de"};
constexpr std::string_view cities[] = {"Berlin", "São Paulo", "Zürich", "Kraków", "Athens",
                                       "東京", "Lagos", "Montréal", "Reykjavík", "Oslo"};
constexpr std::string_view fileWords[] = {"Invoice", "Report", "Photo", "Scan", "Draft", "Minutes",
                                          "Budget", "Contract", "Screenshot", "Notes"};
constexpr std::string_view extensions[] = {".pdf", ".docx", ".xlsx", ".png", ".jpg", ".txt", ".md"};
constexpr std::string_view months[] = {"January", "February", "March", "April", "May", "June", "July",
                                       "August", "September", "October", "November", "December"};
constexpr std::string_view logLevels[] = {"INFO", "INFO", "INFO", "DEBUG", "WARN", "ERROR"};
constexpr std::string_view services[] = {"sync", "auth", "mailer", "billing", "search", "upload"};
constexpr std::string_view logMessages[] = {"retry", "request done", "cache miss", "timeout after",
                                            "queued job", "user signed in", "wrote chunk"};
constexpr std::string_view urlSites[] = {"https://www.example.com/", "https://docs.example.org/",
                                         "http://shop.example.net/", "https://news.example.co.uk/"};
constexpr std::string_view urlPaths[] = {"products", "blog", "docs/api", "support/article", "news",
                                         "careers"};
constexpr std::string_view productNames[] = {"Coffee mug", "Desk lamp", "USB-C cable", "Notebook A5",
                                             "Crème brûlée set", "Wireless mouse", "Tee (größe M)"};
constexpr std::string_view listMarkers[] = {"- ", "* ", "• ", "1. ", "2) ", "[ ] ", "[x] "};
// Space look-alikes and invisibles that Fix Whitespace repairs.
constexpr std::string_view oddSpaces[] = {"\u00A0", "\u200B", "\u3000", "\u2009", "\t"};
// clang-format on

class LineListGenerator {
public:
    explicit LineListGenerator(std::size_t minimumBytes)
        : random_(lineListSeed), minimumBytes_(minimumBytes) {}

    std::string generate() {
        while (out_.size() < minimumBytes_) {
            std::string line = nextLine();
            out_ += line;
            out_ += random_.percent(2) ? "\r\n" : "\n";
            remember(std::move(line));
        }
        return std::move(out_);
    }

private:
    std::string nextLine() {
        if (!recent_.empty() && random_.percent(20))
            return repeatedLine();
        const std::size_t kind = random_.below(100);
        if (kind < 5)
            return random_.percent(80) ? std::string() : std::string(random_.pick(oddSpaces)) + "  ";
        std::string line;
        if (kind < 17)
            line = contact();
        else if (kind < 27)
            line = url();
        else if (kind < 37)
            line = fileName();
        else if (kind < 49)
            line = csvRow();
        else if (kind < 61)
            line = logLine();
        else if (kind < 65)
            line = tabRow();
        else if (kind < 75)
            line = std::string(random_.pick(listMarkers)) + words(random_.between(2, 8));
        else if (kind < 77)
            line = words(random_.between(40, 150)) + ".";
        else
            line = words(random_.between(5, 20)) + ".";
        untidy(line);
        return line;
    }

    // Mostly recent lines, as lists with repeats tend to have them near each other.
    std::string repeatedLine() {
        std::string line = recent_[random_.below(recent_.size())];
        // Composed and decomposed accents look the same and count as the same line.
        if (random_.percent(15)) {
            std::size_t at = line.find("é");
            if (at != std::string::npos)
                line.replace(at, std::string_view("é").size(), "e\u0301");
        }
        return line;
    }

    void remember(std::string line) {
        constexpr std::size_t recentCapacity = 4096;
        if (recent_.size() < recentCapacity)
            recent_.push_back(std::move(line));
        else
            recent_[random_.below(recentCapacity)] = std::move(line);
    }

    std::string number(std::size_t low, std::size_t high) {
        return std::to_string(random_.between(low, high));
    }

    std::string date() {
        std::string day = number(1, 28);
        std::string month = number(1, 12);
        return "202" + number(0, 5) + "-" + (month.size() == 1 ? "0" : "") + month + "-" +
               (day.size() == 1 ? "0" : "") + day;
    }

    std::string personName() {
        return std::string(random_.pick(firstNames)) + " " + std::string(random_.pick(lastNames));
    }

    std::string contact() {
        std::string first(random_.pick(firstNames));
        std::string last(random_.pick(lastNames));
        if (random_.percent(30))
            return last + ", " + first + "; +" + number(1, 99) + " " + number(10, 999) + " " +
                   number(100000, 9999999);
        std::string local = asciiLetters(first);
        const std::string lastLetters = asciiLetters(last);
        if (local.empty())
            local = "contact" + number(1, 9999);
        else if (!lastLetters.empty())
            local += "." + lastLetters;
        return first + " " + last + " <" + local + "@" + std::string(random_.pick(mailDomains)) + ">";
    }

    static std::string asciiLetters(std::string_view name) {
        std::string letters;
        for (char c : name)
            if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'))
                letters += char(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        return letters;
    }

    std::string url() {
        std::string link = std::string(random_.pick(urlSites)) + std::string(random_.pick(urlPaths)) + "/" +
                           std::string(random_.pick(vocabulary::commonWords)) + "-" + number(1, 99999);
        if (random_.percent(30))
            link += "?ref=mail&id=" + number(1, 999999);
        return link;
    }

    // Numbered names, which the file-browser order sorts by value.
    std::string fileName() {
        std::string word(random_.pick(fileWords));
        switch (random_.below(3)) {
        case 0:
            return word + " " + number(1, 250) + std::string(random_.pick(extensions));
        case 1:
            return word + " " + std::string(random_.pick(months)) + " " + date() + " (v" + number(1, 12) +
                   ")" + std::string(random_.pick(extensions));
        default: {
            std::string digits = date();
            std::erase(digits, '-');
            return "IMG_" + digits + "_" + number(100000, 235959) + ".jpg";
        }
        }
    }

    std::string csvRow() {
        return number(1, 99999) + "," + personName() + "," + std::string(random_.pick(cities)) + "," +
               number(1, 9999) + "." + number(10, 99) + "," + date();
    }

    std::string tabRow() {
        return "SKU-" + number(1000, 9999) + "\t" + std::string(random_.pick(productNames)) + "\t" +
               number(1, 40) + "\t€" + number(1, 300) + "," + number(10, 99);
    }

    std::string logLine() {
        return date() + "T" + number(10, 23) + ":" + number(10, 59) + ":" + number(10, 59) + "Z " +
               std::string(random_.pick(logLevels)) + " " + std::string(random_.pick(services)) + ": " +
               std::string(random_.pick(logMessages)) + " " + number(1, 9999) + " ms";
    }

    std::string words(std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0)
                text += random_.percent(6) ? ", " : " ";
            text += random_.percent(5) ? random_.pick(vocabulary::internationalWords)
                                       : random_.pick(vocabulary::commonWords);
        }
        if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
            text[0] = char(text[0] - 'a' + 'A');
        return text;
    }

    // Indents, trailing blanks, doubled spaces and look-alike spaces, as pasted text has them.
    void untidy(std::string &line) {
        if (random_.percent(4)) {
            std::size_t at = line.find(' ');
            if (at != std::string::npos)
                line.insert(at, random_.percent(70) ? " " : random_.pick(oddSpaces));
        }
        if (random_.percent(8))
            line.insert(0, random_.percent(50) ? "    " : "\t");
        if (random_.percent(8))
            line += random_.percent(80) ? "  " : " \u00A0";
    }

    SeededRandom random_;
    std::size_t minimumBytes_;
    std::string out_;
    std::vector<std::string> recent_;
};

} // namespace

std::string makeLineList(std::size_t minimumBytes) {
    return LineListGenerator(minimumBytes).generate();
}

} // namespace glyphmill::bench
