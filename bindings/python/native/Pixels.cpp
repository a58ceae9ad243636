#include <bit>
#include <cstring>

#include "Values.h"

namespace krl::python {

namespace {

/// An array's addresses, for work without the interpreter's lock.
struct View {
    uint8_t* pixels;
    py::ssize_t height, width, channels;
    py::ssize_t rowStep, pixelStep, channelStep;

    uint8_t* row(py::ssize_t y) const { return pixels + y * rowStep; }
    bool isAdjacent() const { return pixelStep == channels && (channels == 1 || channelStep == 1); }
};

/// Makes one row of rows without gaps between them.
void joinRows(View& from, View& to) {
    const auto isJoined = [](const View& view) {
        return view.isAdjacent() && view.rowStep == view.width * view.channels;
    };
    if (!isJoined(from) || !isJoined(to)) return;
    for (View* const view : {&from, &to}) {
        view->width *= view->height;
        view->height = 1;
    }
}

/// Of an array of two or three dimensions; whoever writes has tested that it is writable.
View viewOf(const Array& array) {
    const bool isGrey = array.ndim() == 2;
    return {const_cast<uint8_t*>(array.data()), array.shape(0),   array.shape(1),
            isGrey ? 1 : array.shape(2),        array.strides(0), array.strides(1),
            isGrey ? 0 : array.strides(2)};
}

/// Where the bytes of a pixel are: 1, 3 or 4 channels, red or blue first, and the distances between pixels
/// and between channels, which for adjacent bytes are constants.
template <int kChannelCount, bool kRedFirst, bool kAdjacent>
struct Form {
    py::ssize_t anyPixelStep, anyChannelStep;

    static constexpr bool isGrey = kChannelCount == 1, hasAlpha = kChannelCount == 4;
    static constexpr bool isRedFirst = kRedFirst, isAdjacent = kAdjacent;
    py::ssize_t pixelStep() const { return kAdjacent ? kChannelCount : anyPixelStep; }
    py::ssize_t channelStep() const { return kAdjacent ? 1 : anyChannelStep; }
    py::ssize_t blue() const { return isGrey ? 0 : kRedFirst ? 2 * channelStep() : 0; }
    py::ssize_t green() const { return isGrey ? 0 : channelStep(); }
    py::ssize_t red() const { return isGrey ? 0 : kRedFirst ? 0 : 2 * channelStep(); }
    py::ssize_t alpha() const { return 3 * channelStep(); }
};

/// Calls `work(form)` with the form of the view's pixels.
template <int kChannelCount, bool kRedFirst, class Work>
void withSteps(const View& view, const Work& work) {
    if (view.isAdjacent())
        work(Form<kChannelCount, kRedFirst, true>{});
    else
        work(Form<kChannelCount, kRedFirst, false>{view.pixelStep, view.channelStep});
}

template <class Work>
void withForm(const View& view, int32_t order, const Work& work) {
    const bool isRedFirst = order == KRL_RGBA;
    if (view.channels == 1)
        withSteps<1, true>(view, work);
    else if (view.channels == 3)
        isRedFirst ? withSteps<3, true>(view, work) : withSteps<3, false>(view, work);
    else
        isRedFirst ? withSteps<4, true>(view, work) : withSteps<4, false>(view, work);
}

uint32_t wordAt(const uint8_t* bytes) {
    uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

void setWord(uint8_t* bytes, uint32_t word) { std::memcpy(bytes, &word, sizeof word); }

/// Four bytes from red first to blue first or back, if `kRedFirst`.
template <bool kRedFirst>
void reorder(const uint8_t* from, uint8_t* to, py::ssize_t width) {
    if (!kRedFirst) std::memmove(to, from, static_cast<size_t>(4 * width));
    for (py::ssize_t x = 0; kRedFirst && x < width; ++x) {
        const uint32_t pixel = wordAt(from + 4 * x), ends = (pixel & 0xff) << 16 | (pixel >> 16 & 0xff);
        setWord(to + 4 * x, (pixel & 0xff00ff00) | ends);
    }
}

/// Three bytes from red first to blue first or back, if `kRedFirst`; the fourth is not set then.
template <bool kRedFirst>
uint32_t reordered(uint32_t pixel) {
    return kRedFirst ? __builtin_bswap32(pixel) >> 8 : pixel;
}

constexpr bool kHasWords = std::endian::native == std::endian::little;

/// Unpacks pixels of adjacent bytes by words, of which four pixels of three bytes take three. Returns how
/// many pixels are done.
template <class AnyForm>
py::ssize_t unpackWords(const uint8_t* from, AnyForm, uint8_t* to, py::ssize_t width) {
    py::ssize_t x = 0;
    if constexpr (!kHasWords || !AnyForm::isAdjacent) {
        return 0;
    } else if constexpr (AnyForm::hasAlpha) {
        reorder<AnyForm::isRedFirst>(from, to, width);
        return width;
    } else if constexpr (AnyForm::isGrey) {
        for (; x < width; ++x) setWord(to + 4 * x, from[x] * 0x010101u | 0xff000000);
    } else {
        for (; x + 4 <= width; x += 4, from += 12, to += 16) {
            const uint32_t a = wordAt(from), b = wordAt(from + 4), c = wordAt(from + 8);
            const uint32_t pixels[] = {a, a >> 24 | b << 8, b >> 16 | c << 16, c >> 8};
            for (int i = 0; i < 4; ++i)
                setWord(to + 4 * i, reordered<AnyForm::isRedFirst>(pixels[i]) | 0xff000000);
        }
    }
    return x;
}

/// The other way.
template <class AnyForm>
py::ssize_t packWords(const uint8_t* from, uint8_t* to, AnyForm, py::ssize_t width) {
    py::ssize_t x = 0;
    if constexpr (!kHasWords || !AnyForm::isAdjacent || AnyForm::isGrey) {
        return 0;
    } else if constexpr (AnyForm::hasAlpha) {
        reorder<AnyForm::isRedFirst>(from, to, width);
        return width;
    } else {
        for (; x + 4 <= width; x += 4, from += 16, to += 12) {
            uint32_t pixels[4];
            for (int i = 0; i < 4; ++i)
                pixels[i] = reordered<AnyForm::isRedFirst>(wordAt(from + 4 * i)) & 0xffffff;
            setWord(to, pixels[0] | pixels[1] << 24);
            setWord(to + 4, pixels[1] >> 8 | pixels[2] << 16);
            setWord(to + 8, pixels[2] >> 16 | pixels[3] << 8);
        }
    }
    return x;
}

template <class AnyForm>
void unpackRow(const uint8_t* from, AnyForm form, uint8_t* to, py::ssize_t width) {
    py::ssize_t x = unpackWords(from, form, to, width);
    for (from += x * form.pixelStep(), to += 4 * x; x < width; ++x, from += form.pixelStep(), to += 4) {
        to[0] = from[form.blue()];
        to[1] = from[form.green()];
        to[2] = from[form.red()];
        to[3] = AnyForm::hasAlpha ? from[form.alpha()] : uint8_t{255};
    }
}

/// The target may be the source.
template <class AnyForm>
void packRow(const uint8_t* from, uint8_t* to, AnyForm form, py::ssize_t width) {
    py::ssize_t x = packWords(from, to, form, width);
    for (from += 4 * x, to += x * form.pixelStep(); x < width; ++x, from += 4, to += form.pixelStep()) {
        const uint8_t blue = from[0], green = from[1], red = from[2], alpha = from[3];
        to[form.blue()] = blue;
        to[form.green()] = green;
        to[form.red()] = red;
        if (AnyForm::hasAlpha) to[form.alpha()] = alpha;
    }
}

/// The picture as a new array in BGRA.
Array unpack(const Array& source, int32_t order) {
    Array made = newArray({source.shape(0), source.shape(1), py::ssize_t{4}});
    View from = viewOf(source), to = viewOf(made);
    joinRows(from, to);
    const py::gil_scoped_release unlocked;
    withForm(from, order, [&](auto form) {
        for (py::ssize_t y = 0; y < from.height; ++y) unpackRow(from.row(y), form, to.row(y), from.width);
    });
    return made;
}

/// Writes the pixels of a tight BGRA array to one of the same size and any form.
void pack(const Array& source, Array& target, int32_t order) {
    target.mutable_data();  // refuses an array that is read-only
    View from = viewOf(source), to = viewOf(target);
    joinRows(from, to);
    const py::gil_scoped_release unlocked;
    withForm(to, order, [&](auto form) {
        for (py::ssize_t y = 0; y < from.height; ++y) packRow(from.row(y), to.row(y), form, from.width);
    });
}

/// The channels that the pixels of a tight BGRA array need: 4 if one is not opaque, 1 if all are grey.
int channelsNeeded(const Array& source) {
    const View view = viewOf(source);
    const py::gil_scoped_release unlocked;
    uint32_t opaque = 0xff000000, coloured = 0;
    for (py::ssize_t y = 0; y < view.height; ++y) {
        const uint8_t* from = view.row(y);
        for (py::ssize_t x = 0; x < view.width; ++x) {
            uint32_t pixel;
            std::memcpy(&pixel, from + 4 * x, sizeof pixel);
            opaque &= pixel;
            coloured |= (pixel ^ pixel >> 8) & 0xffff;
        }
    }
    if (opaque != 0xff000000) return 4;
    return coloured ? 3 : 1;
}

}  // namespace

void bindPixels(py::module_& module) {
    module.def("new_array", newArray);
    module.def("unpack", unpack, py::arg().noconvert(), py::arg());
    module.def("pack", pack, py::arg().noconvert(), py::arg().noconvert(), py::arg());
    module.def("channels_needed", channelsNeeded, py::arg().noconvert());
}

}  // namespace krl::python
