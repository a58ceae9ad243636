#include "c/Handles.h"
#include "c/Pictures.h"
#include "look/Look.h"

/// Looks of the C interface.
namespace krl::c {

namespace {

void require(const void* pointer, const char* what) {
    if (!pointer) throw Problem{KRL_BAD_USE, std::string("there is no ") + what};
}

std::string textOrNone(const char* text) { return text ? text : ""; }

/// Changes a look by `change`, and then the list of the pictures that it names.
template <class Change>
krl_code changeLook(krl_look* look, krl_result** result, Change&& change) {
    return answer(result, [&](krl_result&) {
        require(look, "look");
        change(look->look);
        look->pictureNames = look->look.pictureNames();
    });
}

void apply(krl_engine& engine, const krl_look& look, const Route& route, krl_result& result) {
    NativePictures pictures;
    std::map<std::string, Picture> named;
    for (const auto& [name, picture] : look.pictures) {
        const bool isApart = route.isInPlace() || !sharesMemory(picture, route.to);
        named[name] = *pictures.lend(isApart ? picture : copyOf(picture)).as<Picture>();
    }
    const Picture to = pictures.tight(route.to);
    if (engine.keepsMemory)
        engine.keptMemory.set(static_cast<size_t>(to.info.rowBytes) * static_cast<size_t>(to.info.height) *
                              KRL_KEPT_PICTURES);
    const Picture done =
        look.look.apply(engine.engine, route.apartFrom(), to, engine.bands, [&](const std::string& name) {
            const auto found = named.find(name);
            return found != named.end() ? found->second : Picture();
        });
    if (done.pixels == to.pixels) return;
    Value made = done;
    giveOrder(made, route.to.order);
    result.value = PropertyListValue{{Symbol{"picture"}, made}};
}

/// `from` is null for a look in place.
krl_code applyLook(krl_engine* engine, const krl_look* look, const krl_picture* from, const krl_picture* to,
                   krl_result** result) {
    return answer(result, [&](krl_result& out) {
        require(engine, "engine");
        require(look, "look");
        apply(*engine, *look, requireRoute(from, to), out);
    });
}

}  // namespace

}  // namespace krl::c

using krl::c::answer;
using krl::c::changeLook;
using krl::c::guarded;
using krl::c::textOrNone;

krl_look* krl_look_new(void) {
    return guarded<krl_look*>(nullptr, [] { return new krl_look; });
}

void krl_look_free(krl_look* look) { delete look; }

krl_code krl_look_read(const char* text, krl_look** look, krl_result** result) {
    if (look) *look = nullptr;
    return answer(result, [&](krl_result&) {
        krl::c::require(text, "text");
        krl::c::require(look, "place for the look");
        auto made = std::make_unique<krl_look>();
        made->look = krl::Look::read(text);
        made->pictureNames = made->look.pictureNames();
        *look = made.release();
    });
}

const char* krl_look_title(const krl_look* look) { return look ? look->look.title().c_str() : ""; }

const char* krl_look_description(const krl_look* look) {
    return look ? look->look.description().c_str() : "";
}

size_t krl_look_call_count(const krl_look* look) { return look ? look->look.steps().size() : 0; }

const char* krl_look_call(const krl_look* look, size_t index) {
    return index < krl_look_call_count(look) ? look->look.steps()[index].text.c_str() : nullptr;
}

size_t krl_look_parameter_count(const krl_look* look) { return look ? look->look.parameters().size() : 0; }

krl_code krl_look_parameter(const krl_look* look, size_t index, krl_parameter_info* info) {
    if (!info || info->size < sizeof(krl_parameter_info) || index >= krl_look_parameter_count(look))
        return KRL_BAD_USE;
    const krl::LookParameter& parameter = look->look.parameters()[index];
    *info = {info->size,
             parameter.name.c_str(),
             parameter.meaning.c_str(),
             parameter.value.c_str(),
             parameter.standard.c_str(),
             parameter.from.c_str(),
             parameter.to.c_str(),
             krl::c::infoOf(parameter.argument)};
    return KRL_OK;
}

krl_code krl_look_set(krl_look* look, const char* name, const char* value, krl_result** result) {
    return changeLook(look, result, [&](krl::Look& changed) {
        krl::c::require(name, "name");
        krl::c::require(value, "value");
        changed.set(name, value);
    });
}

size_t krl_look_picture_count(const krl_look* look) { return look ? look->pictureNames.size() : 0; }

const char* krl_look_picture_name(const krl_look* look, size_t index) {
    return index < krl_look_picture_count(look) ? look->pictureNames[index].c_str() : nullptr;
}

krl_code krl_look_set_picture(krl_look* look, const char* name, const krl_picture* picture) {
    return answer(nullptr, [&](krl_result&) {
        krl::c::require(look, "look");
        krl::c::require(name, "name");
        look->pictures[name] = krl::c::requirePicture(picture);
    });
}

krl_code krl_look_set_title(krl_look* look, const char* title, krl_result** result) {
    return changeLook(look, result, [&](krl::Look& changed) { changed.setTitle(textOrNone(title)); });
}

krl_code krl_look_set_description(krl_look* look, const char* description, krl_result** result) {
    return changeLook(look, result,
                      [&](krl::Look& changed) { changed.setDescription(textOrNone(description)); });
}

krl_code krl_look_add_parameter(krl_look* look, const char* name, const char* value, const char* from,
                                const char* to, const char* meaning, krl_result** result) {
    return changeLook(look, result, [&](krl::Look& changed) {
        krl::LookParameter parameter;
        parameter.name = textOrNone(name);
        parameter.standard = textOrNone(value);
        parameter.from = textOrNone(from);
        parameter.to = textOrNone(to);
        parameter.meaning = textOrNone(meaning);
        changed.addParameter(std::move(parameter));
    });
}

krl_code krl_look_add_call(krl_look* look, const char* call, krl_result** result) {
    return changeLook(look, result, [&](krl::Look& changed) {
        krl::c::require(call, "call");
        changed.addCall(call);
    });
}

size_t krl_look_write(const krl_look* look, char* text, size_t text_size) {
    return guarded<size_t>(0, [&]() -> size_t {
        if (!look) return 0;
        const std::string written = look->look.write();
        krl::c::copyText(written, text, text_size);
        return written.size();
    });
}

krl_code krl_look_apply(krl_engine* engine, const krl_look* look, const krl_picture* picture,
                        krl_result** result) {
    return krl::c::applyLook(engine, look, nullptr, picture, result);
}

krl_code krl_look_apply_into(krl_engine* engine, const krl_look* look, const krl_picture* from,
                             const krl_picture* to, krl_result** result) {
    return krl::c::applyLook(engine, look, krl::c::given(from), to, result);
}

size_t krl_shipped_look_count(void) {
    return guarded<size_t>(0, [] { return krl::shippedLooks().size(); });
}

const char* krl_shipped_look_name(size_t index) {
    return index < krl_shipped_look_count() ? krl::shippedLooks()[index].name : nullptr;
}

const char* krl_shipped_look_text(size_t index) {
    return index < krl_shipped_look_count() ? krl::shippedLooks()[index].text : nullptr;
}
