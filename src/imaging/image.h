#pragma once

// The picture that every command works on, and the views through which kernels see it.

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "imaging/geometry.h"
#include "imaging/pixel_buffer.h"

namespace lumo::imaging {

inline constexpr int kChannels = 3;

/// One pixel, red, green and blue from 0 to 255.
struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend constexpr bool operator==(Rgb, Rgb) = default;
};

/// Bytes of a row, the stride of every image: there is no padding.
constexpr std::size_t StrideOf(Size size) {
    return static_cast<std::size_t>(size.width) * kChannels;
}

/// Read access to 8-bit RGB pixels: three bytes a pixel in the order red, green, blue, rows from
/// the top, row stride width * 3. A view does not own its pixels and never outlives a call.
class ConstImageView {
  public:
    ConstImageView() = default;
    ConstImageView(const std::uint8_t* pixels, Size size) : pixels_(pixels), size_(size) {}

    Size Extent() const { return size_; }
    int Width() const { return size_.width; }
    int Height() const { return size_.height; }
    bool IsEmpty() const { return pixels_ == nullptr || size_.IsEmpty(); }
    std::size_t Stride() const { return StrideOf(size_); }

    const std::uint8_t* Row(int y) const {
        assert(y >= 0 && y < size_.height);
        return pixels_ + static_cast<std::size_t>(y) * Stride();
    }
    const std::uint8_t* At(int x, int y) const {
        return Row(y) + static_cast<std::size_t>(x) * kChannels;
    }
    Rgb Pixel(int x, int y) const {
        const std::uint8_t* p = At(x, y);
        return {p[0], p[1], p[2]};
    }
    /// All rows as one run of bytes.
    std::span<const std::uint8_t> Bytes() const { return {pixels_, size_.Area() * kChannels}; }

  private:
    const std::uint8_t* pixels_ = nullptr;
    Size size_;
};

/// Read and write access; otherwise as ConstImageView.
class ImageView {
  public:
    ImageView() = default;
    ImageView(std::uint8_t* pixels, Size size) : pixels_(pixels), size_(size) {}

    operator ConstImageView() const { return {pixels_, size_}; }  // NOLINT

    Size Extent() const { return size_; }
    int Width() const { return size_.width; }
    int Height() const { return size_.height; }
    bool IsEmpty() const { return pixels_ == nullptr || size_.IsEmpty(); }
    std::size_t Stride() const { return StrideOf(size_); }

    std::uint8_t* Row(int y) const {
        assert(y >= 0 && y < size_.height);
        return pixels_ + static_cast<std::size_t>(y) * Stride();
    }
    std::uint8_t* At(int x, int y) const {
        return Row(y) + static_cast<std::size_t>(x) * kChannels;
    }
    Rgb Pixel(int x, int y) const {
        const std::uint8_t* p = At(x, y);
        return {p[0], p[1], p[2]};
    }
    void SetPixel(int x, int y, Rgb colour) const {
        std::uint8_t* p = At(x, y);
        p[0] = colour.red;
        p[1] = colour.green;
        p[2] = colour.blue;
    }
    std::span<std::uint8_t> Bytes() const { return {pixels_, size_.Area() * kChannels}; }

  private:
    std::uint8_t* pixels_ = nullptr;
    Size size_;
};

/// An owned picture, or none: a default-constructed or reset image has no buffer and size 0 x 0.
class Image {
  public:
    Image() = default;
    Image(Image&&) noexcept = default;
    Image& operator=(Image&&) noexcept = default;

    /// A picture of that size with undefined pixels; empty, with LastError() set, if the size is
    /// not positive or the memory budget (pixel_buffer.h) is spent.
    [[nodiscard]] static std::optional<Image> TryCreate(Size size);
    /// A copy of the pixels of the view, under the same conditions.
    [[nodiscard]] static std::optional<Image> TryCopy(ConstImageView source);

    bool IsEmpty() const { return !buffer_; }
    explicit operator bool() const { return !IsEmpty(); }
    Size Extent() const { return buffer_ ? size_ : Size{}; }
    int Width() const { return Extent().width; }
    int Height() const { return Extent().height; }

    ImageView View() { return {buffer_.Data(), Extent()}; }
    ConstImageView View() const { return {buffer_.Data(), Extent()}; }

    /// Width and height change places; the bytes stay as they are.
    void ExchangeSides() { size_ = {size_.height, size_.width}; }

    /// Gives the buffer back; the image is empty afterwards.
    void Reset() { buffer_ = PixelBuffer(); }

  private:
    Image(PixelBuffer buffer, Size size) : buffer_(std::move(buffer)), size_(size) {}

    PixelBuffer buffer_;
    Size size_;
};

}  // namespace lumo::imaging
