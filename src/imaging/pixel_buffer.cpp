#include "imaging/pixel_buffer.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <vector>

#include "imaging/last_error.h"

namespace lumo::imaging {
namespace {

constexpr std::size_t kAlignment = 64;
constexpr std::size_t kLargeBlock = std::size_t{4} << 20;  // worth huge pages
constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::size_t kMaxWaiting = 6;  // blocks; a command holds two or three at once
constexpr std::size_t kMaxWaitingBytes = std::size_t{1} << 30;

struct Block {
    std::uint8_t* data;
    std::size_t capacity;
};

class Pool {
  public:
    Pool() {
        const long pages = sysconf(_SC_PHYS_PAGES);
        const long pageSize = sysconf(_SC_PAGESIZE);
        budget_ = pages > 0 && pageSize > 0
                      ? static_cast<std::size_t>(pages) * static_cast<std::size_t>(pageSize) / 2
                      : std::size_t{1} << 30;
    }

    Block Take(std::size_t bytes) {
        const std::size_t unit = bytes >= kLargeBlock ? kHugePage : std::size_t{4096};
        if (bytes > SIZE_MAX - unit) return {nullptr, 0};
        const std::size_t capacity = (bytes + unit - 1) / unit * unit;
        const std::scoped_lock lock(mutex_);
        if (bytes > budget_ || inUse_ > budget_ - bytes) return {nullptr, 0};
        // The smallest waiting block that fits, unless it would waste more than half of itself.
        auto best = waiting_.end();
        for (auto it = waiting_.begin(); it != waiting_.end(); ++it)
            if (it->capacity >= capacity && it->capacity / 2 <= capacity &&
                (best == waiting_.end() || it->capacity < best->capacity))
                best = it;
        Block block{nullptr, 0};
        if (best != waiting_.end()) {
            block = *best;
            waitingBytes_ -= block.capacity;
            waiting_.erase(best);
        } else {
            const std::size_t alignment = capacity >= kLargeBlock ? kHugePage : kAlignment;
            block.data = static_cast<std::uint8_t*>(std::aligned_alloc(alignment, capacity));
            if (block.data == nullptr) return {nullptr, 0};
            block.capacity = capacity;
            if (capacity >= kLargeBlock) madvise(block.data, capacity, MADV_HUGEPAGE);
        }
        inUse_ += block.capacity;
        return block;
    }

    void Give(Block block) {
        const std::scoped_lock lock(mutex_);
        inUse_ -= block.capacity;
        waiting_.push_back(block);
        waitingBytes_ += block.capacity;
        while (waiting_.size() > kMaxWaiting ||
               (waitingBytes_ > kMaxWaitingBytes && waiting_.size() > 1))
            DropOldest();
    }

    void Trim() {
        const std::scoped_lock lock(mutex_);
        while (!waiting_.empty()) DropOldest();
    }

    std::size_t Budget() {
        const std::scoped_lock lock(mutex_);
        return budget_;
    }
    void SetBudget(std::size_t bytes) {
        const std::scoped_lock lock(mutex_);
        budget_ = bytes;
    }
    std::size_t InUse() {
        const std::scoped_lock lock(mutex_);
        return inUse_;
    }

  private:
    void DropOldest() {
        waitingBytes_ -= waiting_.front().capacity;
        std::free(waiting_.front().data);
        waiting_.erase(waiting_.begin());
    }

    std::mutex mutex_;
    std::vector<Block> waiting_;  // oldest first
    std::size_t waitingBytes_ = 0;
    std::size_t inUse_ = 0;
    std::size_t budget_ = 0;
};

Pool& ThePool() {
    static Pool* const pool = new Pool;  // never destroyed: buffers may outlive main
    return *pool;
}

}  // namespace

PixelBuffer PixelBuffer::TryAllocate(std::size_t bytes) {
    const Block block = ThePool().Take(bytes);
    PixelBuffer buffer;
    if (block.data == nullptr) {
        SetLastError(fmt::format("not enough memory: {} bytes wanted", bytes));
        return buffer;
    }
    buffer.data_ = block.data;
    buffer.capacity_ = block.capacity;
    return buffer;
}

void PixelBuffer::Release() {
    if (data_ != nullptr) ThePool().Give({data_, capacity_});
    data_ = nullptr;
    capacity_ = 0;
}

std::size_t MemoryBudget() {
    return ThePool().Budget();
}
void SetMemoryBudget(std::size_t bytes) {
    ThePool().SetBudget(bytes);
}
std::size_t MemoryInUse() {
    return ThePool().InUse();
}
void TrimPixelPool() {
    ThePool().Trim();
}

}  // namespace lumo::imaging
