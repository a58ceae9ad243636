#include <gegl.h>
#include <magick/api.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/pixdesc.h>
}

#include "Stage.h"
#include "core/Scratch.h"
#include "host/MethodRegistry.h"

/// Times methods with their example arguments against the nearest operations of libavfilter, GraphicsMagick
/// and GEGL, alternating in one process on one thread. Each library gets the picture in a form of its own
/// before the clock runs; results are not compared.
namespace krl::bench {
namespace {

constexpr Size kSize{4000, 3000};
constexpr int kRuns = 5;
/// Milliseconds after which a peer runs no further time.
constexpr double kLongPeer = 4000;

[[noreturn]] void fail(const std::string& message) { throw std::runtime_error(message); }

/// An operation on the picture. What is prepared before each run is not timed.
class Peer {
public:
    virtual ~Peer() = default;
    virtual void prepare() = 0;
    virtual void run() = 0;
};

/// A chain of libavfilter on frames of a pixel format in which all of its filters work.
class FilterPeer final : public Peer {
public:
    FilterPeer(const player::Bitmap& picture, const std::string& chain, const char* format)
        : frame_(av_frame_alloc()), graph_(avfilter_graph_alloc()) {
        graph_->nb_threads = 1;
        const std::string input = "video_size=" + std::to_string(picture.width) + 'x' +
                                  std::to_string(picture.height) + ":time_base=1/25:pix_fmt=" + format;
        make("buffer", input, source_);
        make("buffersink", "", sink_);
        AVFilterInOut *from = avfilter_inout_alloc(), *to = avfilter_inout_alloc();
        *from = {av_strdup("in"), source_, 0, nullptr};
        *to = {av_strdup("out"), sink_, 0, nullptr};
        const int parsed = avfilter_graph_parse_ptr(graph_, chain.c_str(), &to, &from, nullptr);
        avfilter_inout_free(&from);
        avfilter_inout_free(&to);
        require(parsed, chain);
        require(avfilter_graph_config(graph_, nullptr), chain);
        for (unsigned i = 0; i < graph_->nb_filters; ++i)
            if (std::strstr(graph_->filters[i]->name, "auto_scale"))
                fail(chain + " does not work in " + format);
        frame_->width = picture.width;
        frame_->height = picture.height;
        frame_->format = av_get_pix_fmt(format);
        require(av_frame_get_buffer(frame_, 0), chain);
        fill(picture);
    }
    ~FilterPeer() override {
        av_frame_free(&copy_);
        av_frame_free(&frame_);
        avfilter_graph_free(&graph_);
    }

    void prepare() override {
        av_frame_free(&copy_);
        copy_ = av_frame_alloc();
        av_frame_copy_props(copy_, frame_);
        copy_->width = frame_->width, copy_->height = frame_->height, copy_->format = frame_->format;
        require(av_frame_get_buffer(copy_, 0), "a frame");
        require(av_frame_copy(copy_, frame_), "a frame");
        copy_->pts = next_++;
    }

    void run() override {
        require(av_buffersrc_add_frame(source_, copy_), "a frame");
        AVFrame* made = av_frame_alloc();
        require(av_buffersink_get_frame(sink_, made), "the result");
        av_frame_free(&made);
    }

private:
    static void require(int status, const std::string& what) {
        if (status < 0) fail("libavfilter refuses " + what);
    }

    void make(const char* kind, const std::string& arguments, AVFilterContext*& made) {
        require(avfilter_graph_create_filter(&made, avfilter_get_by_name(kind), kind, arguments.c_str(),
                                             nullptr, graph_),
                arguments);
    }

    /// With the channels as they come: what a filter does to them takes as long.
    void fill(const player::Bitmap& picture) {
        const AVPixFmtDescriptor* form = av_pix_fmt_desc_get(AVPixelFormat(frame_->format));
        for (int part = 0; part < form->nb_components; ++part) {
            const AVComponentDescriptor& place = form->comp[part];
            for (int32_t y = 0; y < picture.height; ++y) {
                uint8_t* row = frame_->data[place.plane] + ptrdiff_t(y) * frame_->linesize[place.plane];
                const Pixel* pixel = picture.pixels.data() + size_t(y) * size_t(picture.width);
                for (int32_t x = 0; x < picture.width; ++x, ++pixel)
                    if (form->flags & AV_PIX_FMT_FLAG_FLOAT)
                        reinterpret_cast<float*>(row)[x] = float((*pixel)[size_t(part)]) / 255;
                    else
                        row[place.offset + x * place.step] = (*pixel)[size_t(part)];
            }
        }
    }

    AVFrame *frame_, *copy_ = nullptr;
    AVFilterGraph* graph_;
    AVFilterContext *source_ = nullptr, *sink_ = nullptr;
    int64_t next_ = 0;
};

/// Operations of GEGL, in floating point as it suits them.
class GeglPeer final : public Peer {
public:
    GeglPeer(const player::Bitmap& picture, const std::string& chain) : chain_(chain) {
        const GeglRectangle all{0, 0, picture.width, picture.height};
        const Babl* format = babl_format("R'G'B'A u8");
        from_ = gegl_buffer_new(&all, format);
        to_ = gegl_buffer_new(&all, format);
        gegl_buffer_set(from_, &all, 0, format, picture.pixels.data(), GEGL_AUTO_ROWSTRIDE);
    }
    ~GeglPeer() override {
        g_clear_object(&graph_);
        g_object_unref(from_);
        g_object_unref(to_);
    }

    /// Graphs keep results, so that each run has its own.
    void prepare() override {
        g_clear_object(&graph_);
        graph_ = gegl_node_new();
        GeglNode* source =
            gegl_node_new_child(graph_, "operation", "gegl:buffer-source", "buffer", from_, nullptr);
        end_ = gegl_node_new_child(graph_, "operation", "gegl:write-buffer", "buffer", to_, nullptr);
        gegl_node_link(source, end_);
        GError* error = nullptr;
        gegl_create_chain(chain_.c_str(), source, end_, 0, kSize.height, "", &error);
        if (error) fail(chain_ + ": " + error->message);
    }

    void run() override { gegl_node_process(end_); }

private:
    const std::string chain_;
    GeglBuffer *from_ = nullptr, *to_ = nullptr;
    GeglNode *graph_ = nullptr, *end_ = nullptr;
};

/// Makes a new picture, or changes the one that it gets and returns null.
using MagickWork = Image* (*)(Image*, ExceptionInfo*);

class MagickPeer final : public Peer {
public:
    MagickPeer(const player::Bitmap& picture, MagickWork work) : work_(work) {
        GetExceptionInfo(&failure_);
        image_ = ConstituteImage(static_cast<unsigned long>(picture.width),
                                 static_cast<unsigned long>(picture.height), "BGRA", CharPixel,
                                 picture.pixels.data(), &failure_);
        if (!image_) fail("GraphicsMagick takes no picture");
    }
    ~MagickPeer() override {
        if (copy_) DestroyImage(copy_);
        DestroyImage(image_);
        DestroyExceptionInfo(&failure_);
    }

    /// Pixels are copied when they are first changed, so that a first change is made here.
    void prepare() override {
        if (copy_) DestroyImage(copy_);
        copy_ = CloneImage(image_, 0, 0, MagickTrue, &failure_);
        if (!copy_ || !GetImagePixels(copy_, 0, 0, 1, 1) || !SyncImagePixels(copy_))
            fail("GraphicsMagick copies no picture");
    }

    void run() override {
        if (Image* made = work_(copy_, &failure_)) DestroyImage(made);
        if (failure_.severity >= ErrorException)
            fail(failure_.reason ? failure_.reason : "GraphicsMagick fails");
    }

private:
    const MagickWork work_;
    ExceptionInfo failure_;
    Image *image_ = nullptr, *copy_ = nullptr;
};

/// A method and what comes nearest. A chain with a format is libavfilter's, one without is GEGL's.
struct Row {
    const char* method;
    const char* theirs;
    const char* format = nullptr;
    MagickWork magick = nullptr;
};

#define GM(...)                                                   \
    nullptr, [](Image* image, ExceptionInfo* failure) -> Image* { \
        static_cast<void>(failure);                               \
        __VA_ARGS__;                                              \
    }

const Row kRows[] = {
    {"brightness", "lutrgb=r=clip(val+40\\,0\\,255):g=clip(val+40\\,0\\,255):b=clip(val+40\\,0\\,255)",
     "bgra"},
    {"contrast", "eq=contrast=1.4", "yuv444p"},
    {"exposure", "exposure=exposure=0.8", "gbrpf32le"},
    {"gamma", "eq=gamma=1.05", "yuv444p"},
    {"invert", "negate", "gbrp"},
    {"levels", "colorlevels=rimin=0.08:gimin=0.08:bimin=0.08:rimax=0.9:gimax=0.9:bimax=0.9", "bgra"},
    {"mediumTones", "curves=all=0/0 0.5/0.47 1/1", "bgra"},
    {"posterise", "lutrgb=r=floor(val/64)*85:g=floor(val/64)*85:b=floor(val/64)*85", "bgra"},
    {"solarise", "SolarizeImage", GM(SolarizeImage(image, MaxRGB / 2); return nullptr)},
    {"superContrast", "colorlevels=rimin=0.16:gimin=0.16:bimin=0.16:rimax=0.78:gimax=0.78:bimax=0.78",
     "bgra"},
    {"threshold", "ChannelThresholdImage", GM(ChannelThresholdImage(image, "47%,47%,47%"); return nullptr)},
    {"ambientLight", "colorchannelmixer=rr=1:gg=0.98:bb=0.97", "bgra"},
    {"colourBalance", "colorchannelmixer=rr=1.15:bb=0.85", "bgra"},
    {"colourTemperature", "colortemperature=temperature=4500", "bgra"},
    {"desaturate", "colorchannelmixer=.3:.4:.3:0:.3:.4:.3:0:.3:.4:.3", "bgra"},
    {"sepia", "colorchannelmixer=.393:.769:.189:0:.349:.686:.168:0:.272:.534:.131", "bgra"},
    {"saturation", "ModulateImage 100,150", GM(ModulateImage(image, "100,150,100"); return nullptr)},
    {"hueShift", "ModulateImage 100,100,150", GM(ModulateImage(image, "100,100,150"); return nullptr)},
    {"hueShift", "hue=h=90", "yuv444p"},
    {"hueColourise", "colorize=hue=210", "yuv444p"},
    {"lightnessHSV", "ModulateImage 125", GM(ModulateImage(image, "125,100,100"); return nullptr)},
    {"multiColourise", "pseudocolor=preset=magma", "gbrp"},
    {"noise", "AddNoiseImage", GM(return AddNoiseImage(image, UniformNoise, failure))},
    {"noise", "noise=alls=38:allf=t", "gbrp"},
    {"twoStripColor", "colorchannelmixer=rr=1:rg=0:gg=.5:gb=.5:bg=.5:bb=.5", "bgra"},
    {"blurProRGB", "boxblur=lr=16:cr=6", "gbrp"},
    {"blurProYUV", "boxblur=luma_radius=0:chroma_radius=12", "yuv444p"},
    {"defocus", "gegl:lens-blur radius=12"},
    {"diffuse", "SpreadImage 12", GM(return SpreadImage(image, 12, failure))},
    {"fastGaussianBlur", "gblur=sigma=5", "gbrap"},
    {"motionBlur", "MotionBlurImage 24, 20", GM(return MotionBlurImage(image, 24, 12, 20, failure))},
    {"oneChannelFeather", "boxblur=lr=0:cr=0:ar=12", "gbrap"},
    {"radialBlur", "gegl:motion-blur-circular angle=12"},
    {"sharpen", "unsharp=lx=11:ly=11:la=1.5:cx=11:cy=11:ca=1.5", "yuv444p"},
    {"sharpenBrightness", "unsharp=lx=11:ly=11:la=1.5", "yuv444p"},
    {"zoomBlur", "gegl:motion-blur-zoom factor=0.12"},
    {"cannyEdgeDetect", "edgedetect=mode=colormix", "gbrp"},
    {"dilation", "dilation,dilation,dilation", "gbrp"},
    {"erosion", "erosion,erosion,erosion", "gbrp"},
    {"emboss", "convolution=-2 -1 0 -1 1 1 0 1 2:-2 -1 0 -1 1 1 0 1 2:-2 -1 0 -1 1 1 0 1 2", "gbrp"},
    {"glowingEdges", "gegl:edge-neon radius=2"},
    {"sobel", "sobel", "gbrp"},
    {"mosaic", "pixelize=w=12:h=12", "gbrp"},
    {"oilPaint", "gegl:oilify mask-radius=4"},
    {"tile", "gegl:tile-paper tile-width=24 tile-height=24"},
    {"vignette", "vignette=PI/5", "rgb24"},
    {"circularWaves", "gegl:waves amplitude=8 period=60"},
    {"waves", "gegl:ripple amplitude=12 period=60"},
    {"twirl", "SwirlImage 108", GM(return SwirlImage(image, 108, failure))},
    {"displacementMapComposite", "split=3[a][b][c];[a][b][c]displace=edge=wrap", "gbrp"},
    {"composite", "split[a][b];[a][b]blend=all_mode=screen", "gbrap"},
    {"gleamBlurComposite", "gegl:bloom"},
    {"chromaKey", "chromakey=0x2DAA50:0.2:0.1", "yuva444p"},
    {"hueKey", "hsvkey=hue=120:sat=0.5:val=0.5:similarity=0.2", "yuva444p"},
    {"valueKey", "lumakey=threshold=0.4:tolerance=0.2", "yuva444p"},
    {"colourDifference", "colorkey=green:0.3:0.2", "bgra"},
    {"spillSupression", "despill=type=green", "bgra"},
    {"clearAlpha", "lutrgb=a=255", "bgra"},
    {"viewAlpha", "ChannelImage", GM(ChannelImage(image, OpacityChannel); return nullptr)},
    {"viewAlpha", "alphaextract", "bgra"},
    {"viewAlpha", "alphaextract", "gbrap"},
    {"drawCheckerBox", "gegl:checkerboard x=40 y=40"},
    {"lensFlare", "gegl:lens-flare"},
    {"interlace", "il=l=d:c=d", "gbrp"},
    {"halfSize", "scale=w=iw/2:h=ih/2:flags=area", "bgra"},
};

std::unique_ptr<Peer> peerOf(const Row& row, const player::Bitmap& picture) {
    if (row.magick) return std::make_unique<MagickPeer>(picture, row.magick);
    if (row.format) return std::make_unique<FilterPeer>(picture, row.theirs, row.format);
    return std::make_unique<GeglPeer>(picture, row.theirs);
}

const Method& methodNamed(const std::string& name) {
    for (const Method* method : host::methods())
        if (method->shortName() == name) return *method;
    fail("there is no method " + name);
}

/// Milliseconds of processor time of ours and theirs, the least of a few alternating runs.
struct Times {
    double ours = 1e30, theirs = 1e30;
};

Times measure(Stage& stage, const Method& method, Peer& peer) {
    const std::vector<player::Value> arguments = stage.examples(method);
    Times times;
    double spent = 0;
    for (int run = 0; run < kRuns; ++run) {
        times.ours = std::min(times.ours, stage.timed(method, arguments));
        if (spent > kLongPeer) continue;  // one that takes so long needs no second run, ours does
        peer.prepare();
        const double theirs = milliseconds(1, [&] { peer.run(); });
        times.theirs = std::min(times.theirs, theirs);
        spent += theirs;
    }
    return times;
}

int run(const std::vector<std::string>& wanted) {
    ExceptionInfo failure;
    GetExceptionInfo(&failure);
    InitializeMagickEx(nullptr, MAGICK_OPT_NO_SIGNAL_HANDER, &failure);
    DestroyExceptionInfo(&failure);
    SetMagickResourceLimit(ThreadsResource, 1);
    gegl_init(nullptr, nullptr);
    // Some operations are offered only to programs under this licence, with which ours agrees.
    g_object_set(gegl_config(), "threads", 1, "use-opencl", FALSE, "application-license", "GPL3", nullptr);
    ScratchAllowance kept;
    kept.set(size_t{1} << 30);
    Stage stage(player::builtInPlugIn(), kSize, true);
    int rows = 0, ahead = 0;
    std::printf("| method | nearest operation | theirs | ours | ratio |\n|---|---|---|---|---|\n");
    for (const Row& row : kRows) {
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), row.method) == wanted.end()) continue;
        Times times;
        try {
            times = measure(stage, methodNamed(row.method), *peerOf(row, stage.original()));
        } catch (const std::runtime_error& error) {
            std::fprintf(stderr, "%s is left out: %s\n", row.method, error.what());
            continue;
        }
        const char* library = row.magick ? "GraphicsMagick" : row.format ? "libavfilter" : "GEGL";
        std::printf("| %s | %s: `%s`%s%s | %.1f | %.1f | %.2f |\n", row.method, library, row.theirs,
                    row.format ? " on " : "", row.format ? row.format : "", times.theirs, times.ours,
                    times.ours / times.theirs);
        std::fflush(stdout);
        ++rows;
        ahead += times.ours < times.theirs;
    }
    std::printf("\nahead in %d of %d rows\n", ahead, rows);
    gegl_exit();
    DestroyMagick();
    return 0;
}

}  // namespace
}  // namespace krl::bench

/// Runs the rows of the methods that are named, or all.
int main(int argc, char** argv) {
    try {
        return krl::bench::run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "krlbench_peers: %s\n", error.what());
        return 1;
    }
}
