#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "common/Handles.h"
#include "common/Roles.h"

/// What the C interface makes of a clip of raw BGRA frames: the judge of every program that runs our effects.
///     expected WIDTHxHEIGHT METHOD [NAME=VALUE]... < clip > judged
///     expected WIDTHxHEIGHT METHOD --with SECOND [NAME=VALUE]... < clip > judged
///     expected list                       every method with a role, and which
///     expected choices METHOD ARGUMENT    the symbols that it takes
namespace {

using namespace krl::bindings;

using Frame = std::vector<char>;

[[noreturn]] void fail(const std::string& problem) {
    std::fprintf(stderr, "expected: %s\n", problem.c_str());
    std::exit(2);
}

class Judge {
public:
    Judge(const std::string& size, const char* method) {
        if (std::sscanf(size.c_str(), "%dx%d", &width_, &height_) != 2) fail("no size: " + size);
        method_ = krl_find_method(method);
        if (!method_) fail(std::string("no method: ") + method);
    }

    void give(const std::string& word) {
        const size_t equals = word.find('=');
        if (equals == std::string::npos) fail("no NAME=VALUE: " + word);
        char why[256];
        krl_value* value = krl_parse(word.c_str() + equals + 1, why, sizeof why);
        if (!value) fail(why);
        names_.push_back(word.substr(0, equals));
        values_.emplace_back(value);
    }

    size_t frameBytes() const { return size_t(width_) * size_t(height_) * 4; }

    void judge(Frame& frame, Frame& second) {
        const bool isLoaded = method_->flags & KRL_REWRITES_PICTURE;
        krl_picture picture = pictureOver(frame.data(), width_, height_);
        const krl_picture beside = pictureOver(second.data(), width_, height_);
        std::vector<Value> own;
        std::vector<krl_argument> arguments;
        for (size_t i = 0; i < names_.size(); ++i) arguments.push_back({names_[i].c_str(), values_[i].get()});
        const krl_picture* next = isLoaded ? &beside : &picture;
        for (size_t i = 0; i < method_->argument_count; ++i) {
            const krl_argument_info& argument = *method_->arguments[i];
            if (argument.kind == KRL_KIND_PICTURE) {
                own.emplace_back(krl_picture_value(next));
                next = &beside;
            } else if (roleOf(*method_) == Role::Source && isSize(argument)) {
                own.emplace_back(krl_integer(*argument.name == 'w' ? width_ : height_));
            } else {
                continue;
            }
            arguments.push_back({argument.name, own.back().get()});
        }
        krl_result* out = nullptr;
        krl_call(engine_.get(), isLoaded ? &picture : nullptr, method_->name, arguments.data(),
                 arguments.size(), &out);
        const Result result(out);
        if (krl_result_code(out) != KRL_OK) fail(krl_result_message(out));
        if (roleOf(*method_) != Role::Source) return;
        krl_get_picture(krl_item(krl_result_value(out), 0), &picture);
        std::copy_n(static_cast<const char*>(picture.pixels), frame.size(), frame.begin());
    }

private:
    int32_t width_ = 0, height_ = 0;
    const krl_method_info* method_ = nullptr;
    Engine engine_{krl_engine_new(1)};
    std::vector<std::string> names_;
    std::vector<Value> values_;
};

int list() {
    const char* const names[] = {"none", "filter", "mixer", "source"};
    forEachWithRole([&](const krl_method_info& method, Role role) {
        std::printf("%s %s%s\n", method.name, names[int(role)],
                    method.flags & KRL_WORKS_PER_PIXEL ? " per-pixel" : "");
    });
    return 0;
}

int listChoices(const char* name, const std::string& argumentName) {
    const krl_method_info* method = krl_find_method(name);
    if (!method) fail(std::string("no method: ") + name);
    for (size_t i = 0; i < method->argument_count; ++i)
        if (argumentName == method->arguments[i]->name)
            for (size_t c = 0; c < method->arguments[i]->choice_count; ++c)
                std::puts(method->arguments[i]->choices[c]);
    return 0;
}

}  // namespace

int main(int count, char** words) {
    if (count == 4 && std::string(words[1]) == "choices") return listChoices(words[2], words[3]);
    if (count == 2 && std::string(words[1]) == "list") return list();
    if (count < 3) fail("expected a size and a method");
    Judge judge(words[1], words[2]);
    std::ifstream secondClip;
    for (int i = 3; i < count; ++i)
        if (std::string(words[i]) == "--with" && i + 1 < count)
            secondClip.open(words[++i], std::ios::binary);
        else
            judge.give(words[i]);
    Frame frame(judge.frameBytes()), second(judge.frameBytes());
    while (std::cin.read(frame.data(), std::streamsize(frame.size()))) {
        if (secondClip.is_open() && !secondClip.read(second.data(), std::streamsize(second.size())))
            fail("the second clip is shorter");
        judge.judge(frame, second);
        std::cout.write(frame.data(), std::streamsize(frame.size()));
    }
    return std::cout.flush() ? 0 : 2;
}
