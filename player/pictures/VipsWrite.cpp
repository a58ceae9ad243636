#if defined(KRL_WITH_VIPS)

#include <algorithm>

#include "player/pictures/Formats.h"
#include "player/pictures/Iptc.h"
#include "player/pictures/PictureMetadata.h"
#include "player/pictures/TiffMetadata.h"
#include "player/pictures/VipsChain.h"

namespace krl::player {

namespace {

void setBlob(VipsImage* image, const char* name, const std::vector<uint8_t>& blob) {
    if (!blob.empty()) vips_image_set_blob_copy(image, name, blob.data(), blob.size());
}

void attachFacts(VipsImage* image, const PictureMetadata& metadata, PictureFormat format) {
    setBlob(image, VIPS_META_EXIF_NAME, metadata.exif);
    setBlob(image, VIPS_META_XMP_NAME, metadata.xmp);
    if (format == PictureFormat::Jpeg) setBlob(image, VIPS_META_IPTC_NAME, iptcForJpeg(metadata.iptc));
    for (size_t i = 0; i < metadata.texts.size(); ++i) {
        const PictureText& text = metadata.texts[i];
        const std::string name = "png-comment-" + std::to_string(i) + "-" + text.keyword;
        vips_image_set_string(image, name.c_str(), text.text.c_str());
    }
}

void attachFrames(VipsImage* image, const FramesToWrite& frames) {
    if (frames.pictures.size() < 2) return;
    vips_image_set_int(image, VIPS_META_PAGE_HEIGHT, frames.pictures.front().height);
    if (frames.delays.empty()) return;
    vips_image_set_array_int(image, "delay", frames.delays.data(), static_cast<int>(frames.delays.size()));
    vips_image_set_int(image, "loop", frames.loops);
}

std::string pngOptions(const Bitmap& picture, const std::string& level) {
    const PngPacking packing = pngPacking(contentOf(picture).isDrawing, level);
    return std::string("filter=") + (packing.hasFilters ? "all" : "none") +
           ",compression=" + std::to_string(packing.level);
}

std::string chromaOptions(const std::string& chosen, const std::string& before) {
    if (chosen.empty() && before.empty()) return "";
    const bool isSubsampled = chosen.empty() ? before == "4:2:0" : chosen == "420";
    return std::string(",subsample-mode=") + (isSubsampled ? "on" : "off");
}

/// The extension that names a saver of the library, with its options.
std::string saverFor(PictureFormat format, const Bitmap& picture, const WriteOptions& options,
                     const std::string& chroma) {
    const std::string quality =
        options.compression.empty() ? "Q=" + std::to_string(options.quality) : "lossless";
    switch (format) {
        case PictureFormat::Jpeg:
            return ".jpg[" + quality + chromaOptions(options.chroma, chroma) + "]";
        case PictureFormat::Tiff:
            return ".tif[compression=" + (options.compression.empty() ? "deflate" : options.compression) +
                   "]";
        case PictureFormat::Webp:
            return ".webp[" + quality + "]";
        case PictureFormat::Gif:
            return ".gif";
        case PictureFormat::Avif:
            return ".avif[compression=av1," + quality + chromaOptions(options.chroma, "") + "]";
        case PictureFormat::Heic:
            return ".heic[compression=hevc," + quality + chromaOptions(options.chroma, "") + "]";
        case PictureFormat::Jxl:
            return ".jxl[" + quality + "]";
        case PictureFormat::Png:
        case PictureFormat::Pam:
            break;
    }
    return ".png[" + pngOptions(picture, options.compression) + "]";
}

/// Writes to the open file, never by name: an interruption may have removed the name.
int save(VipsImage* image, AtomicFile& file, const std::string& saver) {
    file.restart();
    VipsTarget* target = vips_target_new_to_descriptor(file.descriptor());
    if (!target) return -1;
    const int status = vips_image_write_to_target(image, saver.c_str(), target, nullptr);
    g_object_unref(target);
    return status;
}

/// Whether a file is the profile of a device with red, green and blue.
bool isRgbProfile(const char* file) {
    VipsBlob* profile = nullptr;
    if (vips_profile_load(file, &profile, nullptr)) return false;
    size_t bytes = 0;
    const auto* first = static_cast<const char*>(vips_blob_get(profile, &bytes));
    const bool isRgb = bytes > 20 && std::string_view(first + 16, 4) == "RGB ";
    vips_area_unref(VIPS_AREA(profile));
    return isRgb;
}

void convertColours(VipsChain& chain, const std::string& doing, const std::string& profile) {
    const bool hasOwn = vips_image_get_typeof(chain.get(), VIPS_META_ICC_NAME) != 0;
    if (profile.empty() || (profile == "srgb" && !hasOwn)) return;
    if (!isRgbProfile(profile.c_str())) {
        vips_error_clear();
        throw PictureError("cannot " + doing + ": " + profile +
                           " is no colour profile of red, green and blue");
    }
    chain.then(doing, [&](VipsImage* in, VipsImage** out) {
        return vips_icc_transform(in, out, profile.c_str(), "embedded", TRUE, "input-profile", "srgb",
                                  nullptr);
    });
}

/// Makes bytes the high and the low byte of 16 bits, so that white stays white.
int widened(VipsImage* in, VipsImage** out) {
    VipsImage* wide = nullptr;
    if (vips_linear1(in, &wide, 257.0, 0.0, nullptr)) return -1;
    VipsImage* whole = nullptr;
    const int cast = vips_cast_ushort(wide, &whole, nullptr);
    g_object_unref(wide);
    if (cast) return -1;
    const int status = vips_copy(whole, out, "interpretation", VIPS_INTERPRETATION_RGB16, nullptr);
    g_object_unref(whole);
    return status;
}

void write(AtomicFile& file, const FramesToWrite& frames, PictureFormat format, const WriteOptions& options) {
    const std::string doing = "write " + file.target().string();
    const Bitmap& first = frames.pictures.front();
    const size_t count = holdsFrames(format) ? frames.pictures.size() : 1;
    std::vector<Pixel> samples;
    samples.reserve(count * first.pixels.size());
    for (size_t i = 0; i < count; ++i)
        samples.insert(samples.end(), frames.pictures[i].pixels.begin(), frames.pictures[i].pixels.end());
    const bool opaque =
        std::all_of(samples.begin(), samples.end(), [](const Pixel& p) { return p.alpha == 255; });
    for (Pixel& p : samples) std::swap(p.blue, p.red);
    VipsImage* wrapped =
        vips_image_new_from_memory(samples.data(), samples.size() * sizeof(Pixel), first.width,
                                   first.height * static_cast<int>(count), 4, VIPS_FORMAT_UCHAR);
    if (!wrapped) failAt(doing);
    VipsChain chain(wrapped);
    const PictureMetadata none;
    const PictureMetadata& metadata = first.metadata ? *first.metadata : none;
    const double xres = metadata.pixelsPerMillimetreX, yres = metadata.pixelsPerMillimetreY;
    chain.then(doing, [&](VipsImage* in, VipsImage** out) {
        return vips_copy(in, out, "interpretation", VIPS_INTERPRETATION_sRGB, "xres", xres > 0 ? xres : 1.0,
                         "yres", yres > 0 ? yres : 1.0, nullptr);
    });
    setBlob(chain.get(), VIPS_META_ICC_NAME, metadata.colourProfile);
    vips_image_set_int(chain.get(), VIPS_META_ORIENTATION, 1);
    if (!options.isStripped) attachFacts(chain.get(), metadata, format);
    if (count > 1) attachFrames(chain.get(), frames);
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
    convertColours(chain, doing, options.profile);
    if (options.depth == 16) chain.then(doing, widened);
    if (save(chain.get(), file, saverFor(format, first, options, metadata.chroma))) failAt(doing);
    if (format == PictureFormat::Tiff && !options.isStripped)
        addTiffFacts(file, {metadata.exif, metadata.iptc});
}

}  // namespace

void writeWithVips(AtomicFile& file, const FramesToWrite& frames, PictureFormat format,
                   const WriteOptions& options) {
    startVips();
    if (format == PictureFormat::Avif || format == PictureFormat::Heic) loadVipsModule("vips-heif.so");
    if (format == PictureFormat::Jxl) {
        loadVipsModule("vips-jxl.so");
        vips_operation_block_set("VipsForeignSaveJxl", FALSE);  // it reads nobody's files
    }
    tellingItsOwnReason([&] { write(file, frames, format, options); });
}

}  // namespace krl::player

#endif
