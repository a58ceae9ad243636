#if defined(KRL_WITH_PNG_JPEG)

#include <png.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <new>

#include "player/pictures/ExifData.h"
#include "player/pictures/Formats.h"
#include "player/pictures/Geometry.h"
#include "player/pictures/PictureMetadata.h"

namespace krl::player {

namespace {

constexpr char kXmpKeyword[] = "XML:com.adobe.xmp";
constexpr double kMillimetres = 1000;  // in a metre

/// Chunks beside the pixels may be as long as this.
constexpr png_alloc_size_t kMostChunkBytes = 64u << 20;
constexpr png_uint_32 kMostPixels = 0x7FFFFFFF;  // in a row or a column
constexpr size_t kBufferBytes = 1 << 16;
constexpr const char* kDoubtfulProfile = "libpng does not take the colour profile";

/// What libpng says when it gives up, and about the colour profile.
struct Reason {
    char text[200] = "";
    bool doubtsProfile = false;
};

[[noreturn]] void giveUp(png_structp png, png_const_charp reason) {
    std::snprintf(static_cast<Reason*>(png_get_error_ptr(png))->text, sizeof(Reason::text), "%s", reason);
    png_longjmp(png, 1);
}

void weighWarning(png_structp png, png_const_charp text) {
    if (std::strncmp(text, "iCCP", 4) == 0)
        static_cast<Reason*>(png_get_error_ptr(png))->doubtsProfile = true;
}

/// Runs calls of libpng, which jump out of them on failure, past all destructors: `work` owns nothing.
/// Returns whether they came to their end.
template <class Work>
bool completes(png_structp png, const Work& work) {
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    work();
    return true;
}

class PngReader {
public:
    explicit PngReader(const InputFile& file) : file_(file) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reason_, giveUp, weighWarning);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
        png_set_user_limits(png_, kMostPixels, kMostPixels);
        png_set_chunk_malloc_max(png_, kMostChunkBytes);
        png_set_option(png_, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
    }
    ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    /// Reads the header; comes first.
    PictureSize readSize() {
        std::FILE* stream = file_.fromStart();
        require(completes(png_, [&] {
            png_init_io(png_, stream);
            png_read_info(png_, info_);
        }));
        return {png_get_image_width(png_, info_), png_get_image_height(png_, info_)};
    }

    Bitmap read() {
        const auto [width, height, frames] = readSize();
        requirePictureSize(file_.path(), width, height);
        isColour_ = (png_get_color_type(png_, info_) & PNG_COLOR_MASK_COLOR) != 0;
        auto metadata = std::make_shared<PictureMetadata>();
        if (png_get_bit_depth(png_, info_) == 16)
            metadata->losses.push_back("the precision of 16 bits a sample, as pictures have 8");
        Bitmap picture{static_cast<int32_t>(width), static_cast<int32_t>(height), {}, metadata};
        picture.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
        readPixels(picture);
        readMetadata(*metadata);
        return upright(std::move(picture), takeOrientation(metadata->exif));
    }

private:
    void require(bool isDone) const {
        if (!isDone)
            throw PictureError("cannot read " + file_.path().string() + ": it is damaged: " + reason_.text);
    }

    void readPixels(Bitmap& picture) {
        std::vector<png_bytep> rows(static_cast<size_t>(picture.height));
        for (int32_t y = 0; y < picture.height; ++y)
            rows[static_cast<size_t>(y)] = reinterpret_cast<png_bytep>(picture.row(y));
        require(completes(png_, [&] {
            png_set_expand(png_);
            png_set_strip_16(png_);
            png_set_gray_to_rgb(png_);
            png_set_add_alpha(png_, 255, PNG_FILLER_AFTER);
            png_set_bgr(png_);
            png_set_interlace_handling(png_);
            png_read_update_info(png_, info_);
            png_read_image(png_, rows.data());
            png_read_end(png_, info_);
        }));
    }

    void readMetadata(PictureMetadata& metadata) {
        png_charp name = nullptr;
        int method = 0;
        png_bytep bytes = nullptr;
        png_uint_32 count = 0;
        if (isColour_ && png_get_iCCP(png_, info_, &name, &method, &bytes, &count) != 0)
            metadata.colourProfile.assign(bytes, bytes + count);
        else if (kHasVips && isColour_ && reason_.doubtsProfile)
            throw NeedsVips(kDoubtfulProfile);
        if (png_get_eXIf_1(png_, info_, &count, &bytes) != 0) {
            metadata.exif.assign(kExifMark.begin(), kExifMark.end());
            metadata.exif.insert(metadata.exif.end(), bytes, bytes + count);
            metadata.exif = withoutThumbnail(std::move(metadata.exif));
        }
        metadata.pixelsPerMillimetreX = png_get_x_pixels_per_meter(png_, info_) / kMillimetres;
        metadata.pixelsPerMillimetreY = png_get_y_pixels_per_meter(png_, info_) / kMillimetres;
        readTexts(metadata);
    }

    void readTexts(PictureMetadata& metadata) {
        png_textp texts = nullptr;
        int textCount = 0;
        png_get_text(png_, info_, &texts, &textCount);
        for (const png_text* text = texts; text != texts + textCount; ++text) {
            if (std::strcmp(text->key, kXmpKeyword) == 0)
                metadata.xmp.assign(text->text, text->text + std::strlen(text->text));
            else
                metadata.texts.push_back({text->key, text->text});
        }
    }

    const InputFile& file_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    bool isColour_ = false;  ///< not grey, for which a profile of colours is no use
    Reason reason_;
};

bool isPng(const InputFile& file) {
    png_byte start[8] = {};
    return file.readAt(0, start, sizeof start) && png_sig_cmp(start, 0, sizeof start) == 0;
}

void pass(png_structp png, png_bytep bytes, size_t count) {
    if (!static_cast<GuardedWriter*>(png_get_io_ptr(png))->write(bytes, count)) png_error(png, "");
}

void flush(png_structp) {}

class PngWriter {
public:
    PngWriter(AtomicFile& file, const Bitmap& picture, const WriteOptions& options)
        : file_(file), picture_(picture), options_(options) {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &reason_, giveUp, weighWarning);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (info_) return;
        png_destroy_write_struct(&png_, nullptr);
        throw std::bad_alloc();
    }
    ~PngWriter() { png_destroy_write_struct(&png_, &info_); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void write() {
        const std::vector<Pixel>& pixels = picture_.pixels;
        isOpaque_ = std::all_of(pixels.begin(), pixels.end(), [](const Pixel& p) { return p.alpha == 255; });
        const PngPacking packing = pngPacking(picture_, options_.compression);
        std::vector<uint8_t> row(static_cast<size_t>(picture_.width) * 8);
        const PictureMetadata none;
        const PictureMetadata& metadata = picture_.metadata ? *picture_.metadata : none;
        const std::vector<uint8_t> exif = withSize(metadata.exif, picture_.width, picture_.height);
        std::vector<png_text> texts = options_.isStripped ? std::vector<png_text>() : textsOf(metadata);
        GuardedWriter writer(file_);
        const bool isDone = completes(png_, [&] {
            png_set_write_fn(png_, &writer, pass, flush);
            png_set_benign_errors(png_, 1);
            png_set_option(png_, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
            png_set_user_limits(png_, kMostPixels, kMostPixels);
            png_set_compression_buffer_size(png_, kBufferBytes);
            png_set_filter(png_, PNG_FILTER_TYPE_BASE,
                           packing.hasFilters ? PNG_ALL_FILTERS : PNG_FILTER_NONE);
            png_set_compression_level(png_, packing.level);
            png_set_IHDR(png_, info_, static_cast<png_uint_32>(picture_.width),
                         static_cast<png_uint_32>(picture_.height), options_.depth,
                         isOpaque_ ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
                         PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            setProfileAndResolution(metadata);
            if (!options_.isStripped) setExif(exif);
            png_set_text(png_, info_, texts.data(), static_cast<int>(texts.size()));
            png_write_info(png_, info_);
            for (int32_t y = 0; y < picture_.height; ++y) {
                fill(row.data(), picture_.row(y));
                png_write_row(png_, row.data());
            }
            png_write_end(png_, info_);
        });
        writer.rethrow();
        if (!isDone) throw PictureError("cannot write " + file_.target().string() + ": " + reason_.text);
    }

private:
    std::vector<png_text> textsOf(const PictureMetadata& metadata) {
        xmp_.assign(metadata.xmp.begin(), metadata.xmp.end());
        std::vector<png_text> texts;
        const auto add = [&](const char* keyword, const char* text, size_t bytes, int kind) {
            png_text one{};
            one.compression = kind;
            one.key = const_cast<char*>(keyword);  // libpng copies it
            one.text = const_cast<char*>(text);
            (kind == PNG_ITXT_COMPRESSION_NONE ? one.itxt_length : one.text_length) = bytes;
            texts.push_back(one);
        };
        if (!xmp_.empty()) add(kXmpKeyword, xmp_.c_str(), xmp_.size(), PNG_ITXT_COMPRESSION_NONE);
        for (const PictureText& text : metadata.texts)
            add(text.keyword.c_str(), text.text.c_str(), text.text.size(), PNG_TEXT_COMPRESSION_NONE);
        return texts;
    }

    void setProfileAndResolution(const PictureMetadata& metadata) {
        if (!metadata.colourProfile.empty()) {
            png_set_iCCP(png_, info_, "icc", PNG_COMPRESSION_TYPE_BASE, metadata.colourProfile.data(),
                         static_cast<png_uint_32>(metadata.colourProfile.size()));
            if (kHasVips && !png_get_valid(png_, info_, PNG_INFO_iCCP)) throw NeedsVips(kDoubtfulProfile);
        }
        if (metadata.pixelsPerMillimetreX > 0 && metadata.pixelsPerMillimetreY > 0)
            png_set_pHYs(png_, info_, perMetre(metadata.pixelsPerMillimetreX),
                         perMetre(metadata.pixelsPerMillimetreY), PNG_RESOLUTION_METER);
    }

    void setExif(const std::vector<uint8_t>& exif) {
        const size_t mark = kExifMark.size();
        if (exif.size() > mark)
            png_set_eXIf_1(png_, info_, static_cast<png_uint_32>(exif.size() - mark),
                           const_cast<png_bytep>(exif.data() + mark));
    }

    static png_uint_32 perMetre(double perMillimetre) {
        return static_cast<png_uint_32>(std::lround(perMillimetre * kMillimetres));
    }

    /// One row of samples, which are written twice to make 16 bits: white stays white.
    void fill(uint8_t* to, const Pixel* from) const {
        const auto put = [&](uint8_t level) {
            *to++ = level;
            if (options_.depth == 16) *to++ = level;
        };
        for (const Pixel* p = from; p != from + picture_.width; ++p) {
            put(p->red);
            put(p->green);
            put(p->blue);
            if (!isOpaque_) put(p->alpha);
        }
    }

    AtomicFile& file_;
    const Bitmap& picture_;
    const WriteOptions& options_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    bool isOpaque_ = false;
    std::string xmp_;  ///< with the zero at its end that libpng expects
    Reason reason_;
};

}  // namespace

const FormatReader kPngReader{isPng, [](const InputFile& file) { return PngReader(file).read(); },
                              [](const InputFile& file) { return PngReader(file).readSize(); }};

void writePng(AtomicFile& file, const Bitmap& picture, const WriteOptions& options) {
    PngWriter(file, picture, options).write();
}

}  // namespace krl::player

#endif
