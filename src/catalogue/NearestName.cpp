#include "catalogue/NearestName.h"

#include <algorithm>
#include <numeric>

namespace krl {

namespace {

char lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter; }

/// The edit distance: letters to add, drop, change or swap with a neighbour.
size_t editsBetween(std::string_view a, std::string_view b) {
    std::vector<size_t> before(b.size() + 1), above(b.size() + 1), row(b.size() + 1);
    std::iota(above.begin(), above.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
            const bool swapped =
                i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]);
            if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = above;
        above = row;
    }
    return above.back();
}

}  // namespace

std::string nearestName(std::string_view wanted, const std::vector<std::string>& names) {
    const std::string* nearest = nullptr;
    // Up to a third of the letters may be wrong; beyond that, a suggestion confuses more than it helps.
    size_t fewest = std::max<size_t>(wanted.size() / 3, 1) + 1;
    for (const std::string& name : names) {
        const size_t edits = editsBetween(wanted, name);
        if (edits >= fewest) continue;
        fewest = edits;
        nearest = &name;
    }
    return nearest ? *nearest : "";
}

std::string didYouMean(std::string_view wanted, const std::vector<std::string>& names) {
    const std::string nearest = nearestName(wanted, names);
    return nearest.empty() ? "" : ", did you mean " + nearest + "?";
}

}  // namespace krl
