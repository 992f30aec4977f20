#include "imaging/codecs/psd_planes.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

#include "imaging/codecs/byte_reader.h"
#include "imaging/codecs/packbits.h"
#include "imaging/codecs/rows.h"

namespace lumo::imaging::codecs {
namespace {

using platform::Error;

// Inflates up to `count` bytes; gives how many came before the end or a fault of the data.
std::size_t InflateInto(ByteView data, std::uint8_t* target, std::size_t count) {
    constexpr std::size_t kMaxStep = std::numeric_limits<uInt>::max();
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) return 0;
    stream.next_in = const_cast<Bytef*>(data.data());  // zlib only reads there
    stream.next_out = target;
    std::size_t inputLeft = data.size();
    std::size_t outputLeft = count;
    int status = Z_OK;
    while (status == Z_OK && outputLeft > 0) {
        const auto input = static_cast<uInt>(std::min(inputLeft, kMaxStep));
        const auto output = static_cast<uInt>(std::min(outputLeft, kMaxStep));
        stream.avail_in = input;
        stream.avail_out = output;
        status = inflate(&stream, Z_NO_FLUSH);  // without progress: Z_BUF_ERROR
        inputLeft -= input - stream.avail_in;
        outputLeft -= output - stream.avail_out;
    }
    inflateEnd(&stream);
    return count - outputLeft;
}

// Each sample was stored as its difference from the one on its left.
void UndoRow8(std::uint8_t* row, std::size_t bytes) {
    for (std::size_t i = 1; i < bytes; ++i) row[i] = static_cast<std::uint8_t>(row[i] + row[i - 1]);
}

void UndoRow16(std::uint8_t* row, std::size_t bytes) {
    unsigned sum = 0;
    for (std::size_t i = 0; i + 1 < bytes; i += 2) {
        sum += static_cast<unsigned>(row[i] << 8 | row[i + 1]);
        row[i] = static_cast<std::uint8_t>(sum >> 8);
        row[i + 1] = static_cast<std::uint8_t>(sum);
    }
}

// The first bytes of all samples, then the second ones and so on, as differences of bytes.
void UndoRow32(std::uint8_t* row, std::size_t bytes, std::vector<std::uint8_t>& scratch) {
    UndoRow8(row, bytes);
    scratch.assign(row, row + bytes);
    const std::size_t width = bytes / 4;
    for (std::size_t x = 0; x < width; ++x)
        for (std::size_t i = 0; i < 4; ++i) row[4 * x + i] = scratch[i * width + x];
}

}  // namespace

std::size_t PsdLayout::RowBytes() const {
    return PackedRowBytes(size.width, depth);
}

Result<PsdPlanes> PsdPlanes::Open(ByteView data, const PsdLayout& layout) {
    PsdPlanes planes(layout);
    switch (layout.coding) {
        case PsdCoding::Raw:
            planes.data_ = data;
            break;
        case PsdCoding::PackBits:
            if (!planes.ReadRowLengths(data)) return Error{kNoRows};
            break;
        case PsdCoding::Zip:
        case PsdCoding::ZipPredicted:
            if (!planes.Inflate(data)) return Error{"not enough memory"};
            if (layout.coding == PsdCoding::ZipPredicted) planes.UndoPrediction();
            break;
    }
    return planes;
}

bool PsdPlanes::ReadRowLengths(ByteView data) {
    const auto height = static_cast<std::size_t>(layout_.size.height);
    const std::size_t wordBytes = layout_.isLarge ? 4 : 2;
    const std::size_t table = static_cast<std::size_t>(layout_.channels) * height * wordBytes;
    if (data.size() < table) return false;
    const std::size_t rows = static_cast<std::size_t>(layout_.used) * height;
    ByteReader lengths(data);
    offsets_.reserve(rows + 1);
    offsets_.push_back(0);
    for (std::size_t i = 0; i < rows; ++i)
        offsets_.push_back(offsets_.back() + (layout_.isLarge ? lengths.U32Be() : lengths.U16Be()));
    data_ = data.subspan(table);
    return true;
}

bool PsdPlanes::Inflate(ByteView data) {
    const std::size_t count = layout_.RowBytes() * static_cast<std::size_t>(layout_.used) *
                              static_cast<std::size_t>(layout_.size.height);
    inflated_ = PixelBuffer::TryAllocate(count);
    if (!inflated_) return false;
    data_ = ByteView(inflated_.Data(), InflateInto(data, inflated_.Data(), count));
    return true;
}

void PsdPlanes::UndoPrediction() {
    const std::size_t rowBytes = layout_.RowBytes();
    std::vector<std::uint8_t> scratch;
    for (std::size_t at = 0; at + rowBytes <= data_.size(); at += rowBytes) {
        std::uint8_t* row = inflated_.Data() + at;
        if (layout_.depth == 32)
            UndoRow32(row, rowBytes, scratch);
        else if (layout_.depth == 16)
            UndoRow16(row, rowBytes);
        else
            UndoRow8(row, rowBytes);
    }
}

const std::uint8_t* PsdPlanes::Row(int channel, int y, std::uint8_t* scratch) {
    const std::size_t row =
        static_cast<std::size_t>(channel) * static_cast<std::size_t>(layout_.size.height) +
        static_cast<std::size_t>(y);
    const std::size_t rowBytes = layout_.RowBytes();
    if (layout_.coding != PsdCoding::PackBits) {
        if (data_.size() < rowBytes || row * rowBytes > data_.size() - rowBytes) return nullptr;
        return data_.data() + row * rowBytes;
    }
    const std::size_t from = offsets_[row];
    const std::size_t to = offsets_[row + 1];
    if (to > data_.size()) return nullptr;
    if (!UnpackBits(data_.subspan(from, to - from), scratch, rowBytes)) anyRowWasShort_ = true;
    return scratch;
}

}  // namespace lumo::imaging::codecs
