#pragma once

#include <string>
#include <vector>

#include "catalogue/Call.h"

/// Reading of property lists into structs, for bodies that walk lists of their own.
namespace krl {

/// A property of a list and the field of a `Record` that takes its value.
template <class Record>
struct Property {
    const char* key;
    CallCode (*store)(const Call& call, const ValueHandle& value, Record& record);
    const char* words;                ///< what failure texts call it
    const char* secondKey = nullptr;  ///< tried where there is nothing under `key`

    CallCode read(const Call& call, const ValueHandle& list, Record& record) const {
        HeldValue value(call.caller());
        CallCode code = call.elementUnder(list, key, value);
        if (code != kCallOk && secondKey) code = call.elementUnder(list, secondKey, value);
        return code != kCallOk ? code : store(call, *value, record);
    }
};

template <class Member>
struct MemberTypes;
template <class RecordType, class FieldType>
struct MemberTypes<FieldType RecordType::*> {
    using Record = RecordType;
    using Field = FieldType;
};

/// The property `key`, read as a `Given` into the field `member`. A field whose property cannot be read keeps
/// its value.
template <auto member, class Given = typename MemberTypes<decltype(member)>::Field>
constexpr auto property(const char* key, const char* words = nullptr) {
    using Types = MemberTypes<decltype(member)>;
    using Record = typename Types::Record;
    const auto store = [](const Call& call, const ValueHandle& value, Record& record) {
        Given given{};
        const CallCode code = call.read(value, given);
        if (code == kCallOk) record.*member = static_cast<typename Types::Field>(given);
        return code;
    };
    return Property<Record>{key, store, words ? words : key};
}

/// Properties in the order in which they are read, each with the text of its failure.
template <class Record>
class PropertyReader {
public:
    void add(const Property<Record>& property, std::string failureText) {
        entries_.push_back({property, std::move(failureText)});
    }

    /// Reads up to the first property that fails. Texts live as long as this reader.
    Outcome read(const Call& call, const ValueHandle& list, Record& record) const {
        for (const Entry& entry : entries_)
            if (CallCode code = entry.property.read(call, list, record))
                return failure(entry.failureText.c_str(), code);
        return succeeded();
    }

private:
    struct Entry {
        Property<Record> property;
        std::string failureText;
    };
    std::vector<Entry> entries_;
};

}  // namespace krl
