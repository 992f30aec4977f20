// Pixels in the opposite order, a vector at a time. For files that are built once for every
// instruction set; the guard therefore lets it through once for each of them.

#if defined(LUMO_REVERSE_PIXELS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LUMO_REVERSE_PIXELS_INL_H
#undef LUMO_REVERSE_PIXELS_INL_H
#else
#define LUMO_REVERSE_PIXELS_INL_H
#endif

#include <hwy/highway.h>

#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace lumo::imaging::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

/// As many pixels as the vector of `d` has lanes, each channel in a vector of its own.
template <class D>
struct Pixels {
    hwy::HWY_NAMESPACE::Vec<D> red, green, blue;
};

template <class D>
HWY_INLINE hwy::HWY_NAMESPACE::Vec<D> ReverseBytes(D d, hwy::HWY_NAMESPACE::Vec<D> v) {
    namespace hn = hwy::HWY_NAMESPACE;
    alignas(16) static constexpr std::uint8_t kOrder[16] = {15, 14, 13, 12, 11, 10, 9, 8,
                                                            7,  6,  5,  4,  3,  2,  1, 0};
    return hn::ReverseBlocks(d, hn::TableLookupBytes(v, hn::LoadDup128(d, kOrder)));
}

template <class D>
HWY_INLINE Pixels<D> LoadReversed(D d, const std::uint8_t* from) {
    Pixels<D> p;
    hwy::HWY_NAMESPACE::LoadInterleaved3(d, from, p.red, p.green, p.blue);
    return {ReverseBytes(d, p.red), ReverseBytes(d, p.green), ReverseBytes(d, p.blue)};
}

template <class D>
HWY_INLINE void StorePixels(D d, const Pixels<D>& p, std::uint8_t* to) {
    hwy::HWY_NAMESPACE::StoreInterleaved3(p.red, p.green, p.blue, d, to);
}

#endif

}  // namespace lumo::imaging::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // LUMO_REVERSE_PIXELS_INL_H
