#pragma once

#include <cstddef>
#include <functional>

namespace lumo::imaging {

/// Threads that one kernel may use; 1 until SetKernelThreads is called.
int KernelThreads();
void SetKernelThreads(int count);

/// Calls `body(first, last)` for disjoint ranges of rows that cover [0, rows), on several threads
/// where that is allowed and `rows * bytesPerRow` is worth it. `body` must give the same bytes
/// however the rows are split. Returns when all rows are done.
void ForRows(int rows, std::size_t bytesPerRow,
             const std::function<void(int first, int last)>& body);

}  // namespace lumo::imaging
