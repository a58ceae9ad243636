#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <utility>
#include <vector>

#if defined(KRL_WITH_XPHOTO)
#include <opencv2/xphoto.hpp>
#endif

#include "Scene.h"
#include "core/Numbers.h"
#include "krlimage/blur.h"
#include "krlimage/colour.h"
#include "krlimage/composite.h"
#include "krlimage/edges.h"
#include "krlimage/film.h"
#include "krlimage/hue.h"
#include "krlimage/key.h"
#include "krlimage/stylise.h"
#include "krlimage/tone.h"
#include "krlimage/warp.h"

/// Times effects against OpenCV's nearest operations, alternating in one process, on one and two threads,
/// and prints a table. If OpenCV has no such operation, the row names the substitute.
namespace krl::bench {
namespace {

constexpr int32_t kWidth = 4000, kHeight = 3000;
constexpr int kRuns = 7;

/// Two operations to compare. Their results are not checked and need not agree.
struct Row {
    const char* work;
    const char* theirs;
    double goal;  ///< our time relative to theirs
    std::function<Status(ImageEngine&)> runOurs;
    std::function<void()> runTheirs;
};

/// The pictures that OpenCV's operations read and write; scratch memory is reused between runs.
struct Pictures {
    explicit Pictures(player::Bitmap& landscape)
        : source(landscape.height, landscape.width, CV_8UC4, landscape.pixels.data()),
          second(source.clone()),
          out(source.clone()) {
        cv::cvtColor(source, source3, cv::COLOR_BGRA2BGR);
    }

    cv::Mat source, second, source3, out, grey, a, b, c, d;
};

cv::Mat curveOf() {
    cv::Mat table(1, 256, CV_8UC4);
    for (int i = 0; i < 256; ++i) {
        const auto level = static_cast<uint8_t>(std::min(255, i * 5 / 4));
        table.at<cv::Vec4b>(i) = {level, level, level, static_cast<uint8_t>(i)};
    }
    return table;
}

/// A filter kernel with a line of 31 samples at 20 degrees.
cv::Mat motionKernel() {
    constexpr int kSamples = 31;
    cv::Mat kernel = cv::Mat::zeros(kSamples, 2 * kSamples, CV_32F);
    for (int i = 0; i < kSamples; ++i) {
        const int x = int(std::lround(i * std::cos(20 * kRadiansPerDegree)));
        const int y = int(std::lround(i * std::sin(20 * kRadiansPerDegree)));
        kernel.at<float>(y, kSamples + x) += 1.0f / kSamples;
    }
    return kernel;
}

void throughHsv(Pictures& p) {
    cv::cvtColor(p.source3, p.a, cv::COLOR_BGR2HSV);
    cv::multiply(p.a, cv::Scalar(1, 1.3, 1), p.a);
    cv::cvtColor(p.a, p.out, cv::COLOR_HSV2BGR);
}

void gradientMagnitude(Pictures& p) {
    cv::Sobel(p.source3, p.a, CV_32F, 1, 0);
    cv::Sobel(p.source3, p.b, CV_32F, 0, 1);
    cv::magnitude(p.a, p.b, p.c);
    p.c.convertTo(p.out, CV_8U);
}

void twirlByMap(Pictures& p, int interpolation) {
    p.a.create(kHeight, kWidth, CV_32FC2);
    cv::parallel_for_(cv::Range(0, kHeight), [&](const cv::Range& rows) {
        for (int y = rows.start; y < rows.end; ++y) {
            auto* map = p.a.ptr<cv::Vec2f>(y);
            const float dy = float(y) - kHeight / 2;
            for (int x = 0; x < kWidth; ++x) {
                const float dx = float(x) - kWidth / 2;
                const float turn = 3.0f * (1 - std::sqrt(dx * dx + dy * dy) / (kWidth / 2));
                const float sine = std::sin(turn), cosine = std::cos(turn);
                map[x] = {dx * cosine - dy * sine + kWidth / 2, dx * sine + dy * cosine + kHeight / 2};
            }
        }
    });
    cv::remap(p.source, p.out, p.a, cv::Mat(), interpolation);
}

std::vector<Row> makeRows(Pictures& p, const SecondImage& second) {
    const auto rgb = ChannelTarget::RGB;
    std::vector<Row> rows = {
        {"byte curve on three channels, alpha kept", "`LUT`", 0.25,
         [=](ImageEngine& e) { return contrast(e, 1.25f, rgb); },
         [&p, table = curveOf()] { cv::LUT(p.source, table, p.out); }},
        {"constant added", "`add`", 1.0, [=](ImageEngine& e) { return brightness(e, 40, rgb); },
         [&p] { cv::add(p.source, cv::Scalar(40, 40, 40, 0), p.out); }},
        {"inverted", "`bitwise_not`", 1.0, [=](ImageEngine& e) { return invert(e, rgb); },
         [&p] { cv::bitwise_not(p.source, p.out); }},
        {"desaturate", "`cvtColor` to grey and back", 1.0, [](ImageEngine& e) { return desaturate(e); },
         [&p] {
             cv::cvtColor(p.source, p.grey, cv::COLOR_BGRA2GRAY);
             cv::cvtColor(p.grey, p.out, cv::COLOR_GRAY2BGRA);
         }},
        {"sepia", "`cvtColor` to grey and back", 1.0, [](ImageEngine& e) { return sepia(e); },
         [&p] {
             cv::cvtColor(p.source, p.grey, cv::COLOR_BGRA2GRAY);
             cv::cvtColor(p.grey, p.out, cv::COLOR_GRAY2BGRA);
         }},
        {"lightness through HSV and back", "`cvtColor` twice, 8 bit", 0.8,
         [](ImageEngine& e) { return lightnessHSV(e, 1.3f); }, [&p] { throughHsv(p); }},
        {"saturation through HLS and back", "`cvtColor` twice, 8 bit", 0.8,
         [](ImageEngine& e) { return saturation(e, 1.3f); }, [&p] { throughHsv(p); }},
        {"tent blur, radius 10, four channels", "`blur` twice", 0.6,
         [](ImageEngine& e) { return fastGaussianBlur(e, 10, ChannelTarget::RGBA); },
         [&p] {
             cv::blur(p.source, p.a, cv::Size(11, 11));
             cv::blur(p.a, p.out, cv::Size(11, 11));
         }},
        {"tent blur, radius 100", "`blur` twice", 0.6,
         [](ImageEngine& e) { return fastGaussianBlur(e, 100, ChannelTarget::RGBA); },
         [&p] {
             cv::blur(p.source, p.a, cv::Size(101, 101));
             cv::blur(p.a, p.out, cv::Size(101, 101));
         }},
        {"sharpen, radius 10", "`GaussianBlur` and `addWeighted`", 1.2,
         [=](ImageEngine& e) { return sharpen(e, 10, 1.0f, 0, rgb); },
         [&p] {
             cv::GaussianBlur(p.source3, p.a, cv::Size(21, 21), 4);
             cv::addWeighted(p.source3, 2, p.a, -1, 0, p.out);
         }},
        {"minimum, 11 by 11", "`erode`", 1.0, [](ImageEngine& e) { return dilation(e, 5); },
         [&p] { cv::erode(p.source, p.out, cv::Mat::ones(11, 11, CV_8U)); }},
        {"minimum, 41 by 41", "`erode`", 1.0, [](ImageEngine& e) { return dilation(e, 20); },
         [&p] { cv::erode(p.source, p.out, cv::Mat::ones(41, 41, CV_8U)); }},
        {"Sobel magnitude, three channels", "`Sobel` twice, `magnitude`", 0.8,
         [=](ImageEngine& e) { return sobel(e, rgb); }, [&p] { gradientMagnitude(p); }},
        {"motion blur of 31 samples at 20 degrees", "`filter2D`", 0.25,
         [=](ImageEngine& e) { return motionBlur(e, 31, 20, BlurCount::Single, rgb); },
         [&p, kernel = motionKernel()] { cv::filter2D(p.source3, p.out, -1, kernel); }},
        {"twirl, bilinear", "map, `remap`", 0.7,
         [=](ImageEngine& e) { return twirl(e, 30, SampleQuality::Bilinear, ChannelTarget::RGBA); },
         [&p] { twirlByMap(p, cv::INTER_LINEAR); }},
        {"twirl, nearest", "map, `remap`", 0.7,
         [=](ImageEngine& e) { return twirl(e, 30, SampleQuality::Standard, ChannelTarget::RGBA); },
         [&p] { twirlByMap(p, cv::INTER_NEAREST); }},
        {"blend, multiply", "`multiply`", 1.0,
         [=](ImageEngine& e) {
             return composite(e, second, BlendMode::Multiply, AlphaRule::BackgroundAlphaNo);
         },
         [&p] { cv::multiply(p.source, p.second, p.out, 1 / 255.0); }},
        {"straight alpha over", "`addWeighted`", 1.0,
         [=](ImageEngine& e) {
             return composite(e, second, BlendMode::Normal, AlphaRule::BackgroundAlphaYes);
         },
         [&p] { cv::addWeighted(p.source, 0.5, p.second, 0.5, 0, p.out); }},
        {"key on hue, saturation and value", "`cvtColor`, `inRange`", 0.8,
         [](ImageEngine& e) {
             return chromaKey(e, {120, 25, 20}, {0.8f, 35, 25}, {0.7f, 40, 25}, false, false);
         },
         [&p] {
             cv::cvtColor(p.source, p.a, cv::COLOR_BGR2HSV);
             cv::inRange(p.a, cv::Scalar(50, 60, 60), cv::Scalar(70, 255, 255), p.b);
         }},
        {"noise on three channels", "`randu`, `add`", 0.3,
         [=](ImageEngine& e) { return noise(e, 0.15f, 7, rgb); },
         [&p] {
             p.a.create(p.source3.size(), CV_8UC3);
             cv::randu(p.a, 0, 38);
             cv::add(p.source3, p.a, p.out);
         }},
    };
#if defined(KRL_WITH_XPHOTO)
    rows.push_back({"oil paint, brush 4", "`xphoto::oilPainting`", 0.25,
                    [](ImageEngine& e) { return oilPaint(e, 4, 30); },
                    [&p] { cv::xphoto::oilPainting(p.source3, p.out, 4, 8); }});
#endif
    return rows;
}

struct Times {
    double ours = 1e30, theirs = 1e30;
};

/// The best of a few runs of each, alternating, so that other load affects both equally.
Times measure(const Row& row, ImageEngine& engine, const player::Bitmap& clean, player::Bitmap& picture) {
    const int32_t threads = engine.getThreadCount();
    Times times;
    for (int run = 0; run < kRuns; ++run) {
        std::copy(clean.pixels.begin(), clean.pixels.end(), picture.pixels.begin());
        times.ours = std::min(times.ours, milliseconds(threads, [&] { mustRun(row.runOurs(engine)); }));
        const double theirs = milliseconds(threads, row.runTheirs);
        times.theirs = std::min(times.theirs, theirs);
        if (theirs > 1000 && run >= 1) break;
    }
    return times;
}

int run(const char* wanted) {
    const player::Bitmap clean = landscape(kWidth, kHeight);
    player::Bitmap picture = clean, source = clean, other = clean;
    for (size_t i = 0; i < other.pixels.size(); ++i) other.pixels[i].alpha = uint8_t(i / 64);
    ImageEngine engine;
    engine.allocateTables();
    engine.buildTables();
    engine.load(reinterpret_cast<uint8_t*>(picture.pixels.data()), infoOf(picture));
    Pictures pictures(source);
    const SecondImage second{reinterpret_cast<const uint8_t*>(other.pixels.data()), infoOf(other)};

    std::vector<Row> rows = makeRows(pictures, second);
    rows.push_back({"a read and a write of every byte in place", "", 0, readAndWrite, [] {}});
    std::printf("| work | OpenCV's nearest operation | theirs 1, 2 | ours 1, 2 | ratio 1, 2 | goal |\n");
    std::printf("|---|---|---|---|---|---|\n");
    for (const Row& row : rows) {
        if (!std::strstr(row.work, wanted)) continue;
        Times times[2];
        for (int threads = 1; threads <= 2; ++threads) {
            cv::setNumThreads(threads);
            engine.setThreadCount(threads);
            times[threads - 1] = measure(row, engine, clean, picture);
        }
        if (row.goal == 0) {
            std::printf("| %s | | | %.1f, %.1f | | |\n", row.work, times[0].ours, times[1].ours);
        } else {
            std::printf("| %s | %s | %.1f, %.1f | %.1f, %.1f | %.2f, %.2f | %.2f |\n", row.work, row.theirs,
                        times[0].theirs, times[1].theirs, times[0].ours, times[1].ours,
                        times[0].ours / times[0].theirs, times[1].ours / times[1].theirs, row.goal);
        }
        std::fflush(stdout);
    }
    return 0;
}

}  // namespace
}  // namespace krl::bench

/// Runs the rows whose name contains the argument, or all without one.
int main(int argc, char** argv) { return krl::bench::run(argc > 1 ? argv[1] : ""); }
