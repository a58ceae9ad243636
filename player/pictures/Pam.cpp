#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "player/pictures/Formats.h"

namespace krl::player {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& path, const std::string& why) {
    throw PictureError("cannot read " + path.string() + ": " + why);
}

/// A file that is read up to its end or the first error.
class PamFile {
public:
    explicit PamFile(const InputFile& file) : path_(file.path()), stream_(file.fromStart()) {}
    PamFile(const PamFile&) = delete;
    PamFile& operator=(const PamFile&) = delete;

    /// Returns the number of bytes read.
    size_t read(char* bytes, size_t count) {
        const size_t done = std::fread(bytes, 1, count, stream_);
        if (std::ferror(stream_)) refuse(path_, std::strerror(errno));
        return done;
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

private:
    static constexpr size_t kLongestLine = 1000;
    const std::filesystem::path& path_;
    std::FILE* stream_;
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

Bitmap readPam(const InputFile& input) {
    const std::filesystem::path& path = input.path();
    PamFile file(input);
    const PamHeader header = readHeader(path, file);
    if (header.depth != 4 || header.maximum != 255 || header.tupleType != "RGB_ALPHA")
        refuse(path, "a PAM picture must have DEPTH 4, MAXVAL 255 and TUPLTYPE RGB_ALPHA");
    requirePictureSize(path, header.width, header.height);
    Bitmap picture{static_cast<int32_t>(header.width), static_cast<int32_t>(header.height), {}, nullptr};
    picture.pixels.resize(size_t(header.width) * size_t(header.height));
    const size_t bytes = picture.pixels.size() * sizeof(Pixel);
    const size_t there = file.read(reinterpret_cast<char*>(picture.pixels.data()), bytes);
    if (there != bytes)
        refuse(path, "it ends after " + std::to_string(there) + " of " + std::to_string(bytes) +
                         " bytes of pixels");
    for (Pixel& p : picture.pixels) std::swap(p.blue, p.red);
    return picture;
}

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
