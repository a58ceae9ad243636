#include "core/LookupTables.h"
#include "core/Scratch.h"
#include "core/Thread.h"
#include "krlimage/engine.h"

namespace krl {

ImageEngine::ImageEngine() : scratch_(std::make_unique<ScratchAllowance>()) { keepThreads(); }
ImageEngine::~ImageEngine() { letThreadsGo(); }

void ImageEngine::allocateTables() { lookupTables_ = std::make_unique<LookupTables>(); }

void ImageEngine::buildTables() { lookupTables_->build(); }

void ImageEngine::freeTables() { lookupTables_.reset(); }

void ImageEngine::configureExecution(bool singleThreaded) {
    if (singleThreaded) {
        threadCount_ = 1;
        return;
    }
    threadCount_ = processorCount();
    selectInstructionSet(3);
}

void ImageEngine::selectInstructionSet(int32_t mode) {
    if (mode != 2) {
        useWidePath_ = false;
        return;
    }
#if defined(__SSE2__)
    useWidePath_ = true;  // a build for SSE2 runs nowhere else
#endif
}

void ImageEngine::load(uint8_t* pixels, const ImageInfo& info) {
    auto buffer = std::make_unique<ImageBuffer>();
    pixels_ = pixels;
    info_ = info;
    buffer->pixels = pixels;
    buffer->height = info.height;
    buffer->width = info.width;
    buffer->rowBytes = info.rowBytes;
    buffer->end = pixels ? pixels + ptrdiff_t(info.rowBytes) * info.height : nullptr;
    buffer_ = std::move(buffer);
    allowScratch();
}

void ImageEngine::keepScratch(bool keep) {
    keepsScratch_ = keep;
    allowScratch();
}

void ImageEngine::allowScratch() {
    const bool allowed = keepsScratch_ && buffer_ && buffer_->end > buffer_->pixels;
    scratch_->set(allowed ? buffer_->bytes() : 0);
}

void ImageEngine::unload() {
    buffer_.reset();
    allowScratch();
}

void ImageEngine::clear() {
    unload();
    lookupTables_.reset();
}

Status ImageEngine::imageStatus() const {
    if (!buffer_) return kStatusNoImage;
    if (!buffer_->pixels) return kStatusNoPixels;
    return kStatusOk;
}

bool ImageEngine::hasSizeOf(const SecondImage& other) const {
    return other.info.width == buffer_->width && other.info.height == buffer_->height;
}

}  // namespace krl
