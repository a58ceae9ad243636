#include <gtest/gtest.h>

#include "door/LoadedLibrary.h"
#include "host/BareHost.h"

/// The library as a file: loaded, queried, used and unloaded through its exports only.
namespace krl::host {
namespace {

using test::BareHost;
using test::LoadedLibrary;

std::string libraryPath;

constexpr const char* kExports[] = {"DllCanUnloadNow", "DllGetClassForm", "DllGetClassInfo",
                                    "DllGetClassObject", "DllGetInterface"};

class LoadedPlugIn : public testing::Test {
protected:
    LoadedPlugIn() : library(libraryPath) {}
    void SetUp() override {
        ASSERT_TRUE(library.loaded()) << libraryPath;
        for (const char* name : kExports) ASSERT_NE(library.symbol(name), nullptr) << name;
    }

    HostStatus canUnload() { return library.function<CanUnloadNowFunction>("DllCanUnloadNow")(); }

    HostInterface* interfaceOf(InstanceHead& instance, const Identifier& classId,
                               const Identifier& interfaceId) {
        void* made = nullptr;
        const auto get = library.function<GetInterfaceFunction>("DllGetInterface");
        EXPECT_EQ(get(&instance, &classId, &interfaceId, &made), kHostOk);
        return static_cast<HostInterface*>(made);
    }

    LoadedLibrary library;
};

#if defined(_WIN32)
TEST_F(LoadedPlugIn, HasItsExportsAtOrdinalsOneToFive) {
    for (int ordinal = 1; ordinal <= 5; ++ordinal)
        EXPECT_EQ(library.ordinal(ordinal), library.symbol(kExports[ordinal - 1])) << ordinal;
    EXPECT_EQ(library.ordinal(6), nullptr);
}
#endif

TEST_F(LoadedPlugIn, ListsItsTwoClasses) {
    BareHost host;
    ClassInfoRecord* records = nullptr;
    ASSERT_EQ(library.function<GetClassInfoFunction>("DllGetClassInfo")(host.memory(), &records), kHostOk);
    EXPECT_EQ(records[0].classId, ids::kRegistrationClass);
    EXPECT_EQ(records[1].interfaceId, ids::kIMoaRegister);
    EXPECT_EQ(records[2].classId, ids::kScriptClass);
    EXPECT_EQ(records[3].interfaceId, ids::kIMoaMmXScript);
    EXPECT_EQ(records[4].classId, ids::kNone);
    allocator::Free::call(host.memory(), records);
}

TEST_F(LoadedPlugIn, RegistersItself) {
    BareHost host;
    auto instance = host.record<InstanceHead>();
    HostInterface* object = interfaceOf(instance, ids::kRegistrationClass, ids::kIMoaRegister);
    EXPECT_EQ(canUnload(), kHostCannotUnload);
    EXPECT_EQ(RegisterOperation::call(object, host.cache(), nullptr), kHostOk);
    EXPECT_EQ(host.entries.count("msgTable"), 1u);
    EXPECT_EQ(unknown::Release::call(object), 0u);
    EXPECT_EQ(canUnload(), kHostOk);
    EXPECT_EQ(host.blocks, 0);
}

TEST_F(LoadedPlugIn, CreatesAnInstanceCallsItAndReleasesIt) {
    BareHost host;
    int32_t bytes = 0;
    CreateInstanceFunction create = nullptr;
    DestroyInstanceFunction destroy = nullptr;
    const auto form = library.function<GetClassFormFunction>("DllGetClassForm");
    ASSERT_EQ(form(&ids::kScriptClass, &bytes, &create, &destroy), kHostOk);
    ASSERT_EQ(bytes, int32_t(sizeof(ScriptInstance)));

    auto instance = host.record<ScriptInstance>();
    ASSERT_EQ(create(&instance), kHostOk);
    HostInterface* object = interfaceOf(instance, ids::kScriptClass, ids::kIMoaMmXScript);
    CallInfo untouched;
    untouched.result.words[0] = 77;
    for (int32_t selector : {0, 113, -1}) {
        untouched.selector = selector;
        EXPECT_EQ(CallOperation::call(object, &untouched), kHostNoInterface) << "this host has no player";
        EXPECT_EQ(untouched.result.words[0], 77);
    }
    EXPECT_EQ(unknown::Release::call(object), 0u);
    destroy(&instance);
    EXPECT_EQ(host.references, 0);
    EXPECT_EQ(host.blocks, 0);
    EXPECT_EQ(canUnload(), kHostOk);
}

}  // namespace
}  // namespace krl::host

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: test_door LIBRARY\n");
        return 2;
    }
    krl::host::libraryPath = argv[1];
    return RUN_ALL_TESTS();
}
