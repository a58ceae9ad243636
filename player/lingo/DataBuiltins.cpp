#include <algorithm>
#include <ctime>

#include "player/host/HostError.h"
#include "player/lingo/Runtime.h"

/// Dates and byte arrays.
namespace krl::player {

namespace {

int32_t twoDigits(const std::string& text, size_t from) {
    return (text[from] - '0') * 10 + (text[from + 1] - '0');
}

Value systemDate(Runtime& runtime, const Value&) {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
#if defined(_WIN32)
    parts = *std::localtime(&now);
#else
    localtime_r(&now, &parts);
#endif
    return runtime.heap.make<DateObject>(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                                         (parts.tm_hour * 60 + parts.tm_min) * 60 + parts.tm_sec);
}

/// `date(year, month, day)`, or from a text or number `yyyymmdd`.
Value date(Runtime& runtime, const Arguments& arguments) {
    if (arguments.count() == 3)
        return runtime.heap.make<DateObject>(arguments.integer(0), arguments.integer(1), arguments.integer(2),
                                             0);
    if (arguments.count() == 0) return systemDate(runtime, Value());
    const std::string text = arguments.count() == 1 ? runtime.plain(arguments[0]) : "";
    if (text.size() != 8 || text.find_first_not_of("0123456789") != std::string::npos)
        arguments.mismatch(0, "a year, a month and a day, or a text such as 20240131");
    return runtime.heap.make<DateObject>(twoDigits(text, 0) * 100 + twoDigits(text, 2), twoDigits(text, 4),
                                         twoDigits(text, 6), 0);
}

template <int32_t DateObject::*Field>
Value datePart(Runtime&, const Value& object) {
    return Value::integer(object.as<DateObject>()->*Field);
}

template <int32_t DateObject::*Field>
void setDatePart(Runtime&, const Value& object, const Value& value) {
    if (!value.isInteger()) throw HostError("expected an integer for a date, not " + kindName(value.kind()));
    object.as<DateObject>()->*Field = value.integer();
}

/// `bytearray(length, value)`, or the bytes of a text.
Value byteArray(Runtime& runtime, const Arguments& arguments) {
    if (const auto* text = arguments[0].as<StringObject>())
        return runtime.heap.make<ByteArrayObject>(std::vector<uint8_t>(text->text.begin(), text->text.end()));
    const int32_t length = arguments.has(0) ? arguments.integer(0) : 0;
    if (length < 0)
        throw HostError("byteArray: expected a length of at least 0, not " + std::to_string(length));
    runtime.heap.mustHold(static_cast<uint64_t>(length));
    const auto value = static_cast<uint8_t>(arguments.has(1) ? arguments.integer(1) : 0);
    return runtime.heap.make<ByteArrayObject>(std::vector<uint8_t>(static_cast<size_t>(length), value));
}

void write(Runtime& runtime, ByteArrayObject& bytes, const uint8_t* from, size_t count) {
    runtime.heap.mustHold(count);
    if (bytes.position + count > bytes.content.size()) bytes.content.resize(bytes.position + count);
    std::copy_n(from, count, bytes.content.begin() + static_cast<ptrdiff_t>(bytes.position));
    bytes.position += count;
    runtime.heap.recount(bytes);
}

template <size_t Bytes>
Value writeInteger(Runtime& runtime, const Arguments& arguments) {
    uint8_t packed[Bytes];
    for (size_t i = 0; i < Bytes; ++i)
        packed[i] = static_cast<uint8_t>(static_cast<uint32_t>(arguments.integer(1)) >> (8 * i));
    write(runtime, arguments.object<ByteArrayObject>(0), packed, Bytes);
    return Value();
}

/// Little-endian, with its sign.
template <size_t Bytes>
Value readInteger(Runtime&, const Arguments& arguments) {
    auto& bytes = arguments.object<ByteArrayObject>(0);
    if (bytes.position + Bytes > bytes.content.size())
        throw HostError(std::string(arguments.function()) + ": the byte array ends before");
    uint32_t word = 0;
    for (size_t i = 0; i < Bytes; ++i) word |= uint32_t{bytes.content[bytes.position++]} << (8 * i);
    constexpr int kSpare = 32 - 8 * static_cast<int>(Bytes);
    return Value::integer(static_cast<int32_t>(word << kSpare) >> kSpare);
}

Value writeText(Runtime& runtime, const Arguments& arguments) {
    const std::string& text = arguments.text(1);
    write(runtime, arguments.object<ByteArrayObject>(0), reinterpret_cast<const uint8_t*>(text.data()),
          text.size());
    return Value();
}

Value readText(Runtime& runtime, const Arguments& arguments) {
    auto& bytes = arguments.object<ByteArrayObject>(0);
    const size_t left = bytes.content.size() - std::min(bytes.position, bytes.content.size());
    const size_t count = std::min(left, static_cast<size_t>(std::max(arguments.integer(1), 0)));
    const auto* from = reinterpret_cast<const char*>(bytes.content.data()) + bytes.position;
    bytes.position += count;
    return runtime.text(std::string(from, count));
}

constexpr Builtin kBuiltins[] = {
    {"date", 0, 3, date},
    {"byteArray", 0, 2, byteArray},
    {"writeInt8", 2, 2, writeInteger<1>},
    {"writeInt16", 2, 2, writeInteger<2>},
    {"writeInt32", 2, 2, writeInteger<4>},
    {"readInt8", 1, 1, readInteger<1>},
    {"readInt16", 1, 1, readInteger<2>},
    {"readInt32", 1, 1, readInteger<4>},
    {"writeRawString", 2, 2, writeText},
    {"readRawString", 2, 2, readText},
};

Value byteCount(Runtime&, const Value& object) {
    return Value::integer(static_cast<int32_t>(object.as<ByteArrayObject>()->content.size()));
}

Value position(Runtime&, const Value& object) {
    return Value::integer(static_cast<int32_t>(object.as<ByteArrayObject>()->position) + 1);
}

void setPosition(Runtime&, const Value& object, const Value& value) {
    auto& bytes = *object.as<ByteArrayObject>();
    const bool fits = value.isInteger() && value.integer() >= 1 &&
                      static_cast<size_t>(value.integer()) <= bytes.content.size() + 1;
    if (!fits)
        throw HostError("expected a position from 1 to " + std::to_string(bytes.content.size() + 1) +
                        " of the byte array");
    bytes.position = static_cast<size_t>(value.integer() - 1);
}

constexpr PropertyEntry kProperties[] = {
    {Kind::Void, "systemDate", systemDate, nullptr},
    {Kind::Date, "year", datePart<&DateObject::year>, setDatePart<&DateObject::year>},
    {Kind::Date, "month", datePart<&DateObject::month>, setDatePart<&DateObject::month>},
    {Kind::Date, "day", datePart<&DateObject::day>, setDatePart<&DateObject::day>},
    {Kind::Date, "seconds", datePart<&DateObject::seconds>, setDatePart<&DateObject::seconds>},
    {Kind::ByteArray, "length", byteCount, nullptr},
    {Kind::ByteArray, "position", position, setPosition},
};

}  // namespace

std::span<const Builtin> dataBuiltins() { return kBuiltins; }
std::span<const PropertyEntry> dataProperties() { return kProperties; }

}  // namespace krl::player
