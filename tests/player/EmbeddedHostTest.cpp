#include <gtest/gtest.h>

#include <algorithm>

#include "host/HostInterfaces.h"
#include "player/host/EmbeddedHost.h"
#include "player/host/HostError.h"
#include "player/host/Objects.h"
#include "player/host/Xtra.h"

namespace krl::player {
namespace {

using namespace host;

/// A host and its services, obtained as a plug-in obtains them.
class EmbeddedHostTest : public testing::Test {
protected:
    HostInterface* service(const Identifier& id) {
        void* found = nullptr;
        EXPECT_EQ(unknown::QueryInterface::call(embedded.provider(), &id, &found), kHostOk);
        asked.push_back(static_cast<HostInterface*>(found));
        return asked.back();
    }
    void TearDown() override {
        for (HostInterface* each : asked) unknown::Release::call(each);
        EXPECT_EQ(embedded.references(), 0);
    }

    std::vector<HostInterface*> asked;
    EmbeddedHost embedded{uint64_t(64) << 20};
};

TEST_F(EmbeddedHostTest, OffersEveryServiceAndCountsReferences) {
    for (const Identifier& id :
         {ids::kServiceA, ids::kAppInfo, ids::kServiceB, ids::kValues, ids::kServiceC, ids::kUtils,
          ids::kLists, ids::kServiceD, ids::kPlayerSource, ids::kServiceE, ids::kImages, ids::kColours})
        EXPECT_NE(service(id), nullptr);
    EXPECT_EQ(embedded.references(), 12);
    void* none = &none;
    EXPECT_NE(unknown::QueryInterface::call(embedded.provider(), &ids::kScriptClass, &none), kHostOk);
    EXPECT_EQ(none, nullptr);
}

TEST_F(EmbeddedHostTest, SymbolsFoldCaseAndKeepTheFirstSpelling) {
    HostInterface* conversions = service(ids::kValues);
    SymbolId first = -1, second = -1, other = -1;
    values::InternSymbol::call(conversions, "RGB", &first);
    values::InternSymbol::call(conversions, "rgb", &second);
    values::InternSymbol::call(conversions, "RGBA", &other);
    EXPECT_EQ(first, second);
    EXPECT_NE(first, other);
    EXPECT_EQ(embedded.symbols.spelling(first), "RGB");
    ScriptValue value;
    EXPECT_NE(values::SymbolToValue::call(conversions, 12345, &value), kHostOk);
}

TEST_F(EmbeddedHostTest, ConvertsAnIntegerToAFloatAndNothingElse) {
    HostInterface* conversions = service(ids::kValues);
    const Value whole = Value::integer(7), real = embedded.heap.number(2.5), text = embedded.heap.string("7");
    double number = 0;
    EXPECT_EQ(values::ValueToFloat::call(conversions, &whole.words(), &number), kHostOk);
    EXPECT_EQ(number, 7.0);
    EXPECT_EQ(values::ValueToFloat::call(conversions, &real.words(), &number), kHostOk);
    EXPECT_EQ(number, 2.5);
    int32_t integer = 0;
    EXPECT_EQ(values::ValueToInteger::call(conversions, &whole.words(), &integer), kHostOk);
    EXPECT_EQ(integer, 7);
    const ScriptValue missing;
    for (const ScriptValue* wrong : {&real.words(), &text.words(), &missing})
        EXPECT_NE(values::ValueToInteger::call(conversions, wrong, &integer), kHostOk);
    for (const ScriptValue* wrong : {&text.words(), &missing})
        EXPECT_NE(values::ValueToFloat::call(conversions, wrong, &number), kHostOk);
    SymbolId symbol = 0;
    EXPECT_NE(values::ValueToSymbol::call(conversions, &text.words(), &symbol), kHostOk);
}

TEST_F(EmbeddedHostTest, PointsHaveTheirRowFirst) {
    HostInterface* conversions = service(ids::kValues);
    const Value point =
        embedded.heap.make<PointObject>(std::array<Value, 2>{Value::integer(3), Value::integer(8)});
    krl::Point read;
    EXPECT_EQ(values::ValueToPoint::call(conversions, &point.words(), &read), kHostOk);
    EXPECT_EQ(read.x, 3);
    EXPECT_EQ(read.y, 8);
    const Value broken =
        embedded.heap.make<PointObject>(std::array<Value, 2>{Value::integer(3), embedded.heap.number(8)});
    EXPECT_NE(values::ValueToPoint::call(conversions, &broken.words(), &read), kHostOk);
}

TEST_F(EmbeddedHostTest, ColoursConvertBothWays) {
    HostInterface* conversions = service(ids::kColours);
    const ColourRecord written{10, 20, 30, 1};
    ScriptValue value;
    EXPECT_EQ(colours::ColorToValue::call(conversions, &written, &value), kHostOk);
    ColourRecord read;
    EXPECT_EQ(colours::ValueToColor::call(conversions, &value, &read), kHostOk);
    EXPECT_EQ(read.red, 10);
    EXPECT_EQ(read.green, 20);
    EXPECT_EQ(read.blue, 30);
    EXPECT_EQ(read.kind, 1);
    const ScriptValue number = Value::integer(5).release();
    EXPECT_NE(colours::ValueToColor::call(conversions, &number, &read), kHostOk);
}

TEST_F(EmbeddedHostTest, AStaleHandleIsRefusedEverywhere) {
    HostInterface* conversions = service(ids::kValues);
    HostInterface* listService = service(ids::kLists);
    HostInterface* imageService = service(ids::kImages);
    ScriptValue list, text, image;
    lists::NewPropertyList::call(listService, &list);
    values::StringToValue::call(conversions, "gone", &text);
    images::CreateImage::call(imageService, 2, 2, 32, 8, 0, &image);
    for (const ScriptValue& gone : {list, text, image}) {
        ScriptValue given = gone;
        EXPECT_EQ(values::ReleaseValue::call(conversions, &given), kHostOk);
        given = gone;
        EXPECT_NE(values::ReleaseValue::call(conversions, &given), kHostOk) << "released twice";
    }
    EXPECT_EQ(embedded.heap.living(), 0);
    // Other values now use their slots.
    const Value successors[] = {embedded.heap.string("a"), embedded.heap.number(1),
                                embedded.heap.make<ListObject>()};
    const ScriptValue key = Value::integer(1).release();
    ScriptValue out;
    ImageLock lock;
    ImageInfo info;
    EXPECT_EQ(lists::CountElements::call(listService, &list), -1);
    EXPECT_NE(lists::AppendProperty::call(listService, &list, &key, &key), kHostOk);
    EXPECT_NE(lists::GetElementByIndex::call(listService, &list, 1, &out), kHostOk);
    EXPECT_NE(lists::GetElementByKey::call(listService, &list, &key, &out), kHostOk);
    EXPECT_NE(lists::GetPropertyByIndex::call(listService, &list, 1, &out), kHostOk);
    EXPECT_NE(images::LockImage::call(imageService, &image, &lock), kHostOk);
    EXPECT_NE(images::UnlockImage::call(imageService, &image), kHostOk);
    EXPECT_NE(images::QueryImage::call(imageService, &image, &info), kHostOk);
    EXPECT_EQ(info.height, 0);
    const Value holder = embedded.heap.make<ListObject>();
    EXPECT_NE(lists::AppendToList::call(listService, &holder.words(), &text), kHostOk);
}

TEST_F(EmbeddedHostTest, InvalidHandlesAreRefused) {
    HostInterface* conversions = service(ids::kValues);
    double number = 0;
    for (int32_t kind = 0; kind < 256; ++kind)
        for (const int32_t payload : {0, 1, -1, INT32_MAX, INT32_MIN}) {
            ScriptValue value{{kind, payload}};
            const bool plain = kindOf(value) < Kind::Float;
            EXPECT_EQ(values::ValueToFloat::call(conversions, &value, &number) == kHostOk,
                      kindOf(value) == Kind::Integer);
            EXPECT_EQ(values::ReleaseValue::call(conversions, &value) == kHostOk, plain);
        }
}

TEST_F(EmbeddedHostTest, ListsKeepReferencesElementsCarryOneAndKeysNone) {
    HostInterface* conversions = service(ids::kValues);
    HostInterface* listService = service(ids::kLists);
    ScriptValue list, key, text;
    lists::NewPropertyList::call(listService, &list);
    values::StringToValue::call(conversions, "key", &key);
    values::StringToValue::call(conversions, "text", &text);
    EXPECT_EQ(lists::AppendProperty::call(listService, &list, &key, &text), kHostOk);
    const ScriptValue sameText = text;
    values::ReleaseValue::call(conversions, &key);
    values::ReleaseValue::call(conversions, &text);
    EXPECT_EQ(lists::CountElements::call(listService, &list), 1);
    EXPECT_EQ(embedded.heap.living(), 3);

    ScriptValue element, borrowed;
    EXPECT_EQ(lists::GetElementByIndex::call(listService, &list, 1, &element), kHostOk);
    EXPECT_EQ(element.words[1], sameText.words[1]);
    EXPECT_EQ(lists::GetPropertyByIndex::call(listService, &list, 1, &borrowed), kHostOk);
    ScriptValue listCopy = list;
    values::ReleaseValue::call(conversions, &listCopy);
    EXPECT_EQ(embedded.heap.living(), 1) << "the element outlives the list, the key does not";
    EXPECT_NE(values::ReleaseValue::call(conversions, &borrowed), kHostOk);
    EXPECT_EQ(values::ReleaseValue::call(conversions, &element), kHostOk);
    EXPECT_EQ(embedded.heap.living(), 0);
}

TEST_F(EmbeddedHostTest, ElementsBeyondTheListAreRefused) {
    HostInterface* listService = service(ids::kLists);
    const Value list = embedded.heap.make<ListObject>();
    list.as<ListObject>()->items.push_back(Value::integer(4));
    ScriptValue element;
    for (const int32_t index : {0, 2, -1, INT32_MIN, INT32_MAX})
        EXPECT_NE(lists::GetElementByIndex::call(listService, &list.words(), index, &element), kHostOk);
    EXPECT_EQ(lists::GetElementByIndex::call(listService, &list.words(), 1, &element), kHostOk);
    EXPECT_EQ(element.words[1], 4);
    const ScriptValue number = Value::integer(4).release();
    EXPECT_LT(lists::CountElements::call(listService, &number), 0);
}

TEST_F(EmbeddedHostTest, ALockKeepsAnImageAlive) {
    HostInterface* conversions = service(ids::kValues);
    HostInterface* imageService = service(ids::kImages);
    ScriptValue image;
    ASSERT_EQ(images::CreateImage::call(imageService, 3, 2, 32, 8, 0, &image), kHostOk);
    ImageInfo info;
    ASSERT_EQ(images::QueryImage::call(imageService, &image, &info), kHostOk);
    EXPECT_EQ(info.width, 3);
    EXPECT_EQ(info.height, 2);
    EXPECT_EQ(info.rowBytes, 12);
    ImageLock lock;
    ASSERT_EQ(images::LockImage::call(imageService, &image, &lock), kHostOk);
    EXPECT_EQ(embedded.locks(), 1);
    ScriptValue given = image;
    values::ReleaseValue::call(conversions, &given);
    EXPECT_EQ(embedded.heap.living(), 1);
    lock.pixels[23] = 9;  // the last byte is still valid
    EXPECT_EQ(images::UnlockImage::call(imageService, &image), kHostOk);
    EXPECT_EQ(embedded.heap.living(), 0);
    EXPECT_EQ(embedded.locks(), 0);
    EXPECT_NE(images::UnlockImage::call(imageService, &image), kHostOk);
}

TEST_F(EmbeddedHostTest, UnlockingAnUnlockedImageReleasesNoReference) {
    HostInterface* imageService = service(ids::kImages);
    const Value image = makeImage(embedded.heap, 1, 1);
    EXPECT_NE(images::UnlockImage::call(imageService, &image.words()), kHostOk);
    EXPECT_EQ(embedded.heap.living(), 1);
}

TEST_F(EmbeddedHostTest, ImagesOfFewerBitsAreLockedAsTheirOwnRows) {
    HostInterface* imageService = service(ids::kImages);
    const struct {
        int32_t depth, rowBytes;
        Pixel before;
        std::vector<uint8_t> secondRow, written;
        Pixel after;
    } cases[] = {
        {1, 4, {0, 0, 0, 255}, {0x40}, {0x20}, {255, 255, 255, 255}},
        {2, 4, {0, 0, 0, 255}, {0x30}, {0x10}, {170, 170, 170, 255}},
        {4, 4, {0x06, 0x08, 0xDD, 255}, {0x03, 0}, {0x06, 0}, {0xD4, 0, 0, 255}},
        {8, 4, {0, 255, 255, 255}, {0, 5, 0}, {0, 215, 0}, {0, 0, 0xEE, 255}},
        {16,
         8,
         {32, 64, 80, 255},
         {255, 127, 4, 41, 255, 127},
         {255, 127, 31, 0, 255, 127},
         {255, 0, 0, 255}},
        {24,
         12,
         {32, 64, 80, 255},
         {255, 255, 255, 32, 64, 80, 255, 255, 255},
         {255, 255, 255, 1, 2, 3},
         {1, 2, 3, 255}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.depth);
        const Value image = makeImage(embedded.heap, 3, 2, each.depth);
        Bitmap& bitmap = image.as<ImageObject>()->bitmap;
        bitmap.row(1)[1] = each.before;
        bitmap.row(0)[2] = {33, 65, 81, 255};
        ImageInfo info;
        EXPECT_EQ(images::QueryImage::call(imageService, &image.words(), &info), kHostOk);
        EXPECT_EQ(info.rowBytes, each.rowBytes);
        ImageLock lock;
        ASSERT_EQ(images::LockImage::call(imageService, &image.words(), &lock), kHostOk);
        uint8_t* row = lock.pixels + info.rowBytes;
        EXPECT_EQ(std::vector(row, row + each.secondRow.size()), each.secondRow);
        ASSERT_EQ(images::LockImage::call(imageService, &image.words(), &lock), kHostOk);
        std::copy(each.written.begin(), each.written.end(), lock.pixels + info.rowBytes);
        EXPECT_EQ(images::UnlockImage::call(imageService, &image.words()), kHostOk);
        EXPECT_EQ(images::UnlockImage::call(imageService, &image.words()), kHostOk);
        EXPECT_EQ(bitmap.row(1)[1], each.after);
        EXPECT_EQ(bitmap.row(0)[2], (Pixel{33, 65, 81, 255})) << "only what was written changes";
    }
}

TEST_F(EmbeddedHostTest, ImagesOfInvalidSizeAreRefused) {
    HostInterface* imageService = service(ids::kImages);
    const std::pair<int32_t, int32_t> sizes[] = {
        {0, 5}, {5, 0}, {-1, -1}, {INT32_MAX, INT32_MAX}, {1 << 15, (1 << 14) + 1}, {5000, 5000}};
    for (const auto& [width, height] : sizes) {
        ScriptValue image;
        EXPECT_NE(images::CreateImage::call(imageService, width, height, 32, 8, 0, &image), kHostOk) << width;
        EXPECT_EQ(kindOf(image), Kind::Void);
    }
    EXPECT_EQ(embedded.heap.living(), 0);
}

TEST_F(EmbeddedHostTest, PrintsFormattedMessages) {
    std::string printed;
    embedded.onMessage = [&](std::string_view text) { printed += text; };
    utils::PrintMessage::call(service(ids::kUtils), "Time taken (ms) = %d\n", 42);
    EXPECT_EQ(printed, "Time taken (ms) = 42\n");
}

TEST_F(EmbeddedHostTest, CountsBlocks) {
    void* block = allocator::Allocate::call(embedded.allocator(), 100);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(static_cast<char*>(block)[99], 0);
    EXPECT_EQ(embedded.blocks(), 1);
    allocator::Free::call(embedded.allocator(), block);
    EXPECT_EQ(embedded.blocks(), 0);
}

TEST(Heap, FreesUnreachableCycles) {
    Heap heap(1 << 20);
    {
        const Value a = heap.make<ListObject>(), b = heap.make<ListObject>();
        a.as<ListObject>()->items.push_back(b);
        b.as<ListObject>()->items.push_back(a);
        heap.freeCycles();
        EXPECT_EQ(heap.living(), 2) << "still held from outside";
    }
    EXPECT_EQ(heap.living(), 2);
    heap.freeCycles();
    EXPECT_EQ(heap.living(), 0);
}

TEST(Heap, FreesDeepListsWithoutRecursion) {
    Heap heap(uint64_t(1) << 30);
    Value list;
    for (int i = 0; i < 200000; ++i) {
        Value outer = heap.make<ListObject>();
        outer.as<ListObject>()->items.push_back(std::move(list));
        list = std::move(outer);
    }
    list = Value();
    EXPECT_EQ(heap.living(), 0);
}

TEST(Heap, RefusesMoreThanItsLimit) {
    Heap heap(1 << 20);
    EXPECT_THROW(heap.string(std::string(2 << 20, 'x')), HostError);
    const Value list = heap.make<ListObject>();
    EXPECT_THROW(
        {
            for (;;) {
                list.as<ListObject>()->items.push_back(heap.number(1));
                heap.recount(*list.as<ListObject>());
            }
        },
        HostError);
}

TEST(Xtra, ReadsItsMethodsFromTheRegisteredTable) {
    EmbeddedHost host(1 << 20);
    const Xtra xtra(host, builtInPlugIn());
    EXPECT_EQ(xtra.name(), "KRLImageXtra");
    EXPECT_EQ(xtra.methods().size(), 113u);
    EXPECT_EQ(xtra.selector(host.symbols.identifier("KRLIMAGEQUIT")), 6);
    EXPECT_LT(xtra.selector(host.symbols.identifier("quit")), 0);
    const MethodSignature& vignette =
        xtra.methods()[static_cast<size_t>(xtra.selector(host.symbols.identifier("krlImageVignette")))];
    EXPECT_EQ(vignette.name, "krlImageVignette");
    EXPECT_EQ(vignette.arguments, 10u);
    EXPECT_EQ(host.blocks(), 0);
    EXPECT_EQ(host.references(), 0);
}

TEST(Xtra, RefusesAnUnknownHost) {
    for (const auto& [name, version] : {std::pair("Director", "5.5"), std::pair("Conductor", "10.1")}) {
        EmbeddedHost host(1 << 20);
        host.applicationName = name;
        host.applicationVersion = version;
        EXPECT_THROW(Xtra(host, builtInPlugIn()), HostError) << name << ' ' << version;
        EXPECT_EQ(host.blocks(), 0);
        EXPECT_EQ(host.references(), 0);
    }
}

TEST(Xtra, InstancesLiveAsLongAsTheirValues) {
    EmbeddedHost host(1 << 20);
    Xtra xtra(host, builtInPlugIn());
    {
        const Value first = xtra.newInstance(), second = xtra.newInstance();
        EXPECT_EQ(xtra.instances(), 2);
        EXPECT_EQ(host.references(), 24);
        const int32_t create = xtra.selector(host.symbols.identifier("krlImageCreateLookupTables"));
        const Value mode = Value::symbol(host.symbols.symbol("st"));
        const Value answer = xtra.call(first, create, {&mode, 1});
        EXPECT_TRUE(answer.is(Kind::PropertyList));
    }
    EXPECT_EQ(xtra.instances(), 0);
    EXPECT_EQ(host.references(), 0);
    EXPECT_EQ(host.blocks(), 0);
    EXPECT_EQ(host.heap.living(), 0);
}

/// The instance is destroyed again, which takes the same lock as creating it.
TEST(Xtra, AnInstanceBeyondTheHeapLimitIsRefused) {
    EmbeddedHost host(1 << 20);
    Xtra xtra(host, builtInPlugIn());
    {
        const Value filling = host.heap.make<ListObject>();
        auto& items = filling.as<ListObject>()->items;
        EXPECT_THROW(
            {
                for (;;) {
                    items.push_back(xtra.newInstance());
                    host.heap.recount(*filling.as<ListObject>());
                }
            },
            HostError);
        EXPECT_GT(xtra.instances(), 100);
        EXPECT_THROW(
            {
                for (;;) items.push_back(host.heap.make<ListObject>());
            },
            HostError);
        const int64_t instances = xtra.instances(), living = host.heap.living();
        EXPECT_THROW(xtra.newInstance(), HostError);
        EXPECT_EQ(xtra.instances(), instances);
        EXPECT_EQ(host.heap.living(), living);
    }
    EXPECT_EQ(xtra.instances(), 0);
    EXPECT_EQ(host.blocks(), 0);
}

TEST(Xtra, MissingArgumentsAreVoid) {
    EmbeddedHost host(1 << 20);
    Xtra xtra(host, builtInPlugIn());
    const Value instance = xtra.newInstance();
    // Every method except the host's `new`, without arguments.
    for (int32_t selector = 1; selector <= 112; ++selector) {
        const Value answer = xtra.call(instance, selector, {});
        EXPECT_TRUE(answer.is(Kind::PropertyList) || answer.is(Kind::Void) || answer.is(Kind::List))
            << selector;
    }
}

TEST(PlugInLibrary, ReportsFilesThatCannotBeLoaded) {
    EXPECT_THROW(loadPlugIn("no such file.so"), HostError);
    EXPECT_THROW(loadPlugIn(std::filesystem::path(KRL_SOURCE_DIR) / "CMakeLists.txt"), HostError);
}

}  // namespace
}  // namespace krl::player
