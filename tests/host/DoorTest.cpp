#include <gtest/gtest.h>

#include <new>

#include "host/BareHost.h"
#include "host/Door.h"
#include "host/MessageTable.h"
#include "host/MessageTableText.h"

namespace krl::host {
namespace {

using test::BareHost;

TEST(Exports, ReportBothClassesWithTheirBaseAndTheirInterface) {
    BareHost host;
    ClassInfoRecord* records = nullptr;
    ASSERT_EQ(DllGetClassInfo(host.memory(), &records), kHostOk);
    const Identifier expected[][2] = {{ids::kRegistrationClass, ids::kUnknown},
                                      {ids::kRegistrationClass, ids::kIMoaRegister},
                                      {ids::kScriptClass, ids::kUnknown},
                                      {ids::kScriptClass, ids::kIMoaMmXScript},
                                      {ids::kNone, ids::kNone}};
    const uint32_t interfaceVersions[] = {1, 0x1000040, 1, 0x1000040, 0};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(records[i].classId, expected[i][0]) << i;
        EXPECT_EQ(records[i].interfaceId, expected[i][1]) << i;
        EXPECT_EQ(records[i].classVersion, i < 4 ? 0x1000040u : 0u) << i;
        EXPECT_EQ(records[i].interfaceVersion, interfaceVersions[i]) << i;
    }
    allocator::Free::call(host.memory(), records);
    EXPECT_EQ(host.blocks, 0);
}

TEST(Exports, ReturnNullAndOutOfMemoryIfTheClassTableCannotBeAllocated) {
    BareHost host;
    host.blocksLeft = 0;
    ClassInfoRecord* records = reinterpret_cast<ClassInfoRecord*>(&host);
    EXPECT_EQ(DllGetClassInfo(host.memory(), &records), kHostOutOfMemory);
    EXPECT_EQ(records, nullptr);
}

TEST(Exports, ReportTheSizeAndFunctionsOfAnInstance) {
    int32_t bytes = 0;
    CreateInstanceFunction create = nullptr;
    DestroyInstanceFunction destroy = nullptr;
    ASSERT_EQ(DllGetClassForm(&ids::kScriptClass, &bytes, &create, &destroy), kHostOk);
    EXPECT_EQ(bytes, int32_t(sizeof(ScriptInstance)));
    EXPECT_NE(create, nullptr);
    EXPECT_NE(destroy, nullptr);
    ASSERT_EQ(DllGetClassForm(&ids::kRegistrationClass, &bytes, &create, &destroy), kHostOk);
    EXPECT_EQ(bytes, int32_t(sizeof(InstanceHead)));
    EXPECT_EQ(create(nullptr), kHostOk);
    EXPECT_EQ(DllGetClassForm(&ids::kValues, &bytes, &create, &destroy), kHostNoClass);
}

TEST(Exports, NeverReturnAClassObject) {
    void* object = nullptr;
    EXPECT_EQ(DllGetClassObject(&ids::kScriptClass, &ids::kIMoaMmXScript, &object), kHostNoClass);
}

TEST(Exports, RefuseAnInterfaceOfAnotherClass) {
    BareHost host;
    auto instance = host.record<InstanceHead>();
    void* object = nullptr;
    EXPECT_EQ(DllGetInterface(&instance, &ids::kRegistrationClass, &ids::kIMoaMmXScript, &object),
              kHostNoInterface);
    EXPECT_EQ(DllGetInterface(&instance, &ids::kScriptClass, &ids::kValues, &object), kHostNoInterface);
}

TEST(InterfaceObjects, HoldAReferenceToTheirOwnerForThemselvesAndForEachReference) {
    BareHost host;
    auto instance = host.record<InstanceHead>();
    void* made = nullptr;
    ASSERT_EQ(DllGetInterface(&instance, &ids::kRegistrationClass, &ids::kIMoaRegister, &made), kHostOk);
    auto* object = static_cast<HostInterface*>(made);
    EXPECT_EQ(host.references, 2);
    EXPECT_EQ(DllCanUnloadNow(), kHostCannotUnload);
    EXPECT_EQ(unknown::AddRef::call(object), 2u);
    EXPECT_EQ(host.references, 3);
    EXPECT_EQ(unknown::Release::call(object), 1u);
    EXPECT_EQ(unknown::Release::call(object), 0u);
    EXPECT_EQ(host.references, 0);
    EXPECT_EQ(host.blocks, 0);
    EXPECT_EQ(DllCanUnloadNow(), kHostOk);
}

TEST(InterfaceObjects, PassQueriesToTheirOwner) {
    BareHost host;
    auto instance = host.record<InstanceHead>();
    void* made = nullptr;
    DllGetInterface(&instance, &ids::kRegistrationClass, &ids::kIMoaRegister, &made);
    auto* object = static_cast<HostInterface*>(made);
    void* answer = nullptr;
    EXPECT_EQ(unknown::QueryInterface::call(object, &ids::kValues, &answer), kHostOk);
    EXPECT_EQ(host.asked.back(), "151A5780");
    unknown::Release::call(object);
}

TEST(InterfaceObjects, AreNullWithoutMemory) {
    BareHost host;
    host.blocksLeft = 0;
    auto instance = host.record<InstanceHead>();
    void* made = &host;
    EXPECT_EQ(DllGetInterface(&instance, &ids::kRegistrationClass, &ids::kIMoaRegister, &made),
              kHostOutOfMemory);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(host.references, 0);
    EXPECT_EQ(DllCanUnloadNow(), kHostOk);
}

/// How often the handler below was called.
int handlerCalls = 0;

/// The process's handler for exhausted memory, for the life of this object.
class NewHandler {
public:
    explicit NewHandler(std::new_handler handler) : before_(std::set_new_handler(handler)) {
        handlerCalls = 0;
    }
    ~NewHandler() { std::set_new_handler(before_); }
    NewHandler(const NewHandler&) = delete;
    NewHandler& operator=(const NewHandler&) = delete;

private:
    std::new_handler before_;
};

TEST(InterfaceObjects, AreNullWhenTheHandlerThrowsAnythingAtAll) {
    for (const std::new_handler handler : {+[] { throw std::bad_alloc(); }, +[] { throw 1; }}) {
        const NewHandler installed(handler);
        BareHost host;
        host.blocksLeft = 0;
        auto instance = host.record<InstanceHead>();
        void* made = &host;
        EXPECT_EQ(DllGetInterface(&instance, &ids::kRegistrationClass, &ids::kIMoaRegister, &made),
                  kHostOutOfMemory);
        EXPECT_EQ(made, nullptr);
        EXPECT_EQ(host.references, 0);
    }
}

TEST(InterfaceObjects, AskAgainForAsLongAsTheHandlerGoesOn) {
    const NewHandler installed(+[] {
        if (++handlerCalls == 3) throw std::bad_alloc();
    });
    BareHost host;
    host.blocksLeft = 0;
    auto instance = host.record<InstanceHead>();
    void* made = &host;
    EXPECT_EQ(DllGetInterface(&instance, &ids::kRegistrationClass, &ids::kIMoaRegister, &made),
              kHostOutOfMemory);
    EXPECT_EQ(handlerCalls, 3);
    EXPECT_EQ(made, nullptr);
}

/// Registers the plug-in with `host`, as a host does when it builds its registry.
HostStatus registerWith(BareHost& host) {
    auto instance = host.record<InstanceHead>();
    void* made = nullptr;
    const int grantedBefore = host.blocksLeft;
    host.blocksLeft = -1;
    EXPECT_EQ(DllGetInterface(&instance, &ids::kRegistrationClass, &ids::kIMoaRegister, &made), kHostOk);
    host.blocksLeft = grantedBefore;
    auto* object = static_cast<HostInterface*>(made);
    const HostStatus status = RegisterOperation::call(object, host.cache(), nullptr);
    unknown::Release::call(object);
    EXPECT_EQ(host.references, 0);
    EXPECT_EQ(host.blocks, 0);
    return status;
}

TEST(Registration, AcceptsVersionsByTheirFirstTwoCharacters) {
    const std::pair<const char*, HostStatus> cases[] = {
        {"5", kHostTooOld}, {"5.0", kHostTooOld}, {"5.5", kHostTooOld}, {"6.0", kHostOk},
        {"8.5", kHostOk},   {"10.1", kHostOk},    {"11.5", kHostOk},    {"", kHostTooOld},
    };
    for (const auto& [version, expected] : cases) {
        BareHost host;
        host.version = version;
        EXPECT_EQ(registerWith(host), expected) << version;
        EXPECT_EQ(host.entriesAdded, expected == kHostOk ? 2 : 0) << version;
    }
}

TEST(Registration, RefusesAnyOtherHostWhateverItsVersion) {
    for (const char* name : {"director", "Director ", "Directo", "Producer"}) {
        BareHost host;
        host.name = name;
        host.version = "99";
        EXPECT_EQ(registerWith(host), kHostNoInterface) << name;
        EXPECT_TRUE(host.entries.empty());
    }
}

TEST(Registration, RegistersTheLoadOptionsAndTheWholeMessageTable) {
    BareHost host;
    ASSERT_EQ(registerWith(host), kHostOk);
    EXPECT_EQ(host.entries["XtraLoadControlOptions"], "3/0/3");
    EXPECT_EQ(host.entries["msgTable"], "9/0/" + std::string(messageTable().head()) + messageTable().body());
    EXPECT_EQ(host.entries.size(), 2u);
}

TEST(Registration, ContinuesIfTheLoadOptionsHaveNoEntry) {
    BareHost host;
    host.failingEntry = &ids::kLoadControl;
    EXPECT_EQ(registerWith(host), kHostOk);
    EXPECT_EQ(host.entries.count("XtraLoadControlOptions"), 0u);
    EXPECT_EQ(host.entries.count("msgTable"), 1u);
}

TEST(Registration, StopsAtTheFirstFailure) {
    BareHost noEntry;
    noEntry.failingEntry = &ids::kIMoaMmXScript;
    EXPECT_EQ(registerWith(noEntry), kHostOutOfMemory);
    BareHost noApplication;
    noApplication.missing = {ids::kAppInfo};
    EXPECT_EQ(registerWith(noApplication), kHostNoInterface);
    BareHost noMemory;
    noMemory.blocksLeft = 0;
    EXPECT_EQ(registerWith(noMemory), kHostOutOfMemory);
    EXPECT_EQ(noMemory.entries.count("msgTable"), 0u);
}

/// Creates a script instance; the services that were acquired are released again.
HostStatus createInstance(BareHost& host) {
    auto instance = host.record<ScriptInstance>();
    const HostStatus status = createScriptInstance(&instance);
    destroyScriptInstance(&instance);
    EXPECT_EQ(host.references, 0);
    return status;
}

TEST(ScriptInstances, AcquireTheirServicesInOrder) {
    BareHost host;
    EXPECT_EQ(createInstance(host), kHostOk);
    const std::vector<std::string> expected = {"AB9D9921", "ACC7E2B8", "A7EBAA8A", "151A5780",
                                               "AC96CF89", "3F698780", "AC96CF98", "F367FFFF",
                                               "F36721D0", "D9088161", "AC401B78", "AC96CFC0"};
    EXPECT_EQ(host.asked, expected);
}

TEST(ScriptInstances, FailOnAMissingServiceDBeforeAskingForOthers) {
    BareHost host;
    host.missing = {ids::kServiceD};
    EXPECT_EQ(createInstance(host), kHostNoInterface);
    EXPECT_EQ(host.asked.back(), "D9088161");
}

TEST(ScriptInstances, FailWithoutARequiredService) {
    for (const Identifier& id : {ids::kServiceA, ids::kAppInfo, ids::kServiceB, ids::kValues, ids::kUtils,
                                 ids::kLists, ids::kPlayerSource, ids::kServiceE}) {
        BareHost host;
        host.missing = {id};
        EXPECT_EQ(createInstance(host), kHostNoInterface) << std::hex << id.data1;
    }
}

TEST(ScriptInstances, WorkWithoutTheOptionalServices) {
    for (const Identifier& id : {ids::kServiceC, ids::kImages, ids::kColours}) {
        BareHost host;
        host.missing = {id};
        EXPECT_EQ(createInstance(host), kHostOk) << std::hex << id.data1;
    }
}

TEST(MessageTable, HasALineForEverySelectorAndTheAllocatedSize) {
    const MessageTable& table = messageTable();
    const std::string whole = std::string(table.head()) + table.body();
    EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), std::ptrdiff_t(table.methods().size()) + 2);
    EXPECT_EQ(table.line(0), "new object me");
    EXPECT_EQ(table.line(kMethodCount), "krlImageRGBtoHSV object me, color pColor -- ");
}

TEST(MessageTable, KeepsItsFixedLinesAndTheirSize) {
    const MessageTable fixed{Catalogue()};
    EXPECT_EQ(kMethodCount, 112);
    EXPECT_EQ(fixed.body(), kMessageTableBody);
    EXPECT_EQ(fixed.bytes(), 10482u);
}

Status warm(ImageEngine&, int32_t, Colour, float) { return kStatusOk; }

TEST(MessageTable, AppendsALineForAMethodThatItDoesNotHave) {
    Catalogue catalogue;
    catalogue.family("extra");
    catalogue.add("krlImageWarm", warm)
        .integer("amount", {.from = 0, .to = 9, .example = 1}, "")
        .colour("tint", Colour(1, 2, 3), "")
        .real("share", {.from = 0, .to = 1, .example = 0.5}, "");
    const MessageTable table(catalogue);
    EXPECT_EQ(table.line(kMethodCount), "krlImageRGBtoHSV object me, color pColor -- ");
    EXPECT_EQ(table.line(kMethodCount + 1),
              "krlImageWarm object me, integer amount, color tint, float share -- ");
    EXPECT_STREQ(table.methods().back()->name(), "krlImageWarm");
}

}  // namespace
}  // namespace krl::host
