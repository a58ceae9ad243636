#if defined(KRL_WITH_VIPS)

#include <vips/vips.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <shared_mutex>

#include "player/pictures/ExifThumbnail.h"
#include "player/pictures/Formats.h"

namespace krl::player {

namespace {

void startVips() {
    static std::once_flag started;
    std::call_once(started, [] {
        g_setenv("VIPS_WARNING", "0", TRUE);
        if (VIPS_INIT("krlimage")) throw PictureError("cannot initialise libvips");
        vips_block_untrusted_set(TRUE);
        vips_concurrency_set(1);  // parallelism is across pictures, not within one
        vips_cache_set_max(0);
    });
}

/// The reason for the last libvips failure: the system's error text if there is one, otherwise the first
/// line.
std::string vipsReason() {
    std::string reason = vips_error_buffer();
    vips_error_clear();
    constexpr std::string_view mark = "unix error: ";
    const size_t system = reason.find(mark);
    if (system != std::string::npos) reason.erase(0, system + mark.size());
    reason = reason.substr(0, reason.find('\n'));
    return reason.empty() ? "unknown error" : reason;
}

/// libvips keeps one error log for all threads, so an operation that fails in parallel with others is
/// retried alone to get its own error text.
template <class Work>
auto tellingItsOwnReason(const Work& work) {
    static std::shared_mutex together;
    try {
        const std::shared_lock lock(together);
        return work();
    } catch (const PictureError&) {
        const std::unique_lock lock(together);
        vips_error_clear();
        return work();
    }
}

/// A step of a chain of images; each replaces the one before it.
class Chain {
public:
    explicit Chain(VipsImage* first) : image_(first) {}
    ~Chain() { g_object_unref(image_); }
    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;

    VipsImage* get() const { return image_; }

    /// Runs a libvips operation that stores its result through the given pointer.
    template <class Operation>
    void then(const std::string& doing, Operation&& operation) {
        VipsImage* next = nullptr;
        if (operation(image_, &next)) throw PictureError("cannot " + doing + ": " + vipsReason());
        g_object_unref(image_);
        image_ = next;
    }

private:
    VipsImage* image_;
};

std::vector<uint8_t> blobOf(VipsImage* image, const char* name) {
    const void* data = nullptr;
    size_t bytes = 0;
    if (vips_image_get_typeof(image, name) == 0 || vips_image_get_blob(image, name, &data, &bytes)) return {};
    const auto* first = static_cast<const uint8_t*>(data);
    return std::vector<uint8_t>(first, first + bytes);
}

std::shared_ptr<const PictureMetadata> metadataOf(VipsImage* image, bool profileFits) {
    auto metadata = std::make_shared<PictureMetadata>();
    if (profileFits) metadata->colourProfile = blobOf(image, VIPS_META_ICC_NAME);
    metadata->exif = withoutThumbnail(blobOf(image, VIPS_META_EXIF_NAME));
    metadata->xmp = blobOf(image, VIPS_META_XMP_NAME);
    metadata->iptc = blobOf(image, VIPS_META_IPTC_NAME);
    metadata->pixelsPerMillimetreX = vips_image_get_xres(image);
    metadata->pixelsPerMillimetreY = vips_image_get_yres(image);
    return metadata;
}

bool isGrey(VipsInterpretation kind) {
    return kind == VIPS_INTERPRETATION_B_W || kind == VIPS_INTERPRETATION_GREY16;
}

bool isColour(VipsInterpretation kind) {
    return kind == VIPS_INTERPRETATION_sRGB || kind == VIPS_INTERPRETATION_RGB ||
           kind == VIPS_INTERPRETATION_RGB16;
}

bool isFloat(VipsImage* image) {
    const VipsBandFormat format = vips_image_get_format(image);
    return format == VIPS_FORMAT_FLOAT || format == VIPS_FORMAT_DOUBLE;
}

/// Converts floats to bytes: light is linear, and 1 is white and opaque.
int bytesOfFloats(VipsImage* in, VipsImage** out) {
    const int bands = vips_image_get_bands(in), colours = bands < 3 ? 1 : 3;
    auto* steps = VIPS_OBJECT(vips_image_new());  // owns the intermediate images
    auto** step = reinterpret_cast<VipsImage**>(vips_object_local_array(steps, 6));
    const auto made = [&]() -> int {
        if (vips_extract_band(in, &step[0], 0, "n", colours, nullptr)) return -1;
        VipsImage* grey[] = {step[0], step[0], step[0]};
        if (vips_bandjoin(grey, &step[1], 3, nullptr)) return -1;
        VipsImage* light = colours == 1 ? step[1] : step[0];
        if (vips_copy(light, &step[2], "interpretation", VIPS_INTERPRETATION_scRGB, nullptr)) return -1;
        const bool opaque = bands == colours;
        if (vips_colourspace(step[2], opaque ? out : &step[3], VIPS_INTERPRETATION_sRGB, nullptr)) return -1;
        if (opaque) return 0;
        if (vips_extract_band(in, &step[4], colours, nullptr)) return -1;
        // Add a half, since the cast truncates.
        if (vips_linear1(step[4], &step[5], 255.0, 0.5, "uchar", TRUE, nullptr)) return -1;
        return vips_bandjoin2(step[3], step[5], out, nullptr);
    };
    const int status = made();
    g_object_unref(steps);
    return status;
}

/// Converts any image to bytes of red, green, blue and alpha. 16-bit samples keep their high byte.
void convertToBytes(Chain& chain, const std::string& doing) {
    const VipsInterpretation read = vips_image_guess_interpretation(chain.get());
    const bool light = isGrey(read) || isColour(read) || read == VIPS_INTERPRETATION_scRGB;
    if (light && isFloat(chain.get())) chain.then(doing, bytesOfFloats);
    const VipsInterpretation kind = vips_image_guess_interpretation(chain.get());
    if (kind == VIPS_INTERPRETATION_CMYK)
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            return vips_icc_transform(in, out, "srgb", "embedded", TRUE, nullptr);
        });
    else if (!isGrey(kind) && !isColour(kind))
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            return vips_colourspace(in, out, VIPS_INTERPRETATION_sRGB, nullptr);
        });
    const gboolean shift = vips_image_get_format(chain.get()) == VIPS_FORMAT_USHORT;
    chain.then(doing, [shift](VipsImage* in, VipsImage** out) {
        return vips_cast_uchar(in, out, "shift", shift, nullptr);
    });
    const int bands = vips_image_get_bands(chain.get());
    if (bands < 3)
        chain.then(doing, [bands](VipsImage* in, VipsImage** out) {
            VipsImage* grey = nullptr;
            if (vips_extract_band(in, &grey, 0, nullptr)) return -1;
            VipsImage* parts[] = {grey, grey, bands == 2 ? in : grey};
            const int status = vips_bandjoin(parts, out, 3, nullptr);
            g_object_unref(grey);
            return status;
        });
    // For two bands the last part is grey with its alpha, so the result has four.
    if (vips_image_get_bands(chain.get()) == 3)
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            return vips_bandjoin_const1(in, out, 255, nullptr);
        });
    if (vips_image_get_bands(chain.get()) > 4)
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            return vips_extract_band(in, out, 0, "n", 4, nullptr);
        });
}

void setBlob(VipsImage* image, const char* name, const std::vector<uint8_t>& blob) {
    if (!blob.empty()) vips_image_set_blob_copy(image, name, blob.data(), blob.size());
}

void attachMetadata(VipsImage* image, const PictureMetadata& metadata) {
    setBlob(image, VIPS_META_ICC_NAME, metadata.colourProfile);
    setBlob(image, VIPS_META_EXIF_NAME, metadata.exif);
    setBlob(image, VIPS_META_XMP_NAME, metadata.xmp);
    setBlob(image, VIPS_META_IPTC_NAME, metadata.iptc);
    vips_image_set_int(image, VIPS_META_ORIENTATION, 1);
}

int save(VipsImage* image, VipsTarget* target, PictureFormat format, int quality) {
    switch (format) {
        case PictureFormat::Jpeg:
            return vips_jpegsave_target(image, target, "Q", quality, nullptr);
        case PictureFormat::Tiff:
            return vips_tiffsave_target(image, target, "compression", VIPS_FOREIGN_TIFF_COMPRESSION_DEFLATE,
                                        nullptr);
        case PictureFormat::Webp:
            return vips_webpsave_target(image, target, "Q", quality, nullptr);
        case PictureFormat::Png:
        case PictureFormat::Pam:
            break;
    }
    return vips_pngsave_target(image, target, nullptr);
}

/// Writes to the open file, never by name: an interruption may have removed the name.
int save(VipsImage* image, AtomicFile& file, PictureFormat format, int quality) {
    file.restart();
    VipsTarget* target = vips_target_new_to_descriptor(file.descriptor());
    if (!target) return -1;
    const int status = save(image, target, format, quality);
    g_object_unref(target);
    return status;
}

/// Whether a loader is for a format that is meant to be read. Others may be just as good at reading what
/// nobody meant to give them.
bool isKnownLoader(const char* loader) {
    static constexpr const char* known[] = {"VipsForeignLoadPngSource",   "VipsForeignLoadJpegSource",
                                            "VipsForeignLoadTiffSource",  "VipsForeignLoadWebpSource",
                                            "VipsForeignLoadNsgifSource", "VipsForeignLoadHeifSource"};
    return loader && std::any_of(std::begin(known), std::end(known),
                                 [&](const char* one) { return std::strcmp(one, loader) == 0; });
}

/// Opens a picture by its descriptor: names could be more than names to the library. Null for an unknown
/// format.
VipsImage* open(const InputFile& file) {
    VipsSource* source = vips_source_new_from_descriptor(file.descriptor());
    if (!source) return nullptr;
    VipsImage* image = nullptr;
    if (isKnownLoader(vips_foreign_find_load_source(source)))
        image = vips_image_new_from_source(source, "", "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
                                           VIPS_FAIL_ON_ERROR, nullptr);
    g_object_unref(source);
    return image;
}

Bitmap read(const InputFile& file) {
    const std::filesystem::path& path = file.path();
    const std::string doing = "read " + path.string();
    VipsImage* opened = open(file);
    if (!opened) {
        vips_error_clear();
        throw PictureError("cannot " + doing + ": unrecognised picture format");
    }
    Chain chain(opened);
    requirePictureSize(path, vips_image_get_width(opened), vips_image_get_height(opened));
    const bool profileFits = isColour(vips_image_guess_interpretation(opened));
    auto metadata = metadataOf(opened, profileFits);
    if (vips_image_get_orientation(opened) != 1) {
        // Rotation does not read in file order.
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            *out = vips_image_copy_memory(in);
            return *out ? 0 : -1;
        });
        chain.then(doing, [](VipsImage* in, VipsImage** out) { return vips_autorot(in, out, nullptr); });
    }
    convertToBytes(chain, doing);
    size_t bytes = 0;
    void* memory = vips_image_write_to_memory(chain.get(), &bytes);
    if (!memory) throw PictureError("cannot " + doing + ": " + vipsReason());
    Bitmap picture{
        vips_image_get_width(chain.get()), vips_image_get_height(chain.get()), {}, std::move(metadata)};
    const auto* samples = static_cast<const Pixel*>(memory);
    picture.pixels.assign(samples, samples + bytes / sizeof(Pixel));
    g_free(memory);
    for (Pixel& p : picture.pixels) std::swap(p.blue, p.red);
    return picture;
}

std::vector<std::string> losses(const InputFile& file) {
    VipsImage* image = open(file);
    if (!image) {
        vips_error_clear();
        return {};
    }
    std::vector<std::string> found;
    const int pages = vips_image_get_n_pages(image);
    if (pages > 1) found.push_back("all but the first of " + std::to_string(pages) + " pages or frames");
    const VipsBandFormat format = vips_image_get_format(image);
    if (format != VIPS_FORMAT_UCHAR)
        found.push_back("the precision of " + std::to_string(vips_format_sizeof(format) * 8) +
                        " bits a sample, as pictures have 8");
    g_object_unref(image);
    return found;
}

void write(AtomicFile& file, const Bitmap& picture, PictureFormat format, int quality) {
    const std::string doing = "write " + file.target().string();
    std::vector<Pixel> samples = picture.pixels;
    for (Pixel& p : samples) std::swap(p.blue, p.red);
    VipsImage* wrapped = vips_image_new_from_memory(samples.data(), samples.size() * sizeof(Pixel),
                                                    picture.width, picture.height, 4, VIPS_FORMAT_UCHAR);
    if (!wrapped) throw PictureError("cannot " + doing + ": " + vipsReason());
    Chain chain(wrapped);
    const PictureMetadata none;
    const PictureMetadata& metadata = picture.metadata ? *picture.metadata : none;
    const double xres = metadata.pixelsPerMillimetreX, yres = metadata.pixelsPerMillimetreY;
    chain.then(doing, [&](VipsImage* in, VipsImage** out) {
        return vips_copy(in, out, "interpretation", VIPS_INTERPRETATION_sRGB, "xres", xres > 0 ? xres : 1.0,
                         "yres", yres > 0 ? yres : 1.0, nullptr);
    });
    attachMetadata(chain.get(), metadata);
    const bool opaque = std::all_of(picture.pixels.begin(), picture.pixels.end(),
                                    [](const Pixel& p) { return p.alpha == 255; });
    if (opaque)
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            return vips_extract_band(in, out, 0, "n", 3, nullptr);
        });
    else if (format == PictureFormat::Jpeg)  // JPEG has no transparency
        chain.then(doing, [](VipsImage* in, VipsImage** out) {
            VipsArrayDouble* white = vips_array_double_newv(1, 255.0);
            const int status = vips_flatten(in, out, "background", white, nullptr);
            vips_area_unref(VIPS_AREA(white));
            return status;
        });
    if (save(chain.get(), file, format, quality)) throw PictureError("cannot " + doing + ": " + vipsReason());
}

}  // namespace

Bitmap readWithVips(const InputFile& file) {
    startVips();
    return tellingItsOwnReason([&] { return read(file); });
}

std::vector<std::string> lossesWithVips(const InputFile& file) {
    startVips();
    return tellingItsOwnReason([&] { return losses(file); });
}

void writeWithVips(AtomicFile& file, const Bitmap& picture, PictureFormat format, int quality) {
    startVips();
    tellingItsOwnReason([&] { write(file, picture, format, quality); });
}

}  // namespace krl::player

#endif
