// Reads the rendered corpus with the Tesseract recognizer and the product's line assembly, and
// prints the character error rate, the share of lines in reading order and the time per region.
//
//   ocr_accuracy [--psm N] [--level words|lines] [--upscale none|nearest|bilinear|bicubic]
//                [--dpi N] [--no-invert] [--noise N] [--verbose] [--no-timing] [--only NAME-PART]
//                [--dump DIR]
//
// --dpi is the resolution per device pixel per point after enlarging; --noise the confidence
// under which stray symbols are dropped; --dump writes each image and what was read from it.
// Tesseract runs on one thread: the program restarts itself with OMP_THREAD_LIMIT=1 when it is
// not set.
#include "OcrCorpus.h"
#include "OcrCorpusText.h"
#include "OcrMetrics.h"

#include "capture/text/LineAssembly.h"
#include "platform/linux/TesseractTextRecognizer.h"

#include <QDir>
#include <QFile>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>

using namespace glyphmill;
using namespace glyphmill::ocrbench;

namespace {

struct Result {
    QString name;
    QString category;
    int edits = 0;
    int length = 0;
    int linesInOrder = 0;
    int lines = 0;
    double milliseconds = 0;
    double cer() const { return length == 0 ? 0 : static_cast<double>(edits) / length; }
    double order() const { return lines == 0 ? 1 : static_cast<double>(linesInOrder) / lines; }
};

[[noreturn]] void usage() {
    std::fprintf(stderr, "usage: ocr_accuracy [--psm N] [--level words|lines] "
                         "[--upscale none|nearest|bilinear|bicubic] [--dpi N] [--no-invert] [--noise N] "
                         "[--verbose] [--no-timing] [--only NAME-PART] [--dump DIR]\n");
    std::exit(2);
}

double now() {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

QStringList nonEmptyLines(const QString &text) {
    QStringList lines = text.split('\n');
    lines.removeAll(QString());
    return lines;
}

double cpuNow() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// A screen of prose at the given pixel size, cut off at the right like renderTextRegion's rows.
QImage renderProse(int width, int height, int pixelSize) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(pixelSize);
    painter.setFont(font);
    painter.setPen(QColor("#1d1d1f"));
    const QFontMetricsF metrics(font);
    const double advance = std::round(metrics.height() * 1.35);
    int index = 0;
    for (double top = 8; top + advance <= height - 8; top += advance) {
        QString row;
        while (metrics.horizontalAdvance(row) < width)
            row += proseLines[index++ % proseLines.size()] + ' ';
        painter.drawText(QPointF(10, top + metrics.ascent()), row);
    }
    painter.end();
    return image;
}

// Median wall-clock and processor time of a few runs; on a busy machine the processor time is
// the steadier figure. Processor time is the whole process's, since a large image is read on two
// threads.
void printTiming(const char *what, TesseractTextRecognizer &recognizer, const ScreenImage &image, int runs) {
    std::vector<double> wall, cpu;
    for (int i = 0; i < runs; ++i) {
        const double start = now();
        const double cpuStart = cpuNow();
        recognizer.recognize(image);
        cpu.push_back(cpuNow() - cpuStart);
        wall.push_back(now() - start);
    }
    std::sort(wall.begin(), wall.end());
    std::sort(cpu.begin(), cpu.end());
    std::printf("%-21s %.0f ms (processor %.0f ms), median of %d\n", what, wall[wall.size() / 2],
                cpu[cpu.size() / 2], runs);
}

} // namespace

int main(int argc, char **argv) {
    if (std::getenv("OMP_THREAD_LIMIT") == nullptr) {
        setenv("OMP_THREAD_LIMIT", "1", 1);
        execv("/proc/self/exe", argv);
        std::perror("execv");
        return 1;
    }
    if (std::getenv("QT_QPA_PLATFORM") == nullptr)
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QGuiApplication app(argc, argv);

    TesseractSettings settings;
    bool verbose = false;
    bool timing = true;
    QString dump;
    QString only;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const auto value = [&]() -> std::string {
            if (i + 1 >= argc)
                usage();
            return argv[++i];
        };
        if (arg == "--psm")
            settings.pageSegMode = std::stoi(value());
        else if (arg == "--level")
            settings.level =
                value() == "lines" ? TesseractSettings::Level::lines : TesseractSettings::Level::words;
        else if (arg == "--upscale") {
            const std::string filter = value();
            settings.upscale = filter == "none"       ? TesseractSettings::Upscale::none
                               : filter == "nearest"  ? TesseractSettings::Upscale::nearest
                               : filter == "bilinear" ? TesseractSettings::Upscale::bilinear
                                                      : TesseractSettings::Upscale::bicubic;
        } else if (arg == "--dpi")
            settings.resolutionPerScale = std::stoi(value());
        else if (arg == "--no-invert")
            settings.invertDark = false;
        else if (arg == "--noise")
            settings.noiseConfidence = std::stof(value());
        else if (arg == "--verbose")
            verbose = true;
        else if (arg == "--no-timing")
            timing = false;
        else if (arg == "--only")
            only = QString::fromStdString(value());
        else if (arg == "--dump")
            dump = QString::fromStdString(value());
        else
            usage();
    }

    TesseractTextRecognizer recognizer(settings);
    recognizer.prepare();
    if (!dump.isEmpty())
        QDir().mkpath(dump);

    std::vector<Result> results;
    for (const OcrSample &sample : buildOcrCorpus()) {
        if (!sample.name.contains(only))
            continue;
        const ScreenImage image = toScreenImage(sample.image);
        const double start = now();
        const auto fragments = recognizer.recognize(image);
        const double elapsed = now() - start;
        const QString text =
            fragments ? QString::fromStdU16String(lineAssembly::assembleText(*fragments)) : QString();
        const QString truth = sample.truth.join('\n');
        const QStringList lines = nonEmptyLines(text);
        results.push_back({sample.name, sample.category, levenshtein(lines.join('\n'), truth),
                           static_cast<int>(truth.size()), linesInOrder(lines, sample.truth),
                           static_cast<int>(sample.truth.size()), elapsed});
        const Result &r = results.back();
        if (verbose)
            std::printf("%-36s CER %5.1f %%  order %3d/%-3d %6.0f ms\n", qPrintable(r.name), 100 * r.cer(),
                        r.linesInOrder, r.lines, r.milliseconds);
        if (!dump.isEmpty()) {
            sample.image.save(dump + '/' + sample.name + ".png");
            QFile out(dump + '/' + sample.name + ".txt");
            if (out.open(QIODevice::WriteOnly))
                out.write((text + "\n---- truth ----\n" + truth + '\n').toUtf8());
        }
    }

    std::map<QString, std::vector<const Result *>> byCategory;
    int edits = 0, length = 0, inOrder = 0, lines = 0;
    for (const Result &r : results) {
        byCategory[r.category].push_back(&r);
        edits += r.edits;
        length += r.length;
        inOrder += r.linesInOrder;
        lines += r.lines;
    }
    std::printf("\n%-9s %7s %7s  %-36s %-36s\n", "category", "CER", "order", "worst CER", "worst order");
    for (const auto &[category, list] : byCategory) {
        int e = 0, n = 0, o = 0, l = 0;
        for (const Result *r : list) {
            e += r->edits;
            n += r->length;
            o += r->linesInOrder;
            l += r->lines;
        }
        const Result *worstCer =
            *std::max_element(list.begin(), list.end(), [](auto *a, auto *b) { return a->cer() < b->cer(); });
        const Result *worstOrder = *std::min_element(
            list.begin(), list.end(), [](auto *a, auto *b) { return a->order() < b->order(); });
        std::printf("%-9s %6.2f%% %6.1f%%  %-28s %5.1f%%  %-28s %5.1f%%\n", qPrintable(category),
                    100.0 * e / n, 100.0 * o / l, qPrintable(worstCer->name), 100 * worstCer->cer(),
                    qPrintable(worstOrder->name), 100 * worstOrder->order());
    }
    std::printf("\n%zu images, %d characters, %d lines\n", results.size(), length, lines);
    std::printf("character error rate  %.2f %% (%d edits)\n", 100.0 * edits / length, edits);
    std::printf("lines in order        %.1f %% (%d of %d)\n", 100.0 * inOrder / lines, inOrder, lines);

    if (timing) {
        const ScreenImage region = toScreenImage(renderTextRegion(400, 100));
        const ScreenImage screen = toScreenImage(renderTextRegion(1600, 900));
        printTiming("400 x 100 region", recognizer, region, 5);
        printTiming("1600 x 900 screen", recognizer, screen, 3);
        const ScreenImage prose22 = toScreenImage(renderProse(1600, 900, 22));
        printTiming("1600 x 900, 22 px", recognizer, prose22, 3);
    }
    return 0;
}
