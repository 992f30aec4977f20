#include "imaging/codecs/byte_writer.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace lumo::imaging::codecs {
namespace {

// The first touch of 36 MB in small pages takes ten times as long as filling them.
void PreferHugePages(std::uint8_t* data, std::size_t bytes) {
#ifdef __linux__
    constexpr std::uintptr_t kHugePage = std::uintptr_t{2} << 20;
    const auto first = (reinterpret_cast<std::uintptr_t>(data) + kHugePage - 1) & ~(kHugePage - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(data) + bytes) & ~(kHugePage - 1);
    if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#else
    (void)data;
    (void)bytes;
#endif
}

}  // namespace

ByteWriter::ByteWriter(std::size_t expected) {
    bytes_.reserve(expected);
    PreferHugePages(bytes_.data(), bytes_.capacity());
}

}  // namespace lumo::imaging::codecs
