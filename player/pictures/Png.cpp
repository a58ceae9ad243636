#if defined(KRL_WITH_PNG_JPEG)

#include <png.h>

#include <cctype>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <new>
#include <utility>

#include "player/pictures/ExifData.h"
#include "player/pictures/Formats.h"
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

/// Whether anything but the end follows the pixels, as far as the file goes. Moves the place that is read
/// from.
bool hasChunkAfterPixels(const InputFile& file) {
    constexpr uint64_t signatureBytes = 8, otherBytes = 12;  // of a chunk, beside its data
    const auto isType = [](const uint8_t* start, const char* type) {
        return std::memcmp(start + 4, type, 4) == 0;
    };
    bool hasPixels = false;
    uint8_t start[8];
    for (uint64_t place = signatureBytes; file.readAt(place, start, sizeof start);
         place += otherBytes + png_get_uint_32(start)) {
        if (isType(start, "IEND") || !std::isalpha(start[4])) return false;  // damaged, if not the end
        const bool isOfPixels = isType(start, "IDAT");
        if (hasPixels && !isOfPixels) return true;
        hasPixels = isOfPixels;
    }
    return false;
}

class PngReader final : public RowSource {
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
    ~PngReader() override { png_destroy_read_struct(&png_, &info_, nullptr); }
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

    /// Reads the header, and whether metadata follows the pixels.
    void begin() {
        endsWithMetadata_ = hasChunkAfterPixels(file_);
        size_ = readSize();
        isDeep_ = png_get_bit_depth(png_, info_) == 16;
        isColour_ = (png_get_color_type(png_, info_) & PNG_COLOR_MASK_COLOR) != 0;
    }

    PictureSize size() const override { return size_; }

    bool comesInRows() const override { return !isInterlaced() && !endsWithMetadata_; }

    void read(Pixel* pixels, int32_t rows) override {
        if (!std::exchange(hasStarted_, true)) start();
        auto* row = reinterpret_cast<png_bytep>(pixels);
        const size_t rowBytes = static_cast<size_t>(size_.width) * sizeof(Pixel);
        if (isInterlaced()) return readAllAtOnce(row, rowBytes);
        require(completes(png_, [&] {
            for (int32_t y = 0; y < rows; ++y)
                png_read_row(png_, row + static_cast<size_t>(y) * rowBytes, nullptr);
        }));
    }

    void finish() override {
        require(completes(png_, [&] { png_read_end(png_, info_); }));
    }

    std::shared_ptr<PictureMetadata> metadata() override {
        auto metadata = std::make_shared<PictureMetadata>();
        if (isDeep_) metadata->losses.push_back("the precision of 16 bits a sample, as pictures have 8");
        readMetadata(*metadata);
        return metadata;
    }

private:
    void require(bool isDone) const {
        if (!isDone)
            throw PictureError("cannot read " + file_.path().string() + ": it is damaged: " + reason_.text);
    }

    bool isInterlaced() const { return png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE; }

    void start() {
        require(completes(png_, [&] {
            png_set_expand(png_);
            png_set_strip_16(png_);
            png_set_gray_to_rgb(png_);
            png_set_add_alpha(png_, 255, PNG_FILLER_AFTER);
            png_set_bgr(png_);
            png_set_interlace_handling(png_);
            png_read_update_info(png_, info_);
        }));
    }

    void readAllAtOnce(png_bytep first, size_t rowBytes) {
        std::vector<png_bytep> rows(static_cast<size_t>(size_.height));
        for (size_t y = 0; y < rows.size(); ++y) rows[y] = first + y * rowBytes;
        require(completes(png_, [&] { png_read_image(png_, rows.data()); }));
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
    PictureSize size_;
    bool endsWithMetadata_ = false, isDeep_ = false, hasStarted_ = false;
    bool isColour_ = false;  ///< not grey, for which a profile of colours is no use
    Reason reason_;
};

std::unique_ptr<RowSource> openPng(const InputFile& file) {
    auto reader = std::make_unique<PngReader>(file);
    reader->begin();
    return reader;
}

bool isPng(const InputFile& file) {
    png_byte start[8] = {};
    return file.readAt(0, start, sizeof start) && png_sig_cmp(start, 0, sizeof start) == 0;
}

void pass(png_structp png, png_bytep bytes, size_t count) {
    if (!static_cast<GuardedWriter*>(png_get_io_ptr(png))->write(bytes, count)) png_error(png, "");
}

void flush(png_structp) {}

class PngWriter final : public RowSink {
public:
    PngWriter(AtomicFile& file, const PictureHead& head, const WriteOptions& options,
              const PictureContent& content)
        : file_(file), head_(head), options_(options), content_(content), writer_(file) {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &reason_, giveUp, weighWarning);
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (info_) return;
        png_destroy_write_struct(&png_, nullptr);
        throw std::bad_alloc();
    }
    ~PngWriter() override { png_destroy_write_struct(&png_, &info_); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    /// Writes the header.
    void begin() {
        const PngPacking packing = pngPacking(content_.isDrawing, options_.compression);
        row_.resize(static_cast<size_t>(head_.width) * 8);
        const PictureMetadata none;
        const PictureMetadata& metadata = head_.metadata ? *head_.metadata : none;
        const std::vector<uint8_t> exif = withSize(metadata.exif, head_.width, head_.height);
        std::vector<png_text> texts = options_.isStripped ? std::vector<png_text>() : textsOf(metadata);
        require(completes(png_, [&] {
            png_set_write_fn(png_, &writer_, pass, flush);
            png_set_benign_errors(png_, 1);
            png_set_option(png_, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
            png_set_user_limits(png_, kMostPixels, kMostPixels);
            png_set_compression_buffer_size(png_, kBufferBytes);
            png_set_filter(png_, PNG_FILTER_TYPE_BASE,
                           packing.hasFilters ? PNG_ALL_FILTERS : PNG_FILTER_NONE);
            png_set_compression_level(png_, packing.level);
            png_set_IHDR(png_, info_, static_cast<png_uint_32>(head_.width),
                         static_cast<png_uint_32>(head_.height), options_.depth,
                         content_.isOpaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
                         PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            setProfileAndResolution(metadata);
            if (!options_.isStripped) setExif(exif);
            png_set_text(png_, info_, texts.data(), static_cast<int>(texts.size()));
            png_write_info(png_, info_);
        }));
    }

    void write(const Pixel* pixels, int32_t rows) override {
        require(completes(png_, [&] {
            for (int32_t y = 0; y < rows; ++y) {
                fill(row_.data(), pixels + static_cast<size_t>(y) * static_cast<size_t>(head_.width));
                png_write_row(png_, row_.data());
            }
        }));
    }

    void finish() override {
        require(completes(png_, [&] { png_write_end(png_, info_); }));
    }

private:
    void require(bool isDone) const {
        writer_.rethrow();
        if (!isDone) throw PictureError("cannot write " + file_.target().string() + ": " + reason_.text);
    }

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
        for (const Pixel* p = from; p != from + head_.width; ++p) {
            put(p->red);
            put(p->green);
            put(p->blue);
            if (!content_.isOpaque) put(p->alpha);
        }
    }

    AtomicFile& file_;
    const PictureHead head_;
    const WriteOptions& options_;
    const PictureContent content_;
    GuardedWriter writer_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::vector<uint8_t> row_;
    std::string xmp_;  ///< with the zero at its end that libpng expects
    Reason reason_;
};

std::unique_ptr<RowSink> openPngWriter(AtomicFile& file, const PictureHead& head, const WriteOptions& options,
                                       const PictureContent& content) {
    auto writer = std::make_unique<PngWriter>(file, head, options, content);
    writer->begin();
    return writer;
}

}  // namespace

const FormatReader kPngReader{isPng, openPng,
                              [](const InputFile& file) { return PngReader(file).readSize(); }};

const FormatWriter kPngWriter{openPngWriter, true};

}  // namespace krl::player

#endif
