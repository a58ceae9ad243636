#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <utility>

#include "player/pictures/Formats.h"

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

/// Portable grey and colour maps, `P5` and `P6`.
Bitmap readMap(const std::filesystem::path& path, PamFile& file) {
    char start[2] = {};
    file.read(start, 2);
    const size_t channels = start[1] == '6' ? 3 : 1;
    const int64_t width = file.readNumber(), height = file.readNumber(), most = file.readNumber();
    if (most < 1 || most > 65535) refuse(path, "its largest sample must be from 1 to 65535");
    requirePictureSize(path, width, height);
    const LevelReader reader(most);
    const size_t rowBytes = static_cast<size_t>(width) * channels * reader.bytes();
    const auto requireRow = [&](uint64_t y) {
        if (y < static_cast<uint64_t>(height))
            refuse(path, "it ends in row " + std::to_string(y + 1) + " of " + std::to_string(height));
    };
    requireRow(file.left() / rowBytes);  // before memory is taken
    Bitmap picture{static_cast<int32_t>(width), static_cast<int32_t>(height), {}, nullptr};
    picture.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    std::vector<char> row(rowBytes);
    for (int32_t y = 0; y < picture.height; ++y) {
        if (file.read(row.data(), row.size()) != row.size()) requireRow(static_cast<uint64_t>(y));
        const char* sample = row.data();
        const auto next = [&] { return reader.level(std::exchange(sample, sample + reader.bytes())); };
        for (Pixel* p = picture.row(y); p != picture.row(y) + width; ++p) {
            p->red = p->green = p->blue = next();
            if (channels == 3) p->green = next();
            if (channels == 3) p->blue = next();
            p->alpha = 255;
        }
    }
    return picture;
}

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

Bitmap readPam(const InputFile& input) {
    const std::filesystem::path& path = input.path();
    PamFile file(input);
    const PamHeader header = readHeader(path, file);
    if (header.depth != 4 || header.maximum != 255 || header.tupleType != "RGB_ALPHA")
        refuse(path, "a PAM picture must have DEPTH 4, MAXVAL 255 and TUPLTYPE RGB_ALPHA");
    requirePictureSize(path, header.width, header.height);
    const size_t count = size_t(header.width) * size_t(header.height), bytes = count * sizeof(Pixel);
    const auto requireAll = [&](uint64_t there) {
        if (there < bytes)
            refuse(path, "it ends after " + std::to_string(there) + " of " + std::to_string(bytes) +
                             " bytes of pixels");
    };
    requireAll(file.left());  // before memory is taken
    Bitmap picture{static_cast<int32_t>(header.width), static_cast<int32_t>(header.height), {}, nullptr};
    picture.pixels.resize(count);
    requireAll(file.read(reinterpret_cast<char*>(picture.pixels.data()), bytes));
    for (Pixel& p : picture.pixels) std::swap(p.blue, p.red);
    return picture;
}

Bitmap readNetpbm(const InputFile& file) {
    if (isPam(file)) return readPam(file);
    PamFile map(file);
    return readMap(file.path(), map);
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

}  // namespace

const FormatReader kNetpbmReader{isNetpbm, readNetpbm, readNetpbmSize};

void writePam(AtomicFile& file, const Bitmap& picture) {
    file.write("P7\nWIDTH " + std::to_string(picture.width) + "\nHEIGHT " + std::to_string(picture.height) +
               "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n");
    std::vector<Pixel> row(size_t(picture.width));
    for (int32_t y = 0; y < picture.height; ++y) {
        std::copy_n(picture.row(y), picture.width, row.begin());
        for (Pixel& p : row) std::swap(p.blue, p.red);
        file.write({reinterpret_cast<const char*>(row.data()), row.size() * sizeof(Pixel)});
    }
}

}  // namespace krl::player
