#pragma once

#include <array>
#include <cstdlib>
#include <deque>
#include <new>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Value.h"
#include "faults/GuardedPicture.h"
#include "host/ScriptInstance.h"

namespace krl::test {

/// Memory for what the host holds: never of the counted kind.
template <class Element>
struct HostAllocator {
    using value_type = Element;
    HostAllocator() = default;
    template <class Other>
    HostAllocator(const HostAllocator<Other>&) {}
    Element* allocate(size_t count) {
        if (void* block = std::malloc(count * sizeof(Element))) return static_cast<Element*>(block);
        std::abort();
    }
    void deallocate(Element* block, size_t) { std::free(block); }
    bool operator==(const HostAllocator&) const { return true; }
};
template <class Element>
using HostVector = std::vector<Element, HostAllocator<Element>>;
using HostString = std::basic_string<char, std::char_traits<char>, HostAllocator<char>>;
void PrintTo(const HostString& text, std::ostream* out);

enum class HostKind : int32_t {
    Void,
    Integer,
    Real,
    Symbol,
    Text,
    Colour,
    Point,
    List,
    PropertyList,
    Picture
};

/// A whole host made to misbehave: any one of its operations can fail, be missing or give null, and it
/// counts every value, lock and interface and notes every misuse of them. Integers are values without a
/// count, as the door has it; everything else is counted.
class FaultHost {
public:
    FaultHost();
    ~FaultHost();
    FaultHost(const FaultHost&) = delete;
    FaultHost& operator=(const FaultHost&) = delete;

    // Faults.
    /// What a failing operation answers.
    static constexpr host::HostStatus kRefused = static_cast<host::HostStatus>(0x8004F00Du);
    /// Operation `number` from now on fails, counted from 1. With `garbage` it also writes a useless answer.
    void failOperation(int64_t number, bool garbage);
    /// Ends that; the operation that failed, or null.
    const char* endFailing();
    bool locksWithoutPixels = false;
    bool refusesSecondLocks = false;
    PictureForm newPictures;
    int32_t blocksLeft = -1;  ///< of the allocator; negative means no limit

    // What it saw.
    HostVector<HostString> trace;       ///< the operations, with the words of those that have some
    HostVector<HostString> complaints;  ///< misuse
    int64_t values() const { return values_; }
    int64_t locks() const { return locks_; }
    int64_t references() const;  ///< on services and instances
    int64_t blocks() const { return blocks_; }
    bool picturesAreIntact() const;

    // Values for arguments, each with one reference.
    host::ScriptValue make(const Value& plain);
    /// With other bytes for each picture that has another `seed`.
    host::ScriptValue picture(int32_t width, int32_t height, PictureForm form = {}, uint32_t seed = 1);
    /// The picture behind a value, or null.
    GuardedPicture* pictureOf(const host::ScriptValue& value);
    void retain(const host::ScriptValue& value);
    void release(const host::ScriptValue& value);
    void restorePictures();
    /// Takes every lock off a picture.
    void forceUnlock(const host::ScriptValue& value);
    /// A value as text, pictures by size and content.
    HostString describe(const host::ScriptValue& value) const;
    /// The entry under a symbol of a property list; VOID without one.
    host::ScriptValue entry(const host::ScriptValue& list, const char* key) const;
    HostKind kindOf(const host::ScriptValue& value) const;

    /// An interface of this host: its table first, as every interface has it.
    struct Service {
        host::HostInterface door{};
        FaultHost* host = nullptr;
        const char* name = "";
        intptr_t references = 0;  ///< an instance of the plug-in counts its own in the same place
        std::array<void*, host::slots::kTableSize> operations{};
    };
    // By the identifiers under which the plug-in asks for them; `provider` gives them all.
    Service provider{}, memory{}, valueService{}, colours{}, lists{}, images{}, utils{}, playerSource{},
        player{}, playerSub{}, application{}, cache{}, dictionary{}, other{};
    std::array<Service*, 14> services();
    /// Services that are not to be found.
    HostVector<host::Identifier> missing;
    bool givesNullPlayer = false, givesNullSub = false, givesNullDictionary = false;

    static FaultHost& of(host::HostInterface* self) { return *reinterpret_cast<Service*>(self)->host; }
    /// Notes an operation; `kRefused` if it is the one that fails.
    host::HostStatus enter(const char* operation, const char* words = "");
    bool writesGarbage() const { return garbage_; }

private:
    friend struct FaultHostOperations;

    struct Node {
        HostKind kind = HostKind::Void;
        int32_t references = 0;
        int32_t integer = 0;
        double real = 0;
        Point point{};
        host::ColourRecord colour{};
        HostString text{};
        HostVector<host::ScriptValue> keys{}, items{};
        GuardedPicture* picture = nullptr;
    };

    void fillValueOperations();
    void fillListAndImageOperations();
    void fillServiceOperations();
    template <class Op>
    void set(Service& service, typename Op::Function function) {
        service.operations[Op::slot] = reinterpret_cast<void*>(function);
    }

    void complain(const char* what, std::string_view about = {});
    /// The node behind a value that should live; null, with a complaint for one that has gone.
    Node* find(const host::ScriptValue& value);
    Node* find(const host::ScriptValue& value, HostKind kind);
    host::ScriptValue add(Node&& node);
    host::ScriptValue symbolValue(host::SymbolId symbol);
    host::SymbolId intern(const char* name);
    void describe(const host::ScriptValue& value, HostString& out) const;

    std::deque<Node, HostAllocator<Node>> nodes_;
    HostVector<HostString> symbols_;
    int64_t values_ = 0, locks_ = 0, blocks_ = 0;
    int64_t untilFailure_ = 0;
    bool garbage_ = false;
    const char* failed_ = nullptr;
};

}  // namespace krl::test
