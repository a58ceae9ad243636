#include <algorithm>
#include <cstdlib>
#include <new>

#include "Values.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

/// Memory of new arrays.
namespace krl::python {

namespace {

#if defined(__linux__)

/// The system takes longer to hand out fresh pages than most effects run, so the blocks of large arrays are
/// kept for the next ones. The system may take their pages back as long as they are not used.
class Blocks {
public:
    static constexpr size_t kHugePage = size_t{2} << 20;
    static constexpr size_t kSmallest = 2 * kHugePage, kMostKept = size_t{256} << 20;

    struct Block {
        void* memory;
        size_t size;
    };

    /// The interpreter's lock guards them; they are never freed, since arrays may outlive everything else.
    static Blocks& all() {
        static auto& blocks = *new Blocks;
        return blocks;
    }

    Block take(size_t bytes) {
        const size_t size = (bytes + kHugePage - 1) / kHugePage * kHugePage;
        const auto found =
            std::find_if(kept_.begin(), kept_.end(), [&](const Block& block) { return block.size == size; });
        if (found != kept_.end()) return remove(found);
        void* const memory = std::aligned_alloc(kHugePage, size);
        if (!memory) throw std::bad_alloc();
        madvise(memory, size, MADV_HUGEPAGE);
        return {memory, size};
    }

    /// Frees those that were given back first when there are too many.
    void giveBack(const Block& block) {
        if (block.size > kMostKept || madvise(block.memory, block.size, MADV_FREE) != 0)
            return std::free(block.memory);
        while (keptBytes_ + block.size > kMostKept) std::free(remove(kept_.begin()).memory);
        kept_.push_back(block);
        keptBytes_ += block.size;
    }

private:
    Blocks() { kept_.reserve(kMostKept / kSmallest); }

    Block remove(std::vector<Block>::iterator found) {
        const Block block = *found;
        kept_.erase(found);
        keptBytes_ -= block.size;
        return block;
    }

    std::vector<Block> kept_;
    size_t keptBytes_ = 0;
};

#endif

}  // namespace

Array newArray(const std::vector<py::ssize_t>& shape) {
#if defined(__linux__)
    size_t bytes = 1;
    for (const py::ssize_t length : shape) bytes *= static_cast<size_t>(length);
    if (bytes >= Blocks::kSmallest) {
        auto block = std::make_unique<Blocks::Block>(Blocks::all().take(bytes));
        auto* const pixels = static_cast<uint8_t*>(block->memory);
        const py::capsule owner(block.release(), [](void* held) {
            const std::unique_ptr<Blocks::Block> freed(static_cast<Blocks::Block*>(held));
            Blocks::all().giveBack(*freed);
        });
        return Array(shape, pixels, owner);
    }
#endif
    return Array(shape);
}

}  // namespace krl::python
