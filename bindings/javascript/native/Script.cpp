#include "Script.h"

#include <cmath>
#include <cstring>
#include <new>
#include <sstream>

#include "player/lingo/Session.h"

using krl::Pixel;
using krl::player::Bitmap;

struct krl_script {
    krl::player::PictureTable pictures;
    std::string output, alerts, error;
    krl::player::Place place;
};

namespace {

constexpr uint64_t kMemoryBytes = uint64_t{1} << 30;

/// From RGBA to BGRA or back.
void exchangeRedAndBlue(Bitmap& bitmap) {
    for (Pixel& pixel : bitmap.pixels) std::swap(pixel.red, pixel.blue);
}

/// Runs `work`; memory that it cannot get is a code.
template <class Work>
krl_code withinMemory(const Work& work) {
    try {
        work();
        return KRL_OK;
    } catch (const std::bad_alloc&) {
        return KRL_OUT_OF_MEMORY;
    }
}

void run(krl_script& script, const char* file, const std::vector<std::string>& arguments, double steps) {
    std::ostringstream output, alerts;
    krl::player::SessionOptions options;
    options.pictures = &script.pictures;
    options.memoryLimit = kMemoryBytes;
    if (steps < 0x1p63) options.stepLimit = static_cast<uint64_t>(std::fmax(steps, 0));
    options.output = &output;
    options.alerts = &alerts;
    try {
        krl::player::Session(options).run(file, arguments);
    } catch (const krl::player::ScriptError& error) {
        script.error = error.message();
        script.place = error.place();
    }
    script.output = output.str();
    script.alerts = alerts.str();
    for (auto& [name, bitmap] : script.pictures.saved) exchangeRedAndBlue(bitmap);
}

const std::pair<const std::string, Bitmap>& saved(const krl_script& script, size_t index) {
    return *std::next(script.pictures.saved.begin(), static_cast<ptrdiff_t>(index));
}

}  // namespace

krl_script* krl_script_new(void) { return new (std::nothrow) krl_script; }

void krl_script_free(krl_script* script) { delete script; }

krl_code krl_script_give(krl_script* script, const char* name, const krl_picture* picture) {
    return withinMemory([&] {
        Bitmap bitmap{picture->width, picture->height, {}, nullptr};
        bitmap.pixels.resize(size_t(picture->width) * size_t(picture->height));
        std::memcpy(bitmap.pixels.data(), picture->pixels, bitmap.pixels.size() * sizeof(Pixel));
        exchangeRedAndBlue(bitmap);
        script->pictures.given[name] = std::move(bitmap);
    });
}

krl_code krl_script_run(krl_script* script, const char* file, const char* const* arguments, size_t count,
                        double steps) {
    const krl_code code = withinMemory([&] { run(*script, file, {arguments, arguments + count}, steps); });
    return code == KRL_OK && !script->error.empty() ? KRL_METHOD_FAILED : code;
}

const char* krl_script_output(const krl_script* script) { return script->output.c_str(); }
const char* krl_script_alerts(const krl_script* script) { return script->alerts.c_str(); }
const char* krl_script_error(const krl_script* script) { return script->error.c_str(); }
int32_t krl_script_line(const krl_script* script) { return script->place.line; }
int32_t krl_script_column(const krl_script* script) { return script->place.column; }

size_t krl_script_saved_count(const krl_script* script) { return script->pictures.saved.size(); }

const char* krl_script_saved_name(const krl_script* script, size_t index) {
    return saved(*script, index).first.c_str();
}

krl_code krl_script_saved_picture(const krl_script* script, size_t index, krl_picture* picture) {
    const Bitmap& bitmap = saved(*script, index).second;
    *picture = {sizeof *picture, const_cast<Pixel*>(bitmap.pixels.data()), bitmap.width, bitmap.height,
                ptrdiff_t{bitmap.width} * ptrdiff_t{sizeof(Pixel)}, KRL_RGBA};
    return KRL_OK;
}
