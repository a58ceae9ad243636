#include "Stage.h"

#include <cstring>
#include <thread>
#include <utility>

#include "catalogue/ExampleCall.h"
#include "host/MethodRegistry.h"

namespace krl::bench {

using player::Value;

Stage::Stage(player::PlugInLibrary plugIn, Size size, bool oneBand)
    : xtra_(host_, std::move(plugIn)),
      interpreter_(host_, xtra_, options_),
      clean_(landscape(size.width, size.height)),
      picture_(host_.heap.make<player::ImageObject>(clean_)),
      instance_(xtra_.newInstance()) {
    send("krlImageCreateLookupTables", Value::symbol(host_.symbols.symbol(oneBand ? "st" : "mt")));
    send("krlImageLoad", picture_);
    beside_.keepScratch(false);  // as in a plug-in
    beside_.load(bytes(), infoOf(clean_));
    beside_.setThreadCount(oneBand ? 1 : int32_t(std::thread::hardware_concurrency()));
}

Stage::~Stage() {
    send("krlImageQuit", Value());
    picture_ = instance_ = Value();
    interpreter_.close();
}

std::vector<Value> Stage::examples(const Method& method) {
    const ExampleSetting setting{clean_.width, clean_.height, {}};
    std::vector<Value> values;
    for (const Argument& argument : method.arguments())
        values.push_back(argument.kind == ArgumentKind::SecondImage
                             ? host_.heap.make<player::ImageObject>(clean_)
                             : interpreter_.evaluateText("example", exampleText(argument, setting)));
    return values;
}

void Stage::restore() { std::memcpy(bytes(), clean_.pixels.data(), size_t(pixelCount()) * sizeof(Pixel)); }

void Stage::call(const Method& method, const std::vector<Value>& arguments) {
    xtra_.call(instance_, host::selectorOf(method), arguments);
}

double Stage::timed(const Method& method, const std::vector<Value>& arguments) {
    restore();
    return milliseconds(bands(), [&] { call(method, arguments); });
}

double Stage::timedPass() {
    return milliseconds(bands(), [&] { mustRun(readAndWrite(beside_)); });
}

void Stage::send(const char* name, const Value& argument) {
    xtra_.call(instance_, xtra_.selector(host_.symbols.identifier(name)), {&argument, 1});
}

uint8_t* Stage::bytes() {
    return reinterpret_cast<uint8_t*>(picture_.as<player::ImageObject>()->bitmap.pixels.data());
}

}  // namespace krl::bench
