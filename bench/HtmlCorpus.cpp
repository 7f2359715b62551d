// An HTML page as a content site serves it: pretty-printed, with a head of style and script,
// navigation, and a long run of nested divisions holding articles, tables, nested lists, code,
// forms and figures, with entities, inline formatting, comments, and parts that are hidden or
// scripted.
#include "ClipboardCorpus.h"

#include "CorpusVocabulary.h"
#include "SeededRandom.h"

#include <cstdint>
#include <string_view>

namespace glyphmill::bench {
namespace {

constexpr std::uint64_t htmlSeed = 0x68746D6C70616765ULL;

// clang-format off
constexpr std::string_view entities[] = {
    "&amp;", "&nbsp;", "&mdash;", "&#8217;", "&eacute;", "&copy;", "&hellip;", "&quot;", "&#x1F600;",
    "&lt;", "&gt;", "&euro;", "&ndash;", "&#169;",
};
constexpr std::string_view classNames[] = {"container", "row", "col-md-8", "card", "card-body", "content",
                                           "wrapper", "section", "grid", "panel"};
constexpr std::string_view links[] = {"https://www.example.com/blog/2024/03/release-notes",
                                      "/docs/getting-started", "#comments", "https://example.org/a?b=1&amp;c=2",
                                      "mailto:team@example.com"};
// clang-format on

constexpr std::string_view headStyle = R"(<style>
  :root { --accent: #1f497d; --muted: #6b7280; }
  body { font: 16px/1.5 system-ui, sans-serif; margin: 0; color: #111; }
  .container { max-width: 960px; margin: 0 auto; padding: 0 1rem; }
  .card { border: 1px solid #e5e7eb; border-radius: 8px; padding: 1rem; margin: 1rem 0; }
  .meta, figcaption { color: var(--muted); font-size: .875rem; }
  table.data { border-collapse: collapse; width: 100%; }
  table.data td, table.data th { border-bottom: 1px solid #eee; padding: .25rem .5rem; }
  pre { background: #f6f8fa; overflow: auto; } .visually-hidden { position: absolute; clip: rect(0 0 0 0); }
  @media (max-width: 600px) { .col-md-8 { width: 100%; } nav ul { display: block; } }
</style>)";

constexpr std::string_view headScript = R"(<script>
  window.dataLayer = window.dataLayer || [];
  function track(name, value) { if (value < 0 || name.length > 40) return; dataLayer.push({event: name, value: value}); }
  document.addEventListener('DOMContentLoaded', function () {
    var links = document.querySelectorAll('a[href^="http"]');
    for (var i = 0; i < links.length; i++) links[i].setAttribute('rel', 'noopener');
    track('page_view', 1);
  });
</script>)";

class HtmlGenerator {
public:
    explicit HtmlGenerator(std::size_t minimumBytes) : random_(htmlSeed), minimumBytes_(minimumBytes) {}

    std::string generate() {
        out_ += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                "<title>Release notes &amp; updates | Example</title>\n";
        out_ += headStyle;
        out_ += "\n";
        out_ += headScript;
        out_ += "\n</head>\n<body class=\"page\">\n";
        navigation();
        open("main", "id=\"content\"");
        while (out_.size() < minimumBytes_)
            section();
        close("main");
        line("<footer><p>&copy; 2024 Example Ltd. &middot; <a href=\"/privacy\">Privacy</a></p></footer>");
        line("<script src=\"/assets/app.js\" defer></script>");
        out_ += "</body>\n</html>\n";
        return std::move(out_);
    }

private:
    void line(std::string_view text) {
        out_.append(depth_ * 2, ' ');
        out_ += text;
        out_ += '\n';
    }
    void open(std::string_view tag, std::string_view attributes = {}) {
        line("<" + std::string(tag) + (attributes.empty() ? "" : " ") + std::string(attributes) + ">");
        ++depth_;
    }
    void close(std::string_view tag) {
        --depth_;
        line("</" + std::string(tag) + ">");
    }

    void navigation() {
        open("header", "class=\"site-header\"");
        open("nav", "aria-label=\"Main\"");
        open("ul", "class=\"menu\"");
        for (std::string_view item : {"Home", "Products", "Blog", "Support", "About us"})
            line("<li><a href=\"/" + std::string(item) + "\">" + std::string(item) + "</a></li>");
        close("ul");
        close("nav");
        close("header");
    }

    // A few nested divisions around a run of blocks, as layout frameworks write them.
    void section() {
        const std::size_t wrappers = random_.between(1, 4);
        for (std::size_t i = 0; i < wrappers; ++i)
            open("div", "class=\"" + std::string(random_.pick(classNames)) + "\"");
        const std::size_t blocks = random_.between(3, 10);
        for (std::size_t i = 0; i < blocks; ++i)
            block();
        for (std::size_t i = 0; i < wrappers; ++i)
            close("div");
    }

    void block() {
        const std::size_t kind = random_.below(100);
        if (kind < 40)
            article();
        else if (kind < 52)
            table();
        else if (kind < 64)
            list("ul", 0);
        else if (kind < 70)
            list("ol", 0);
        else if (kind < 75)
            preformatted();
        else if (kind < 80)
            form();
        else if (kind < 86)
            figure();
        else if (kind < 92)
            hiddenOrScripted();
        else
            line("<blockquote><p>" + prose(random_.between(10, 40)) + "</p><cite>" + prose(2) +
                 "</cite></blockquote>");
    }

    void article() {
        open("article", "class=\"post\"");
        line("<h2><a href=\"" + std::string(random_.pick(links)) + "\">" + prose(random_.between(3, 9)) +
             "</a></h2>");
        line("<div class=\"meta\"><span>By <a href=\"/authors/" + std::to_string(random_.below(500)) + "\">" +
             prose(2) + "</a></span> &middot; <time datetime=\"2024-03-05\">March 5, 2024</time></div>");
        const std::size_t paragraphs = random_.between(1, 5);
        for (std::size_t i = 0; i < paragraphs; ++i) {
            if (random_.percent(15))
                line("<h3>" + prose(random_.between(2, 6)) + "</h3>");
            line("<p>" + prose(random_.between(20, 90)) + "</p>");
        }
        if (random_.percent(20))
            line("<address>" + prose(3) + "<br>" + prose(4) + "<br>" + prose(2) + "</address>");
        close("article");
    }

    void table() {
        const std::size_t columns = random_.between(2, 6);
        open("table", "class=\"data\"");
        if (random_.percent(40))
            line("<caption>" + prose(random_.between(3, 8)) + "</caption>");
        open("thead");
        std::string header = "<tr>";
        for (std::size_t c = 0; c < columns; ++c)
            header += "<th scope=\"col\">" + prose(random_.between(1, 2)) + "</th>";
        line(header + "</tr>");
        close("thead");
        open("tbody");
        const std::size_t rows = random_.between(3, 25);
        for (std::size_t r = 0; r < rows; ++r) {
            open("tr");
            for (std::size_t c = 0; c < columns; ++c) {
                if (c == 0)
                    line("<td>" + std::to_string(random_.between(1, 99999)) + "</td>");
                else if (random_.percent(10))
                    line("<td></td>");
                else
                    line("<td>" + prose(random_.between(1, 6)) + "</td>");
            }
            close("tr");
        }
        close("tbody");
        close("table");
    }

    void list(std::string_view tag, std::size_t level) {
        open(tag, tag == "ol" && random_.percent(30)
                      ? "start=\"" + std::to_string(random_.between(2, 20)) + "\""
                      : std::string());
        const std::size_t items = random_.between(2, 8);
        for (std::size_t i = 0; i < items; ++i) {
            if (level < 2 && random_.percent(15)) {
                open("li");
                line(prose(random_.between(2, 10)));
                list(random_.percent(50) ? "ul" : "ol", level + 1);
                close("li");
            } else {
                line("<li>" + prose(random_.between(2, 14)) + "</li>");
            }
        }
        close(tag);
    }

    void preformatted() {
        out_ += "<pre><code class=\"language-cpp\">\n";
        const std::size_t lines = random_.between(3, 15);
        for (std::size_t i = 0; i < lines; ++i) {
            out_.append(random_.below(4) * 4, ' ');
            out_ += "if (count &lt; limit &amp;&amp; " + std::string(random_.pick(vocabulary::commonWords)) +
                    "_" + std::to_string(i) + " &gt; 0) { total += value; }\n";
        }
        out_ += "</code></pre>\n";
    }

    void form() {
        open("form", "action=\"/subscribe\" method=\"post\"");
        line("<label for=\"email\">" + prose(3) +
             "</label> <input type=\"email\" id=\"email\" name=\"email\" "
             "placeholder=\"you@example.com\">");
        open("select", "name=\"topic\"");
        for (std::size_t i = 0; i < 6; ++i)
            line("<option value=\"" + std::to_string(i) + "\">" + prose(2) + "</option>");
        close("select");
        line("<button type=\"submit\">Subscribe</button>");
        close("form");
    }

    void figure() {
        open("figure");
        line("<img src=\"/images/photo-" + std::to_string(random_.below(10000)) + ".jpg\" alt=\"" +
             std::string(random_.pick(vocabulary::commonWords)) +
             "\" width=\"640\" height=\"480\" loading=\"lazy\">");
        line("<figcaption>" + prose(random_.between(4, 16)) + "</figcaption>");
        close("figure");
    }

    void hiddenOrScripted() {
        switch (random_.below(5)) {
        case 0:
            line("<script>track('impression', " + std::to_string(random_.below(1000)) +
                 "); if (window.innerWidth < 600) { document.body.classList.add('narrow'); }</script>");
            break;
        case 1:
            line("<div style=\"display: none\" class=\"tracking\">" + prose(8) + "</div>");
            break;
        case 2:
            line("<!-- " + prose(6) + " -->");
            break;
        case 3:
            line("<noscript><p>" + prose(6) + "</p></noscript><div hidden>" + prose(4) + "</div>");
            break;
        default:
            line("<a class=\"icon\" href=\"/share\"><svg viewBox=\"0 0 24 24\" width=\"16\" height=\"16\">"
                 "<path d=\"M4 12v8a2 2 0 0 0 2 2h12a2 2 0 0 0 2-2v-8\"/></svg> Share</a>");
            break;
        }
    }

    // Words with some inline formatting, links and entities.
    std::string prose(std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0)
                text += random_.percent(6) ? ", " : " ";
            if (random_.percent(3)) {
                text += random_.pick(entities);
                continue;
            }
            std::string word(random_.percent(5) ? random_.pick(vocabulary::internationalWords)
                                                : random_.pick(vocabulary::commonWords));
            switch (random_.below(40)) {
            case 0:
                text += "<strong>" + word + "</strong>";
                break;
            case 1:
                text += "<em>" + word + "</em>";
                break;
            case 2:
                text += "<a href=\"" + std::string(random_.pick(links)) + "\">" + word + "</a>";
                break;
            case 3:
                text += "<code>" + word + "()</code>";
                break;
            case 4:
                text += "<span class=\"highlight\">" + word + "</span>";
                break;
            default:
                text += word;
                break;
            }
        }
        return text;
    }

    SeededRandom random_;
    std::size_t minimumBytes_;
    std::string out_;
    std::size_t depth_ = 0;
};

} // namespace

std::string makeHtmlPage(std::size_t minimumBytes) {
    return HtmlGenerator(minimumBytes).generate();
}

std::string makeHostileHtml(HostileHtml shape, std::size_t minimumBytes) {
    SeededRandom random(htmlSeed);
    auto word = [&random] { return std::string(random.pick(vocabulary::commonWords)); };
    std::string out;
    out.reserve(minimumBytes + 200'000);
    auto repeatUntilFull = [&](auto &&piece) {
        while (out.size() < minimumBytes)
            piece();
    };
    switch (shape) {
    case HostileHtml::attributesInOneTag:
        out += "<p";
        for (std::size_t i = 0; out.size() < minimumBytes; ++i)
            out += " data-a" + std::to_string(i) + "=\"" + word() + "\"";
        out += ">" + word() + "</p>";
        break;
    case HostileHtml::tagsWithManyAttributes:
        repeatUntilFull([&] {
            out += "<p";
            for (int i = 0; i < 1000; ++i)
                out += " data-a" + std::to_string(i) + "=\"" + word() + "\"";
            out += ">" + word() + " " + word() + "</p>\n";
        });
        break;
    case HostileHtml::nestedUnclosedElements:
        for (std::size_t i = 0; out.size() < minimumBytes; ++i)
            out += i % 100 == 0 ? "<span>" + word() + " " : std::string("<span>");
        break;
    case HostileHtml::oneTextNode:
        out += "<p>";
        repeatUntilFull([&] { out += word() + " "; });
        out += "</p>";
        break;
    case HostileHtml::longAttributeValues:
        repeatUntilFull([&] {
            out += "<p title=\"";
            for (const std::size_t start = out.size(); out.size() - start < 100'000;)
                out += word() + " ";
            out += "\" style=\"color: #333\">" + word() + "</p>\n";
        });
        break;
    case HostileHtml::manyComments:
        repeatUntilFull([&] { out += "<!-- " + word() + " -->" + word() + " "; });
        break;
    case HostileHtml::endTagsInDeepNesting:
    case HostileHtml::bodyTagsInDeepNesting:
        out += "<b>" + word() + "</b>";
        for (int i = 0; i < 100'000; ++i)
            out += "<span>";
        repeatUntilFull([&] {
            out += shape == HostileHtml::endTagsInDeepNesting ? "</b></table></li>" : "<body>";
            out += word() + " ";
        });
        break;
    }
    return out;
}

} // namespace glyphmill::bench
