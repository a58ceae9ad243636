#if defined(KRL_WITH_VIPS)

#include <algorithm>
#include <cstring>

#include "player/pictures/ExifData.h"
#include "player/pictures/Formats.h"
#include "player/pictures/Iptc.h"
#include "player/pictures/PictureMetadata.h"
#include "player/pictures/TiffMetadata.h"
#include "player/pictures/VipsChain.h"

namespace krl::player {

namespace {

std::vector<uint8_t> blobOf(VipsImage* image, const char* name) {
    const void* data = nullptr;
    size_t bytes = 0;
    if (vips_image_get_typeof(image, name) == 0 || vips_image_get_blob(image, name, &data, &bytes)) return {};
    const auto* first = static_cast<const uint8_t*>(data);
    return std::vector<uint8_t>(first, first + bytes);
}

std::string textOf(VipsImage* image, const char* name) {
    const char* text = nullptr;
    if (vips_image_get_typeof(image, name) == 0 || vips_image_get_string(image, name, &text)) return "";
    return text;
}

/// The texts of a PNG: their keywords are in the names.
std::vector<PictureText> textsOf(VipsImage* image) {
    std::vector<PictureText> texts;
    char** names = vips_image_get_fields(image);
    for (char** name = names; *name; ++name) {
        int number = 0;
        char keyword[80] = {};
        if (std::sscanf(*name, "png-comment-%d-%79[^\n]", &number, keyword) == 2)
            texts.push_back({keyword, textOf(image, *name)});
    }
    g_strfreev(names);
    return texts;
}

std::vector<std::string> precisionLost(VipsImage* image) {
    const VipsBandFormat format = vips_image_get_format(image);
    if (format == VIPS_FORMAT_UCHAR) return {};
    return {"the precision of " + std::to_string(vips_format_sizeof(format) * 8) +
            " bits a sample, as pictures have 8"};
}

std::shared_ptr<PictureMetadata> metadataOf(VipsImage* image, const InputFile& file, bool profileFits) {
    auto metadata = std::make_shared<PictureMetadata>();
    if (profileFits) metadata->colourProfile = blobOf(image, VIPS_META_ICC_NAME);
    metadata->exif = withoutThumbnail(withMark(blobOf(image, VIPS_META_EXIF_NAME)));
    metadata->xmp = blobOf(image, VIPS_META_XMP_NAME);
    std::vector<uint8_t> resources = blobOf(image, VIPS_META_IPTC_NAME);
    metadata->iptc = bareIptc(resources);
    // The library has no EXIF data of a TIFF, and other bytes than its IPTC records.
    if (TiffFacts facts = readTiffFacts(file); textOf(image, VIPS_META_LOADER) == "tiffload_source") {
        resources = blobOf(image, VIPS_META_PHOTOSHOP_NAME);
        metadata->exif = std::move(facts.exif);
        metadata->iptc = std::move(facts.iptc);
        if (metadata->iptc.empty()) metadata->iptc = bareIptc(resources);
    }
    takeOrientation(metadata->exif);  // which the pixels have by now
    metadata->losses = precisionLost(image);
    metadata->hasOtherResources = hasMoreThanIptc(resources);
    metadata->texts = textsOf(image);
    metadata->chroma = textOf(image, "jpeg-chroma-subsample");
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
void convertToBytes(VipsChain& chain, const std::string& doing) {
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
/// format. `all` opens every page or frame, which are below one another then.
VipsImage* open(const InputFile& file, bool all) {
    VipsSource* source = vips_source_new_from_descriptor(file.descriptor());
    if (!source) return nullptr;
    VipsImage* image = nullptr;
    if (isKnownLoader(vips_foreign_find_load_source(source)))
        image = vips_image_new_from_source(source, all ? "[n=-1]" : "", "access", VIPS_ACCESS_SEQUENTIAL,
                                           "fail_on", VIPS_FAIL_ON_ERROR, nullptr);
    g_object_unref(source);
    return image;
}

VipsImage* requireOpen(const InputFile& file, const std::string& doing) {
    VipsImage* opened = open(file, false);
    if (opened) return opened;
    vips_error_clear();
    throw PictureError("cannot " + doing + ": unrecognised picture format");
}

/// Applies the orientation and copies the pixels.
Bitmap pixelsOf(VipsChain& chain, const std::string& doing) {
    if (vips_image_get_orientation(chain.get()) != 1) {
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
    if (!memory) failAt(doing);
    Bitmap picture{vips_image_get_width(chain.get()), vips_image_get_height(chain.get()), {}, nullptr};
    const auto* samples = static_cast<const Pixel*>(memory);
    picture.pixels.assign(samples, samples + bytes / sizeof(Pixel));
    g_free(memory);
    for (Pixel& p : picture.pixels) std::swap(p.blue, p.red);
    return picture;
}

/// The pages or frames of an image that has them all, below one another.
std::vector<Bitmap> framesOf(VipsImage* opened, const std::string& doing) {
    VipsChain all(opened);
    all.then(doing, [](VipsImage* in, VipsImage** out) {
        *out = vips_image_copy_memory(in);
        return *out ? 0 : -1;
    });
    std::vector<Bitmap> frames;
    const int width = vips_image_get_width(all.get()), height = vips_image_get_page_height(all.get());
    for (int top = 0; top + height <= vips_image_get_height(all.get()); top += height) {
        VipsChain frame(all.share());
        frame.then(doing, [&](VipsImage* in, VipsImage** out) {
            return vips_extract_area(in, out, 0, top, width, height, nullptr);
        });
        frames.push_back(pixelsOf(frame, doing));
    }
    return frames;
}

std::vector<int32_t> delaysOf(VipsImage* image) {
    int* delays = nullptr;
    int count = 0;
    if (vips_image_get_typeof(image, "delay") == 0 ||
        vips_image_get_array_int(image, "delay", &delays, &count))
        return {};
    return {delays, delays + count};
}

int32_t loopsOf(VipsImage* image) {
    int loops = 0;
    if (vips_image_get_typeof(image, "loop") != 0) vips_image_get_int(image, "loop", &loops);
    return loops;
}

PictureFrames read(const InputFile& file, FrameChoice choice) {
    const std::filesystem::path& path = file.path();
    const std::string doing = "read " + path.string();
    VipsChain first(requireOpen(file, doing));
    const int width = vips_image_get_width(first.get()), height = vips_image_get_height(first.get());
    const int pages = vips_image_get_n_pages(first.get());
    requirePictureSize(path, width, height);
    auto metadata = metadataOf(first.get(), file, isColour(vips_image_guess_interpretation(first.get())));
    PictureFrames read;
    if (pages > 1 && choice == FrameChoice::All) {
        requirePictureSize(path, width, int64_t{height} * pages);
        if (VipsImage* all = open(file, true)) {
            read.delays = delaysOf(all);
            read.loops = loopsOf(all);
            read.pictures = framesOf(all, doing);
        }
        vips_error_clear();  // of pages of several sizes, which cannot be opened together
    }
    if (read.pictures.empty()) {
        if (pages > 1)
            metadata->losses.push_back("all but the first of " + std::to_string(pages) + " pages or frames");
        // Opening the file again has moved the place that the first image reads from.
        VipsChain again(pages > 1 ? requireOpen(file, doing) : first.share());
        read.pictures.push_back(pixelsOf(again, doing));
    }
    for (Bitmap& picture : read.pictures) picture.metadata = metadata;
    return read;
}

/// Starts the library with the module that the file needs.
void startFor(const InputFile& file) {
    startVips();
    uint8_t start[8] = {};
    if (file.readAt(0, start, sizeof start) && std::memcmp(start + 4, "ftyp", 4) == 0)
        loadVipsModule("vips-heif.so");
}

}  // namespace

PictureSize readSizeWithVips(const InputFile& file) {
    startFor(file);
    return tellingItsOwnReason([&] {
        const VipsChain image(requireOpen(file, "read " + file.path().string()));
        return PictureSize{vips_image_get_width(image.get()), vips_image_get_height(image.get()),
                           vips_image_get_n_pages(image.get())};
    });
}

PictureFrames readWithVips(const InputFile& file, FrameChoice choice) {
    startFor(file);
    return tellingItsOwnReason([&] { return read(file, choice); });
}

}  // namespace krl::player

#endif
