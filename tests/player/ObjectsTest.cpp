#include <gtest/gtest.h>

#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/host/Objects.h"

/// Strings that know where their characters are, and property lists that know where their keys are.
namespace krl::player {
namespace {

TEST(StringObjects, FindCharactersBeyondAscii) {
    StringObject text("");
    std::vector<size_t> begins;
    for (int i = 0; i < 500; ++i) {
        begins.push_back(text.text.size());
        text.append(i % 3 == 0 ? "\xC3\xA4" : i % 7 == 0 ? "\xE2\x82\xAC" : "x");
        if (i % 50 == 0) {
            EXPECT_EQ(text.length(), begins.size()) << "what is appended later is counted too";
        }
    }
    for (size_t i = 0; i < begins.size(); ++i) EXPECT_EQ(text.beginOfChar(i), begins[i]) << i;
    EXPECT_EQ(text.beginOfChar(500), text.text.size());
    EXPECT_EQ(text.length(), 500u);
}

TEST(StringObjects, PlainTextHasOneByteForEachCharacter) {
    StringObject text("abc");
    EXPECT_EQ(text.length(), 3u);
    EXPECT_EQ(text.beginOfChar(2), 2u);
    text.append("\xC3\xA4z");
    EXPECT_EQ(text.length(), 5u);
    EXPECT_EQ(text.beginOfChar(4), 5u);
}

TEST(HeapGrowth, LeavesRoomForTheOldAndTheNewObject) {
    Heap heap(10000);
    EXPECT_EQ(heap.grown("string", 3000, 3001), 6000u) << "twice as much";
    EXPECT_EQ(heap.grown("string", 3000, 9000), 9000u);
    EXPECT_EQ(heap.grown("string", 6000, 6000), 8000u)
        << "half of what is left if twice as much does not fit";
    const Value held = heap.string(std::string(4000, 'x'));
    EXPECT_THROW(heap.grown("string", 6000, 6001), HostError);
    heap.limitEachTo(5000);
    EXPECT_EQ(heap.grown("string", 3000, 3001), 5000u);
    EXPECT_THROW(heap.grown("string", 4000, 5001), HostError);
}

class Keys : public testing::Test {
protected:
    void add(Value key, int32_t value) { list().entries.push_back({std::move(key), Value::integer(value)}); }
    int32_t at(const Value& key) {
        const auto* entry = findEntry(symbols, list(), key);
        return entry ? entry->value.integer() : -1;
    }
    PropertyListObject& list() { return *made.as<PropertyListObject>(); }

    SymbolTable symbols;
    Heap heap{1 << 24};
    Value made = heap.make<PropertyListObject>();
};

TEST_F(Keys, AreFoundAmongMany) {
    for (int i = 0; i < 100; ++i) add(heap.string("key" + std::to_string(i)), i);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(at(heap.string("key" + std::to_string(i))), i);
    EXPECT_EQ(at(heap.string("KEY5")), -1) << "strings respect case";
    EXPECT_EQ(at(Value::symbol(symbols.symbol("KEY5"))), 5) << "symbols do not";
    EXPECT_EQ(at(Value::integer(5)), -1);
    add(heap.string("key5"), 500);
    EXPECT_EQ(at(heap.string("key5")), 5) << "the first of several";
}

TEST_F(Keys, AreFoundAfterOthersWereRemoved) {
    for (int i = 0; i < 50; ++i) add(Value::symbol(symbols.symbol("k" + std::to_string(i))), i);
    EXPECT_EQ(at(Value::symbol(symbols.symbol("k49"))), 49);
    list().reordered();
    list().entries.erase(list().entries.begin());
    EXPECT_EQ(at(Value::symbol(symbols.symbol("k0"))), -1);
    for (int i = 1; i < 50; ++i) EXPECT_EQ(at(Value::symbol(symbols.symbol("k" + std::to_string(i)))), i);
    EXPECT_EQ(at(heap.string("K7")), 7);
}

}  // namespace
}  // namespace krl::player
