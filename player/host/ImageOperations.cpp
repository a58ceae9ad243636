#include "player/host/EmbeddedHost.h"
#include "player/host/HostError.h"
#include "player/host/Objects.h"
#include "player/host/ShallowImage.h"

/// The plug-in's image operations: query, lock and unlock, create.
namespace krl::player {

using namespace host;

namespace {

constexpr int32_t kBytesPerPixel = sizeof(Pixel);

HostStatus imageOf(HostInterface* self, const ScriptValue* value, ImageObject*& image) {
    if (kindOf(*value) != Kind::Image) return kWrongKind;
    image = static_cast<ImageObject*>(hostOf(self).heap.find(*value));
    return image ? kHostOk : kStaleValue;
}

HostStatus KRL_HOST_CALL createImage(HostInterface* self, int32_t width, int32_t height, int32_t depth,
                                     int32_t, int32_t, ScriptValue* value) {
    return guarded([&]() -> HostStatus {
        *value = {};
        if (depth != 32) return kWrongKind;
        *value = makeImage(hostOf(self).heap, width, height).release();
        return kHostOk;
    });
}

/// Where the image's pixels can be read and written until it is unlocked.
uint8_t* pixelsOf(ImageObject& image) {
    if (image.depth == 32) return reinterpret_cast<uint8_t*>(image.bitmap.row(0));
    if (image.locks == 0) image.shallowRows = shallowRows(image.bitmap, image.format());
    return image.shallowRows.data();
}

/// The lock keeps the image alive: the plug-in holds its address and no reference.
HostStatus KRL_HOST_CALL lockImage(HostInterface* self, const ScriptValue* value, ImageLock* lock) {
    return guarded([&]() -> HostStatus {
        ImageObject* image = nullptr;
        if (HostStatus status = imageOf(self, value, image)) return status;
        *lock = {pixelsOf(*image), image};
        hostOf(self).heap.retain(*value);
        ++image->locks;
        hostOf(self).countLock(1);
        return kHostOk;
    });
}

HostStatus KRL_HOST_CALL unlockImage(HostInterface* self, const ScriptValue* value) {
    ImageObject* image = nullptr;
    if (HostStatus status = imageOf(self, value, image)) return status;
    if (image->locks == 0) return kNotLocked;
    if (--image->locks == 0 && image->depth != 32) {
        takeShallowRows(image->shallowRows, image->format(), image->bitmap);
        image->shallowRows = {};
    }
    hostOf(self).countLock(-1);
    hostOf(self).heap.release(*value);
    return kHostOk;
}

HostStatus KRL_HOST_CALL queryImage(HostInterface* self, const ScriptValue* value, ImageInfo* info) {
    ImageObject* image = nullptr;
    if (HostStatus status = imageOf(self, value, image)) return status;
    *info = {image->width(), image->height(), rowBytesOf(image->width(), image->depth), image->depth, 0, 0};
    return kHostOk;
}

}  // namespace

Value makeImage(Heap& heap, int64_t width, int64_t height, int32_t depth, Palette palette) {
    if (width < 1 || height < 1)
        throw HostError("an image must be at least 1 pixel wide and high, not " + std::to_string(width) +
                        " by " + std::to_string(height));
    if (width > kPictureByteLimit / kBytesPerPixel / height)
        throw HostError("an image of " + std::to_string(width) + " by " + std::to_string(height) +
                        " pixels is larger than 2 GB");
    heap.mustHold(static_cast<uint64_t>(width * height * kBytesPerPixel));
    constexpr Pixel kWhite = {255, 255, 255, 255};
    Bitmap white{static_cast<int32_t>(width), static_cast<int32_t>(height),
                 std::vector<Pixel>(static_cast<size_t>(width * height), kWhite), nullptr};
    return heap.make<ImageObject>(std::move(white), depth, palette);
}

void fillImageOperations(Service& service) {
    service.set<images::CreateImage>(createImage)
        .set<images::LockImage>(lockImage)
        .set<images::UnlockImage>(unlockImage)
        .set<images::QueryImage>(queryImage);
}

}  // namespace krl::player
