#pragma once

#include <map>
#include <string>

#include "catalogue/Letters.h"
#include "player/pictures/Picture.h"

namespace krl::player {

/// Pictures in memory by name, for scripts that work without picture files.
struct PictureTable {
    std::map<std::string, Bitmap> given;
    std::map<std::string, Bitmap> saved;

    /// What the script has saved under the name, else what it was given; null if neither.
    const Bitmap* find(const std::string& name) const {
        for (const auto* table : {&saved, &given})
            if (const auto found = table->find(name); found != table->end()) return &found->second;
        return nullptr;
    }

    /// The picture of a member: the one whose name without extension is this, letter case aside; null if none.
    const Bitmap* member(const std::string& name) const {
        for (const auto* table : {&saved, &given})
            for (const auto& [file, bitmap] : *table)
                if (sameLetters(file.substr(0, file.rfind('.')), name)) return &bitmap;
        return nullptr;
    }
};

}  // namespace krl::player
