#include "frei0r/Instance.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace krl::frei0r {

namespace {

bool isSame(const Setting& one, const Setting& other) {
    return one.number == other.number && std::memcmp(&one.colour, &other.colour, sizeof one.colour) == 0 &&
           one.place.x == other.place.x && one.place.y == other.place.y && one.text == other.text;
}

Setting settingAt(int type, const void* from) {
    Setting setting;
    switch (type) {
        case kFrei0rColor:
            setting.colour = *static_cast<const f0r_param_color_t*>(from);
            break;
        case kFrei0rPosition:
            setting.place = *static_cast<const f0r_param_position_t*>(from);
            break;
        case kFrei0rString:
            if (const char* text = *static_cast<const char* const*>(from)) setting.text = text;
            break;
        default:
            setting.number = *static_cast<const double*>(from);
    }
    return setting;
}

}  // namespace

Effect::Effect(const krl_method_info& described)
    : method(described),
      role(bindings::roleOf(described)),
      name(std::string("krl_") + described.name),
      parameters(parametersOf(described)) {}

Instance::Instance(const Effect& effect, int32_t width, int32_t height)
    : effect_(effect),
      width_(width),
      height_(height),
      engine_(krl_engine_new(0)),
      settings_(effect.parameters.size()),
      arguments_(effect.method.argument_count) {
    if (!engine_) throw std::bad_alloc();
    krl_engine_keep_memory(engine_.get(), 1);
    for (size_t i = 0; i < settings_.size(); ++i) {
        const Parameter& parameter = effect_.parameters[i];
        const bindings::Value example(krl_example(effect_.method.name, parameter.argument, width_, height_));
        if (!example) throw std::bad_alloc();
        settings_[i] = settingOf(parameter.kind, scaleOf(parameter.argument), *example);
    }
    defaults_ = settings_;
    for (size_t i = 0; i < arguments_.size(); ++i) {
        const krl_argument_info& argument = *effect_.method.arguments[i];
        given_.push_back({argument.name, nullptr});
        if (argument.kind == KRL_KIND_PICTURE) continue;
        const bool isWidth = std::strcmp(argument.name, "width") == 0;
        const bool isSize = effect_.role == bindings::Role::Source && bindings::isSize(argument);
        arguments_[i].value.reset(isSize ? krl_integer(isWidth ? width_ : height_)
                                         : krl_example(effect_.method.name, i, width_, height_));
        if (!arguments_[i].value) throw std::bad_alloc();
    }
}

void Instance::set(size_t parameter, const void* from) {
    Setting setting = settingAt(effect_.parameters[parameter].type(), from);
    if (isSame(setting, settings_[parameter])) return;
    settings_[parameter] = std::move(setting);
    refresh(effect_.parameters[parameter].argument);
    made_.reset();
}

void Instance::get(size_t parameter, void* to) const {
    const Setting& setting = settings_[parameter];
    switch (effect_.parameters[parameter].type()) {
        case kFrei0rColor:
            *static_cast<f0r_param_color_t*>(to) = setting.colour;
            break;
        case kFrei0rPosition:
            *static_cast<f0r_param_position_t*>(to) = setting.place;
            break;
        case kFrei0rString:
            *static_cast<const char**>(to) = setting.text.c_str();
            break;
        default:
            *static_cast<double*>(to) = setting.number;
    }
}

/// The value that the argument's parameters stand for: of a choice's name if it has one, else of the number.
bindings::Value Instance::valueFor(size_t argument, std::string& problem) const {
    bindings::Value value;
    for (size_t i = 0; i < settings_.size(); ++i) {
        const Parameter& parameter = effect_.parameters[i];
        if (parameter.argument != argument) continue;
        if (parameter.kind == ParameterKind::ChoiceName && settings_[i].text.empty()) continue;
        problem.clear();
        value = isSame(settings_[i], defaults_[i])
                    ? bindings::Value(krl_example(effect_.method.name, argument, width_, height_))
                    : valueOf(parameter.kind, scaleOf(argument), settings_[i], problem);
    }
    return value;
}

void Instance::refresh(size_t argument) {
    std::string problem;
    bindings::Value value = valueFor(argument, problem);
    arguments_[argument].isGood = value != nullptr;
    if (value) arguments_[argument].value = std::move(value);
    if (!problem.empty()) complain(effect_.method.arguments[argument]->name + (": " + problem));
}

void Instance::update(const uint32_t* first, const uint32_t* second, uint32_t* out) {
    if (effect_.role == bindings::Role::Source) {
        if (isGood() && !made_) makePicture();
        krl_picture picture = {sizeof picture, nullptr, 0, 0, 0, 0};
        const krl_value* made = krl_item(krl_result_value(made_.get()), 0);
        if (krl_get_picture(made, &picture) == KRL_OK)
            copy(picture.pixels, out);
        else
            std::memset(out, 0, frameBytes());
    } else if (first) {
        rewrite(first, second, out);
    }
}

void Instance::rewrite(const uint32_t* first, const uint32_t* second, uint32_t* out) {
    const bool isPossible = isGood() && (effect_.role != bindings::Role::Mixer || second);
    const bool isLoaded = effect_.method.flags & KRL_REWRITES_PICTURE;
    if (!isPossible || !isLoaded) copy(first, out);
    if (!isPossible) return;
    // The interface only reads these two.
    const krl_picture from = bindings::pictureOver(const_cast<uint32_t*>(first), width_, height_);
    const krl_picture beside = bindings::pictureOver(const_cast<uint32_t*>(second), width_, height_);
    const krl_picture to = bindings::pictureOver(out, width_, height_);
    bindings::Result result;
    if (!(isLoaded ? call({&from, &to}, beside, beside, result) : call({}, to, beside, result)))
        copy(first, out);
}

void Instance::makePicture() {
    const krl_picture none = {};
    call({}, none, none, made_);
}

/// Calls the method; its first argument that is a picture is `changed`, further ones are `second`.
bool Instance::call(const Loaded& loaded, const krl_picture& changed, const krl_picture& second,
                    bindings::Result& result) {
    const krl_picture* next = &changed;
    for (size_t i = 0; i < arguments_.size(); ++i) {
        if (effect_.method.arguments[i]->kind == KRL_KIND_PICTURE) {
            arguments_[i].value.reset(krl_picture_value(next));
            next = &second;
        }
        given_[i].value = arguments_[i].value.get();
    }
    krl_result* out = nullptr;
    const char* const method = effect_.method.name;
    const krl_code code =
        loaded.to
            ? krl_call_into(engine_.get(), loaded.from, loaded.to, method, given_.data(), given_.size(), &out)
            : krl_call(engine_.get(), nullptr, method, given_.data(), given_.size(), &out);
    result.reset(out);
    if (code == KRL_OK) return true;
    complain(krl_result_message(out));
    return false;
}

bool Instance::isGood() const {
    for (const Argument& argument : arguments_)
        if (!argument.isGood) return false;
    return true;
}

/// One line, and the same one only once.
void Instance::complain(const std::string& problem) {
    if (problem == lastComplaint_) return;
    lastComplaint_ = problem;
    std::fprintf(stderr, "%s: %s\n", effect_.name.c_str(), problem.c_str());
}

Scale Instance::scaleOf(size_t argument) const {
    return {effect_.method.arguments[argument], width_, height_};
}

void Instance::copy(const void* from, uint32_t* to) const {
    if (from != to) std::memcpy(to, from, frameBytes());
}

}  // namespace krl::frei0r
