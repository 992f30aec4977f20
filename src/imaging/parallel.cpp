#include "imaging/parallel.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

namespace lumo::imaging {
namespace {

std::atomic<int> kernelThreads{1};

// A thread costs up to 0.04 ms; below this much work per thread it does not pay.
constexpr std::size_t kBytesPerThread = std::size_t{1} << 20;

}  // namespace

int KernelThreads() {
    return kernelThreads.load(std::memory_order_relaxed);
}
void SetKernelThreads(int count) {
    kernelThreads.store(std::clamp(count, 1, 64), std::memory_order_relaxed);
}

void ForRows(int rows, std::size_t bytesPerRow,
             const std::function<void(int first, int last)>& body) {
    if (rows <= 0) return;
    const std::size_t work = static_cast<std::size_t>(rows) * bytesPerRow;
    const auto useful = static_cast<int>(std::min<std::size_t>(work / kBytesPerThread, 64));
    const int threads = std::clamp(std::min(useful, KernelThreads()), 1, rows);
    if (threads == 1) {
        body(0, rows);
        return;
    }
    const auto bound = [&](int part) {
        return static_cast<int>(static_cast<long long>(rows) * part / threads);
    };
    std::vector<std::jthread> workers;
    workers.reserve(static_cast<std::size_t>(threads) - 1);
    for (int part = 1; part < threads; ++part)
        workers.emplace_back([&, part] { body(bound(part), bound(part + 1)); });
    body(0, bound(1));
}

}  // namespace lumo::imaging
