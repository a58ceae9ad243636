#if defined(KRL_WITH_PNG_JPEG)

#include <cstdio>
// libjpeg needs the one above.
#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "player/pictures/ExifData.h"
#include "player/pictures/Formats.h"
#include "player/pictures/Iptc.h"
#include "player/pictures/PictureMetadata.h"

namespace krl::player {

namespace {

constexpr std::string_view kXmpMark{"http://ns.adobe.com/xap/1.0/\0", 29};
constexpr int kExifSegment = JPEG_APP0 + 1, kProfileSegment = JPEG_APP0 + 2, kIptcSegment = JPEG_APP0 + 13;
constexpr unsigned kMostSegmentBytes = 65533;
constexpr double kMillimetresPerInch = 25.4;
/// Each scan of a progressive file costs as much as the whole picture; real files have a dozen.
constexpr int kMostScans = 100;

/// How libjpeg reports: it jumps out of its calls.
struct Errors {
    jpeg_error_mgr manager;  // first, so that the address is that of the whole
    std::jmp_buf place;
    char reason[JMSG_LENGTH_MAX];
};

[[noreturn]] void giveUp(j_common_ptr jpeg) {
    auto* errors = reinterpret_cast<Errors*>(jpeg->err);
    jpeg->err->format_message(jpeg, errors->reason);
    std::longjmp(errors->place, 1);
}

/// Only a file that ends too early is worse than a warning.
void weigh(j_common_ptr jpeg, int level) {
    if (level < 0 && jpeg->err->msg_code == JWRN_JPEG_EOF) giveUp(jpeg);
}

jpeg_error_mgr* startErrors(Errors& errors) {
    jpeg_std_error(&errors.manager);
    errors.manager.error_exit = giveUp;
    errors.manager.emit_message = weigh;
    errors.reason[0] = 0;
    return &errors.manager;
}

void countScans(j_common_ptr jpeg) {
    if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number <= kMostScans) return;
    auto* errors = reinterpret_cast<Errors*>(jpeg->err);
    std::snprintf(errors->reason, sizeof errors->reason, "it has more than %d scans", kMostScans);
    std::longjmp(errors->place, 1);
}

/// Runs calls of libjpeg, which jump out of them on failure, past all destructors: `work` owns nothing.
/// Returns whether they came to their end.
template <class Work>
bool completes(Errors& errors, const Work& work) {
    if (setjmp(errors.place) != 0) return false;
    work();
    return true;
}

class JpegReader final : public RowSource {
public:
    explicit JpegReader(const InputFile& file) : file_(file) {
        jpeg_.err = startErrors(errors_);
        require(completes(errors_, [&] { jpeg_create_decompress(&jpeg_); }));
        progress_.progress_monitor = countScans;
        jpeg_.progress = &progress_;
    }
    ~JpegReader() override { jpeg_destroy_decompress(&jpeg_); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    /// Reads the header; comes first.
    PictureSize readSize() {
        std::FILE* stream = file_.fromStart();
        require(completes(errors_, [&] {
            jpeg_stdio_src(&jpeg_, stream);
            for (const int segment : {kExifSegment, kProfileSegment, kIptcSegment})
                jpeg_save_markers(&jpeg_, segment, 0xFFFF);
            jpeg_read_header(&jpeg_, TRUE);
        }));
        return {jpeg_.image_width, jpeg_.image_height};
    }

    /// Reads the header with all metadata.
    void begin() {
        size_ = readSize();
        if (jpeg_.num_components != 1 && jpeg_.num_components != 3)
            throw NeedsVips(cannotRead() + "this build reads JPEG pictures in colour or grey, not in CMYK");
        readMetadata(*metadata_);
        // Of a progressive file libjpeg keeps more in memory than the picture takes.
        isOneScan_ = !jpeg_has_multiple_scans(&jpeg_);
    }

    PictureSize size() const override { return size_; }

    bool comesInRows() const override { return isOneScan_; }

    void read(Pixel* pixels, int32_t rows) override {
        const bool isFirst = !std::exchange(hasStarted_, true);
        auto* row = reinterpret_cast<JSAMPROW>(pixels);
        const size_t rowBytes = static_cast<size_t>(size_.width) * sizeof(Pixel);
        require(completes(errors_, [&] {
            if (isFirst) start();
            const JDIMENSION end = jpeg_.output_scanline + static_cast<JDIMENSION>(rows);
            for (JSAMPROW next = row; jpeg_.output_scanline < end; next += rowBytes)
                jpeg_read_scanlines(&jpeg_, &next, 1);
        }));
    }

    void finish() override {
        require(completes(errors_, [&] { jpeg_finish_decompress(&jpeg_); }));
    }

    std::shared_ptr<PictureMetadata> metadata() override { return metadata_; }

private:
    std::string cannotRead() const { return "cannot read " + file_.path().string() + ": "; }
    void require(bool isDone) const {
        if (!isDone) throw PictureError(cannotRead() + "it is damaged: " + errors_.reason);
    }

    void start() {
        jpeg_.out_color_space = JCS_EXT_BGRA;
        jpeg_start_decompress(&jpeg_);
    }

    void readMetadata(PictureMetadata& metadata) {
        for (const jpeg_marker_struct* marker = jpeg_.marker_list; marker; marker = marker->next) {
            const std::string_view data(reinterpret_cast<const char*>(marker->data), marker->data_length);
            if (marker->marker == kExifSegment && data.starts_with(kExifMark) && metadata.exif.empty())
                metadata.exif = withoutThumbnail({data.begin(), data.end()});
            else if (marker->marker == kExifSegment && data.starts_with(kXmpMark) && metadata.xmp.empty())
                metadata.xmp.assign(data.begin() + kXmpMark.size(), data.end());
            else if (marker->marker == kIptcSegment && metadata.iptc.empty())
                readResources({data.begin(), data.end()}, metadata);
        }
        const jpeg_component_info* parts = jpeg_.comp_info;
        const bool isColour = jpeg_.num_components == 3;
        if (isColour) readProfile(metadata);
        if (isColour)
            metadata.chroma = parts[0].h_samp_factor == 2 && parts[0].v_samp_factor == 2 ? "4:2:0" : "4:4:4";
        readResolution(metadata);
    }

    /// Cameras write it into EXIF data.
    void readResolution(PictureMetadata& metadata) const {
        const double unit = jpeg_.density_unit == 1 ? kMillimetresPerInch : jpeg_.density_unit == 2 ? 10 : 0;
        ExifResolution found;
        if (unit != 0) found = {jpeg_.X_density / unit, jpeg_.Y_density / unit};
        found = resolutionOf(metadata.exif).value_or(found);
        metadata.pixelsPerMillimetreX = found.x;
        metadata.pixelsPerMillimetreY = found.y;
    }

    static void readResources(const std::vector<uint8_t>& data, PictureMetadata& metadata) {
        metadata.iptc = bareIptc(data);
        metadata.hasOtherResources = hasMoreThanIptc(data);
    }

    void readProfile(PictureMetadata& metadata) {
        JOCTET* profile = nullptr;
        unsigned bytes = 0;
        require(completes(errors_, [&] { jpeg_read_icc_profile(&jpeg_, &profile, &bytes); }));
        if (profile) metadata.colourProfile.assign(profile, profile + bytes);
        std::free(profile);
    }

    const InputFile& file_;
    Errors errors_{};
    jpeg_progress_mgr progress_{};
    jpeg_decompress_struct jpeg_{};
    PictureSize size_;
    bool isOneScan_ = false, hasStarted_ = false;
    const std::shared_ptr<PictureMetadata> metadata_ = std::make_shared<PictureMetadata>();
};

std::unique_ptr<RowSource> openJpeg(const InputFile& file) {
    auto reader = std::make_unique<JpegReader>(file);
    reader->begin();
    return reader;
}

bool isJpeg(const InputFile& file) {
    uint8_t start[3] = {};
    return file.readAt(0, start, sizeof start) && start[0] == 0xFF && start[1] == 0xD8 && start[2] == 0xFF;
}

/// Where libjpeg puts what it has packed.
struct Destination : jpeg_destination_mgr {
    explicit Destination(AtomicFile& file) : jpeg_destination_mgr{}, writer(file) {
        init_destination = [](j_compress_ptr jpeg) { of(jpeg).restart(); };
        empty_output_buffer = [](j_compress_ptr jpeg) -> boolean {
            of(jpeg).pass(jpeg, sizeof bytes);
            return TRUE;
        };
        term_destination = [](j_compress_ptr jpeg) {
            of(jpeg).pass(jpeg, sizeof bytes - of(jpeg).free_in_buffer);
        };
    }

    static Destination& of(j_compress_ptr jpeg) { return *static_cast<Destination*>(jpeg->dest); }
    void restart() {
        next_output_byte = bytes;
        free_in_buffer = sizeof bytes;
    }
    void pass(j_compress_ptr jpeg, size_t count) {
        if (!writer.write(bytes, count)) giveUp(reinterpret_cast<j_common_ptr>(jpeg));
        restart();
    }

    GuardedWriter writer;
    JOCTET bytes[1 << 16];
};

class JpegWriter final : public RowSink {
public:
    JpegWriter(AtomicFile& file, const PictureHead& head, const WriteOptions& options)
        : file_(file), head_(head), options_(options), destination_(file) {
        jpeg_.err = startErrors(errors_);
        require(completes(errors_, [&] { jpeg_create_compress(&jpeg_); }));
        jpeg_.dest = &destination_;
    }
    ~JpegWriter() override { jpeg_destroy_compress(&jpeg_); }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

    /// Writes the header.
    void begin() {
        const PictureMetadata none;
        const PictureMetadata& metadata = head_.metadata ? *head_.metadata : none;
        const std::vector<uint8_t> exif = withSize(metadata.exif, head_.width, head_.height);
        const std::vector<uint8_t> iptc = iptcForJpeg(metadata.iptc);
        std::string xmp(kXmpMark);
        xmp.append(metadata.xmp.begin(), metadata.xmp.end());
        row_.resize(static_cast<size_t>(head_.width));
        require(completes(errors_, [&] {
            configure(metadata);
            jpeg_start_compress(&jpeg_, TRUE);
            if (!options_.isStripped) {
                writeSegment(kExifSegment, exif.data(), exif.size());
                if (!metadata.xmp.empty())
                    writeSegment(kExifSegment, reinterpret_cast<const uint8_t*>(xmp.data()), xmp.size());
                writeSegment(kIptcSegment, iptc.data(), iptc.size());
            }
            const std::vector<uint8_t>& profile = metadata.colourProfile;
            if (!profile.empty())
                jpeg_write_icc_profile(&jpeg_, profile.data(), static_cast<unsigned>(profile.size()));
        }));
    }

    void write(const Pixel* pixels, int32_t rows) override {
        require(completes(errors_, [&] {
            auto* samples = reinterpret_cast<JSAMPROW>(row_.data());
            for (int32_t y = 0; y < rows; ++y) {
                const Pixel* row = pixels + static_cast<size_t>(y) * row_.size();
                std::transform(row, row + row_.size(), row_.begin(), onWhite);
                jpeg_write_scanlines(&jpeg_, &samples, 1);
            }
        }));
    }

    void finish() override {
        require(completes(errors_, [&] { jpeg_finish_compress(&jpeg_); }));
    }

private:
    void require(bool isDone) const {
        destination_.writer.rethrow();
        if (!isDone) throw PictureError("cannot write " + file_.target().string() + ": " + errors_.reason);
    }

    /// Colours have fewer samples as chosen, or else as in the picture's own file, or else for low quality.
    bool hasFewerColours(const PictureMetadata& metadata) const {
        if (!options_.chroma.empty()) return options_.chroma == "420";
        return metadata.chroma.empty() ? options_.quality < 90 : metadata.chroma == "4:2:0";
    }

    void configure(const PictureMetadata& metadata) {
        jpeg_.image_width = static_cast<JDIMENSION>(head_.width);
        jpeg_.image_height = static_cast<JDIMENSION>(head_.height);
        jpeg_.input_components = 4;
        jpeg_.in_color_space = JCS_EXT_BGRX;
        jpeg_set_defaults(&jpeg_);
        jpeg_set_quality(&jpeg_, options_.quality, TRUE);
        const int factor = hasFewerColours(metadata) ? 2 : 1;
        jpeg_.comp_info[0].h_samp_factor = jpeg_.comp_info[0].v_samp_factor = factor;
        if (metadata.pixelsPerMillimetreX <= 0 || metadata.pixelsPerMillimetreY <= 0) return;
        jpeg_.density_unit = 1;
        jpeg_.X_density = perInch(metadata.pixelsPerMillimetreX);
        jpeg_.Y_density = perInch(metadata.pixelsPerMillimetreY);
    }

    static UINT16 perInch(double perMillimetre) {
        return static_cast<UINT16>(std::clamp(std::round(perMillimetre * kMillimetresPerInch), 1.0, 65535.0));
    }

    void writeSegment(int segment, const uint8_t* data, size_t bytes) {
        if (bytes == 0 || bytes > kMostSegmentBytes) return;
        jpeg_write_marker(&jpeg_, segment, data, static_cast<unsigned>(bytes));
    }

    /// JPEG has no transparency.
    static Pixel onWhite(const Pixel& p) {
        if (p.alpha == 255) return p;
        const auto laid = [&](uint8_t level) {
            return static_cast<uint8_t>((level * p.alpha + 255 * (255 - p.alpha)) / 255);
        };
        return {laid(p.blue), laid(p.green), laid(p.red), 255};
    }

    AtomicFile& file_;
    const PictureHead head_;
    const WriteOptions& options_;
    std::vector<Pixel> row_;
    Errors errors_{};
    jpeg_compress_struct jpeg_{};
    Destination destination_;
};

std::unique_ptr<RowSink> openJpegWriter(AtomicFile& file, const PictureHead& head,
                                        const WriteOptions& options, const PictureContent&) {
    auto writer = std::make_unique<JpegWriter>(file, head, options);
    writer->begin();
    return writer;
}

}  // namespace

const FormatReader kJpegReader{isJpeg, openJpeg,
                               [](const InputFile& file) { return JpegReader(file).readSize(); }};
const FormatWriter kJpegWriter{openJpegWriter, false};

}  // namespace krl::player

#endif
