#include <gtest/gtest.h>

#include <array>
#include <fstream>

#include "memory/CountedMemory.h"
#include "player/host/Heap.h"
#include "player/host/Objects.h"
#include "support/ScratchFolder.h"
#include "tests/player/CliRun.h"

/// Fails every allocation of a command in turn: it must complete its work or report the failure.
namespace krl::player {
namespace {

namespace fs = std::filesystem;
using test::AllocationFault;

/// A stream buffer that allocates nothing.
class FixedBuffer : public std::streambuf {
public:
    FixedBuffer() { setp(bytes_.data(), bytes_.data() + bytes_.size()); }
    std::string text() const { return {pbase(), pptr()}; }

private:
    std::array<char, 1 << 20> bytes_;
};

struct Outcome {
    int code = -1;
    bool refused = false;
    std::string out, err;
    bool operator==(const Outcome& other) const {
        return code == other.code && out == other.out && err == other.err;
    }
};

Outcome outcomeOf(const std::vector<std::string>& words, int64_t before) {
    const auto out = std::make_unique<FixedBuffer>(), err = std::make_unique<FixedBuffer>();
    std::ostream outStream(out.get()), errStream(err.get());
    const Terminal terminal{outStream, errStream};
    Outcome outcome;
    {
        AllocationFault fault(before + 1, AllocationFault::Extent::One);
        outcome.code = runCommandLine(words, terminal);
        outcome.refused = fault.end();
    }
    outcome.out = out->text();
    outcome.err = err->text();
    return outcome;
}

class AllocationFaults : public testing::Test {
protected:
    std::string at(const std::string& name) const { return (folder.path() / name).string(); }
    std::string text(const std::string& name, const std::string& content) const {
        std::ofstream(folder.path() / name) << content;
        return at(name);
    }
    std::string picture(const std::string& name) const {
        writePicture(at(name), Bitmap{4, 3, std::vector<Pixel>(12, Pixel{10, 20, 30, 255}), nullptr});
        return at(name);
    }
    static size_t filesIn(const fs::path& place) {
        return size_t(std::distance(fs::directory_iterator(place), fs::directory_iterator()));
    }
    size_t files() const { return filesIn(folder.path()); }

    /// Repeats a command until each of its allocations has failed once; `written` is its output file, if any.
    void everyAllocation(const std::vector<std::string>& words, const std::string& written = "") {
        const Outcome whole = outcomeOf(words, -1);
        ASSERT_EQ(whole.code, 0) << whole.err;
        const std::vector<Pixel> pixels =
            written.empty() ? std::vector<Pixel>() : readPicture(written).pixels;
        const size_t filesOfAll = files();
        int64_t count = 0;
        for (bool more = true; more; ++count) {
            if (!written.empty()) fs::remove(written);
            const Outcome outcome = outcomeOf(words, count);
            more = outcome.refused;
            const bool answered = outcome.out.find("[#error: \"") != std::string::npos;
            const bool reported = answered || (outcome.code != 0 && !outcome.err.empty());
            const bool there = !written.empty() && fs::exists(written);
            SCOPED_TRACE("allocation " + std::to_string(count));
            EXPECT_TRUE(reported || outcome == whole) << outcome.code << outcome.out << outcome.err;
            if (there) {
                EXPECT_EQ(readPicture(written).pixels, pixels);
                if (reported) {
                    EXPECT_TELLS(outcome.err, "written");
                }
            } else if (!written.empty()) {
                EXPECT_TRUE(reported);
            }
            ASSERT_EQ(files(), filesOfAll - (written.empty() || there ? 0 : 1));
        }
        EXPECT_GT(count, 50);
        RecordProperty("allocations", std::to_string(count));
    }

    test::ScratchFolder folder;
};

TEST_F(AllocationFaults, OfApplyLeaveAPictureOrReportWhyNot) {
    everyAllocation(
        {"apply", picture("in.pam"), "-o", at("out.pam"), "-j", "1", "--threads", "st", "invert(#RGB)"},
        at("out.pam"));
}

TEST_F(AllocationFaults, OfABatchAreReported) {
    const std::vector<std::string> words = {
        "apply", picture("a.pam"), picture("b.pam"), picture("c.pam"), "-o", at("out"), "-j",
        "2",     "invert(#RGB)"};
    const auto begin = [](const std::string& text) { return text.substr(0, text.find("pictures")); };
    for (int64_t before = 0; before < 8000; before += 23) {
        fs::remove_all(at("out"));
        const Outcome outcome = outcomeOf(words, before);
        const size_t written = fs::exists(at("out")) ? filesIn(at("out")) : 0;
        SCOPED_TRACE("allocation " + std::to_string(before) + '\n' + outcome.err);
        EXPECT_EQ(outcome.code, written == 3 && outcome.err == "3 of 3 pictures done\n" ? 0 : 1);
        if (written > 0) {
            EXPECT_TELLS(begin(outcome.err), std::to_string(written) + " of 3 ");
        }
    }
}

TEST_F(AllocationFaults, OfAScriptAreReported) {
    everyAllocation({"run", "--threads", "st",
                     text("script.ls",
                          "on main\n  x = new(xtra \"KRLImageXtra\")\n"
                          "  put x.krlImageCreateLookupTables(#st)\n  i = image(4, 3, 32)\n"
                          "  put x.krlImageLoad(i)\n  put x.krlImageBrightness(5, #RGB)\n"
                          "  put x.krlImageQuit()\n  a = [1, [#b: \"c\"], 2.5]\n  put a, a[2].b\nend\n")});
}

TEST_F(AllocationFaults, OfCommandsThatOnlyPrintAreReported) {
    everyAllocation({"list", "blur"});
    everyAllocation({"help", "vignette"});
    everyAllocation({"check", text("good.ls", "on main\n  put 1 + 2\nend\n")});
}

/// The heap frees objects in destructors, which must not fail.
TEST(HeapFaults, FreeingNeedsNoMemory) {
    Heap heap(1 << 20);
    Value ring = heap.make<ListObject>();
    for (int i = 0; i < 100; ++i) {
        Value next = heap.make<ListObject>();
        next.as<ListObject>()->items.push_back(ring);
        next.as<ListObject>()->items.push_back(heap.number(i));
        ring = std::move(next);
    }
    Value last = ring;
    while (!last.as<ListObject>()->items.empty()) {
        Value inner = last.as<ListObject>()->items.front();
        last = std::move(inner);
    }
    last.as<ListObject>()->items.push_back(ring);
    last = Value();
    const AllocationFault next(1, AllocationFault::Extent::One);
    heap.freeCycles();
    EXPECT_EQ(heap.living(), 201) << "still held from outside";
    ring = Value();
    heap.freeCycles();
    EXPECT_EQ(heap.living(), 0);
}

TEST(HeapFaults, AListThatContainsItselfIsFreedWithTheHeap) {
    Heap heap(1 << 20);
    Value list = heap.make<ListObject>();
    for (int i = 0; i < 3; ++i) list.as<ListObject>()->items.push_back(list);
    list = Value();
    heap.clear();
    EXPECT_EQ(heap.living(), 0);
}

}  // namespace
}  // namespace krl::player
