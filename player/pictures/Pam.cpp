#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <utility>

#include "player/pictures/Formats.h"
#include "player/pictures/PixelLimit.h"

namespace krl::player {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& path, const std::string& why) {
    throw PictureError("cannot read " + path.string() + ": " + why);
}

/// A file that is read up to its end or the first error.
class PamFile {
public:
    explicit PamFile(const InputFile& file)
        : path_(file.path()), stream_(file.fromStart()), size_(file.size()) {}
    PamFile(const PamFile&) = delete;
    PamFile& operator=(const PamFile&) = delete;

    /// Returns the number of bytes read.
    size_t read(char* bytes, size_t count) {
        const size_t done = std::fread(bytes, 1, count, stream_);
        if (std::ferror(stream_)) refuse(path_, std::strerror(errno));
        return done;
    }

    /// Bytes that are still to come, as far as the file's size tells.
    uint64_t left() const {
        const auto place = static_cast<uint64_t>(std::max(std::ftell(stream_), 0L));
        return size_ > place ? size_ - place : 0;
    }

    /// Reads the next line without its end; false at the end of the file.
    bool readLine(std::string& line) {
        line.clear();
        char letter = 0;
        while (read(&letter, 1) == 1) {
            if (letter == '\n') return true;
            if (line.size() == kLongestLine) refuse(path_, "a header line is too long");
            line += letter;
        }
        return !line.empty();
    }

    /// Reads the next number of a header in plain words, past blanks and comments, and the letter after it.
    int64_t readNumber() {
        std::string digits;
        for (char letter = 0; read(&letter, 1) == 1;) {
            if (letter == '#') skipComment();
            const bool isDigit = letter >= '0' && letter <= '9';
            if (isDigit && digits.size() < 10)
                digits += letter;
            else if (!digits.empty())
                break;
            else if (letter != '#' && letter != ' ' && letter != '\t' && letter != '\r' && letter != '\n')
                refuse(path_, "expected a number in its header");
        }
        return digits.empty() ? 0 : std::stoll(digits);
    }

private:
    void skipComment() {
        for (char letter = 0; letter != '\n' && read(&letter, 1) == 1;) continue;
    }

    static constexpr size_t kLongestLine = 1000;
    const std::filesystem::path& path_;
    std::FILE* stream_;
    uint64_t size_;
};

struct PamHeader {
    int64_t width = 0, height = 0, depth = 0, maximum = 0;
    std::string tupleType;
};

int64_t number(const std::filesystem::path& path, const std::string& line, size_t from) {
    int64_t value = -1;
    const char* first = line.data() + std::min(line.find_first_not_of(' ', from), line.size());
    if (std::from_chars(first, line.data() + line.size(), value).ec != std::errc())
        refuse(path, "expected a number in the header line '" + line + "'");
    return value;
}

PamHeader readHeader(const std::filesystem::path& path, PamFile& file) {
    PamHeader header;
    std::string line;
    file.readLine(line);
    while (file.readLine(line) && line != "ENDHDR") {
        const auto begins = [&](const char* word) { return line.rfind(word, 0) == 0; };
        if (line.empty() || line[0] == '#') continue;
        if (begins("WIDTH "))
            header.width = number(path, line, 6);
        else if (begins("HEIGHT "))
            header.height = number(path, line, 7);
        else if (begins("DEPTH "))
            header.depth = number(path, line, 6);
        else if (begins("MAXVAL "))
            header.maximum = number(path, line, 7);
        else if (begins("TUPLTYPE "))
            header.tupleType = line.substr(9);
        else
            refuse(path, "unknown header line '" + line + "'");
    }
    if (line != "ENDHDR") refuse(path, "the header has no end");
    return header;
}

}  // namespace

namespace {

/// Samples of one or two bytes, the high byte first, as levels up to 255.
class LevelReader {
public:
    explicit LevelReader(int64_t most) : most_(static_cast<uint32_t>(most)) {}

    size_t bytes() const { return most_ > 255 ? 2 : 1; }

    uint8_t level(const char* sample) const {
        const auto high = static_cast<uint8_t>(sample[0]);
        if (most_ == 255 || most_ == 65535) return high;
        const uint32_t value = most_ > 255 ? high * 256u + static_cast<uint8_t>(sample[1]) : high;
        return static_cast<uint8_t>((std::min(value, most_) * 255 + most_ / 2) / most_);
    }

private:
    uint32_t most_;
};

/// Whether a picture may have this size. If so, its file has to be long enough before memory is taken.
bool isAllowed(const PictureSize& size) {
    return size.width > 0 && size.height > 0 && size.width <= PixelLimit::current() / size.height;
}

/// Portable grey and colour maps, `P5` and `P6`.
class MapSource final : public RowSource {
public:
    explicit MapSource(const InputFile& file) : path_(file.path()), file_(file) {
        char start[2] = {};
        file_.read(start, 2);
        isColour_ = start[1] == '6';
        size_.width = file_.readNumber();
        size_.height = file_.readNumber();
        const int64_t most = file_.readNumber();
        if (most < 1 || most > 65535) refuse(path_, "its largest sample must be from 1 to 65535");
        reader_ = LevelReader(most);
        if (isAllowed(size_)) requireRow(static_cast<int64_t>(file_.left() / rowBytes()));
    }

    PictureSize size() const override { return size_; }

    void read(Pixel* pixels, int32_t rows) override {
        row_.resize(static_cast<size_t>(rowBytes()));
        for (int32_t y = 0; y < rows; ++y, ++done_, pixels += size_.width) {
            if (file_.read(row_.data(), row_.size()) != row_.size()) requireRow(done_);
            fill(pixels);
        }
    }

private:
    uint64_t rowBytes() const {
        return static_cast<uint64_t>(size_.width) * (isColour_ ? 3 : 1) * reader_.bytes();
    }

    void requireRow(int64_t y) const {
        if (y < size_.height)
            refuse(path_, "it ends in row " + std::to_string(y + 1) + " of " + std::to_string(size_.height));
    }

    void fill(Pixel* pixels) const {
        const char* sample = row_.data();
        const auto next = [&] { return reader_.level(std::exchange(sample, sample + reader_.bytes())); };
        for (Pixel* p = pixels; p != pixels + size_.width; ++p) {
            p->red = p->green = p->blue = next();
            if (isColour_) p->green = next();
            if (isColour_) p->blue = next();
            p->alpha = 255;
        }
    }

    const std::filesystem::path& path_;
    PamFile file_;
    PictureSize size_;
    bool isColour_ = false;
    LevelReader reader_{255};
    std::vector<char> row_;
    int64_t done_ = 0;  ///< rows
};

/// The digit after the `P` that a file of these formats begins with, or 0.
char kindOf(const InputFile& file) {
    char start[2] = {};
    std::FILE* stream = file.fromStart();
    if (std::fread(start, 1, 2, stream) < 2 && std::ferror(stream)) refuse(file.path(), std::strerror(errno));
    return start[0] == 'P' && start[1] >= '1' && start[1] <= '7' ? start[1] : char{0};
}

bool isNetpbm(const InputFile& file) { return kindOf(file) != 0; }

/// Whether it is PAM and not a portable map. Refuses the other kinds.
bool isPam(const InputFile& file) {
    const char kind = kindOf(file);
    if (kind < '5')
        refuse(file.path(), "of the Netpbm formats, P5 (.pgm), P6 (.ppm) and P7 (.pam) can be read");
    return kind == '7';
}

class PamSource final : public RowSource {
public:
    explicit PamSource(const InputFile& input) : path_(input.path()), file_(input) {
        const PamHeader header = readHeader(path_, file_);
        if (header.depth != 4 || header.maximum != 255 || header.tupleType != "RGB_ALPHA")
            refuse(path_, "a PAM picture must have DEPTH 4, MAXVAL 255 and TUPLTYPE RGB_ALPHA");
        size_ = {header.width, header.height};
        if (isAllowed(size_)) requireAll(file_.left());
    }

    PictureSize size() const override { return size_; }

    void read(Pixel* pixels, int32_t rows) override {
        const uint64_t bytes = bytesOf(rows);
        const uint64_t read = file_.read(reinterpret_cast<char*>(pixels), static_cast<size_t>(bytes));
        done_ += read;
        if (read < bytes) requireAll(done_);
        for (Pixel* p = pixels; p != pixels + bytes / sizeof(Pixel); ++p) std::swap(p->blue, p->red);
    }

private:
    uint64_t bytesOf(int64_t rows) const {
        return static_cast<uint64_t>(size_.width) * static_cast<uint64_t>(rows) * sizeof(Pixel);
    }

    void requireAll(uint64_t there) const {
        if (const uint64_t all = bytesOf(size_.height); there < all)
            refuse(path_, "it ends after " + std::to_string(there) + " of " + std::to_string(all) +
                              " bytes of pixels");
    }

    const std::filesystem::path& path_;
    PamFile file_;
    PictureSize size_;
    uint64_t done_ = 0;  ///< bytes
};

std::unique_ptr<RowSource> openNetpbm(const InputFile& file) {
    if (isPam(file)) return std::make_unique<PamSource>(file);
    return std::make_unique<MapSource>(file);
}

PictureSize readNetpbmSize(const InputFile& file) {
    const bool isArbitrary = isPam(file);
    PamFile map(file);
    if (isArbitrary) {
        const PamHeader header = readHeader(file.path(), map);
        return {header.width, header.height};
    }
    char start[2] = {};
    map.read(start, 2);
    const int64_t width = map.readNumber();
    return {width, map.readNumber()};
}

class PamSink final : public RowSink {
public:
    PamSink(AtomicFile& file, const PictureHead& head) : file_(file), row_(size_t(head.width)) {
        file_.write("P7\nWIDTH " + std::to_string(head.width) + "\nHEIGHT " + std::to_string(head.height) +
                    "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n");
    }

    void write(const Pixel* pixels, int32_t rows) override {
        for (int32_t y = 0; y < rows; ++y, pixels += row_.size()) {
            std::copy_n(pixels, row_.size(), row_.begin());
            for (Pixel& p : row_) std::swap(p.blue, p.red);
            file_.write({reinterpret_cast<const char*>(row_.data()), row_.size() * sizeof(Pixel)});
        }
    }

private:
    AtomicFile& file_;
    std::vector<Pixel> row_;
};

}  // namespace

const FormatReader kNetpbmReader{isNetpbm, openNetpbm, readNetpbmSize};
const FormatWriter kPamWriter{
    [](AtomicFile& file, const PictureHead& head, const WriteOptions&,
       const PictureContent&) -> std::unique_ptr<RowSink> { return std::make_unique<PamSink>(file, head); },
    false};

}  // namespace krl::player
