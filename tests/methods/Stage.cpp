#include "methods/Stage.h"

#include "core/Numbers.h"
#include "core/Random.h"
#include "host/MessageTable.h"
#include "host/MessageTableText.h"
#include "host/ScriptInstance.h"
#include "player/host/Compare.h"
#include "player/lingo/Interpreter.h"

namespace krl::test {

using player::Value;

std::string methodName(int32_t selector) {
    return host::methods()[static_cast<size_t>(selector - 1)]->name();
}

Stage::Stage(bool withEngine)
    : host_(uint64_t{1} << 31), xtra_(host_, player::builtInPlugIn()), instance_(xtra_.newInstance()) {
    if (withEngine) call("krlImageCreateLookupTables", {symbol("st")});
}

Stage::~Stage() = default;

ImageEngine* Stage::engine() const {
    auto* object =
        reinterpret_cast<host::InterfaceObject*>(instance_.as<player::XtraInstanceObject>()->script);
    return static_cast<host::ScriptInstance*>(object->owner)->engine;
}

void Stage::load(int32_t width, int32_t height, int32_t seed) {
    quit();
    picture_ = image(width, height, seed);
    call("krlImageLoad", {picture_});
}

void Stage::quit() {
    if (!picture_.isVoid()) call("krlImageQuit");
    picture_ = Value();
}

void Stage::setBands(int32_t bands) { engine()->setThreadCount(bands); }

const std::vector<Pixel>& Stage::pixels() const { return picture_.as<player::ImageObject>()->bitmap.pixels; }

Value Stage::image(int32_t width, int32_t height, int32_t seed) {
    player::Bitmap bitmap{width, height, std::vector<Pixel>(size_t(width) * size_t(height)), nullptr};
    Random random(seed);
    const auto byte = [&] { return uint8_t(random.next() >> 5); };
    for (Pixel& p : bitmap.pixels) p = {byte(), byte(), byte(), byte()};
    return host_.heap.make<player::ImageObject>(std::move(bitmap));
}

Value Stage::example(const Argument& argument) {
    const player::ImageObject* loaded = picture_.as<player::ImageObject>();
    const int32_t width = loaded ? loaded->bitmap.width : 1, height = loaded ? loaded->bitmap.height : 1;
    switch (argument.kind) {
        case ArgumentKind::Integer:
            return integer(truncate(argument.range.example));
        case ArgumentKind::Real:
            return real(argument.range.example);
        case ArgumentKind::Symbol:
            return symbol(argument.example);
        case ArgumentKind::Colour:
            return Value::colour(argument.colourExample);
        case ArgumentKind::Point:
            return host_.heap.make<player::PointObject>(
                std::array<Value, 2>{integer(truncate(argument.placeExample.x * width)),
                                     integer(truncate(argument.placeExample.y * height))});
        case ArgumentKind::ColourList: {
            Value list = host_.heap.make<player::PropertyListObject>();
            for (const ColourStop& stop : argument.stops)
                list.as<player::PropertyListObject>()->entries.push_back(
                    {integer(stop.percent), Value::colour(stop.colour)});
            return list;
        }
        case ArgumentKind::SecondImage:
            return image(width, height, 77);
        case ArgumentKind::Value:
            break;
    }
    return Value();
}

std::vector<Value> Stage::examples(const Method& method) {
    std::vector<Value> values;
    for (const Argument& argument : method.arguments()) values.push_back(example(argument));
    return values;
}

Value Stage::evaluate(const std::string& text) {
    return player::Interpreter(host_, xtra_, {}).evaluateText("example", text);
}

Answer Stage::call(const Method& method, const std::vector<Value>& arguments) {
    std::vector<host::ScriptValue> words = {instance_.words()};
    for (const Value& argument : arguments) words.push_back(argument.words());
    words.resize(1 + std::max(arguments.size(), method.arguments().size()));
    host::CallInfo info;
    info.selector = host::selectorOf(method);
    info.arguments = words.data();
    const host::HostStatus status = send(info);
    return read(status, Value::adopting(host_.heap, info.result));
}

host::HostStatus Stage::send(host::CallInfo& info) {
    return host::CallOperation::call(instance_.as<player::XtraInstanceObject>()->script, &info);
}

Answer Stage::call(const char* name, const std::vector<Value>& arguments) {
    return call(*host::findMethod(name), arguments);
}

Answer Stage::read(host::HostStatus status, Value result) {
    Answer answer{status, std::move(result), "", false};
    const auto* list = answer.result.as<player::PropertyListObject>();
    const auto* entry = list ? player::findEntry(host_.symbols, *list, symbol("error")) : nullptr;
    if (!entry) return answer;
    answer.reported = true;
    if (const auto* text = entry->value.as<player::StringObject>()) answer.error = text->text;
    return answer;
}

bool Stage::leavesNothing() {
    quit();
    call("krlImageDestroyLookupTables");
    instance_ = Value();
    return host_.heap.living() == 0 && host_.locks() == 0 && host_.blocks() == 0 && host_.references() == 0;
}

}  // namespace krl::test
