#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>

#include "player/pictures/Formats.h"

namespace krl::player {

namespace {

struct PamHeader {
    int64_t width = 0, height = 0, depth = 0, maximum = 0;
    std::string tupleType;
};

[[noreturn]] void refuse(const std::filesystem::path& path, const std::string& why) {
    throw PictureError("cannot read " + path.string() + ": " + why);
}

int64_t number(const std::filesystem::path& path, const std::string& line, size_t from) {
    int64_t value = -1;
    const char* first = line.data() + std::min(line.find_first_not_of(' ', from), line.size());
    if (std::from_chars(first, line.data() + line.size(), value).ec != std::errc())
        refuse(path, "a number is wanted in the header line '" + line + "'");
    return value;
}

PamHeader readHeader(const std::filesystem::path& path, std::ifstream& file) {
    PamHeader header;
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line) && line != "ENDHDR") {
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
            refuse(path, "the header line '" + line + "' is unknown");
    }
    if (line != "ENDHDR") refuse(path, "its header has no end");
    return header;
}

}  // namespace

Bitmap readPam(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const PamHeader header = readHeader(path, file);
    if (header.depth != 4 || header.maximum != 255 || header.tupleType != "RGB_ALPHA")
        refuse(path, "a PAM picture must be of DEPTH 4, MAXVAL 255 and TUPLTYPE RGB_ALPHA");
    requirePictureSize(path, header.width, header.height);
    Bitmap picture{static_cast<int32_t>(header.width), static_cast<int32_t>(header.height), {}, nullptr};
    picture.pixels.resize(size_t(header.width) * size_t(header.height));
    const auto bytes = static_cast<std::streamsize>(picture.pixels.size() * sizeof(Pixel));
    file.read(reinterpret_cast<char*>(picture.pixels.data()), bytes);
    if (file.gcount() != bytes)
        refuse(path, "it ends after " + std::to_string(file.gcount()) + " of " + std::to_string(bytes) +
                         " bytes of pixels");
    for (Pixel& p : picture.pixels) std::swap(p.blue, p.red);
    return picture;
}

void writePam(const AtomicFile& place, const Bitmap& picture) {
    std::ofstream file(place.path(), std::ios::binary);
    file << "P7\nWIDTH " << picture.width << "\nHEIGHT " << picture.height
         << "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
    std::vector<Pixel> row(size_t(picture.width));
    for (int32_t y = 0; y < picture.height && file; ++y) {
        std::copy_n(picture.row(y), picture.width, row.begin());
        for (Pixel& p : row) std::swap(p.blue, p.red);
        file.write(reinterpret_cast<const char*>(row.data()), std::streamsize(row.size() * sizeof(Pixel)));
    }
    file.flush();
    if (!file) throw PictureError("cannot write " + place.target().string() + ": " + std::strerror(errno));
}

}  // namespace krl::player
