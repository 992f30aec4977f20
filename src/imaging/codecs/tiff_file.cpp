#include "imaging/codecs/tiff_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>

namespace lumo::imaging::codecs {
namespace {

TiffFile& FileOf(void* self) {
    return *static_cast<TiffFile*>(self);
}

__attribute__((format(printf, 1, 0))) std::string OneLine(const char* format, va_list arguments) {
    std::array<char, 500> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    std::string line = text.data();
    std::ranges::replace_if(line, [](char c) { return static_cast<unsigned char>(c) < 32; }, ' ');
    return line;
}

}  // namespace

int TiffFile::OnError(TIFF*, void* self, const char*, const char* format, va_list arguments) {
    TiffFile& file = FileOf(self);
    if (file.error_.empty()) file.error_ = OneLine(format, arguments);
    return 1;
}

int TiffFile::OnWarning(TIFF*, void* self, const char*, const char* format, va_list arguments) {
    TiffFile& file = FileOf(self);
    if (file.warning_.empty()) file.warning_ = OneLine(format, arguments);
    return 1;
}

tmsize_t TiffFile::Read(void* target, tmsize_t count) {
    if (count < 0 || position_ > input_.size()) return 0;
    const auto wanted = static_cast<std::size_t>(count);
    const std::size_t given = std::min(wanted, input_.size() - static_cast<std::size_t>(position_));
    if (given > 0) std::memcpy(target, input_.data() + position_, given);
    position_ += given;
    return static_cast<tmsize_t>(given);
}

tmsize_t TiffFile::Write(const void* source, tmsize_t count) noexcept {
    const auto bytes = static_cast<std::size_t>(count);
    const auto begin = static_cast<std::size_t>(position_);
    try {
        if (begin + bytes > output_.size()) {
            if (begin + bytes > output_.capacity())
                output_.reserve(
                    std::max({begin + bytes, output_.capacity() * 2, expectedBytes_ + 65536}));
            output_.resize(begin + bytes);
        }
    } catch (const std::exception&) {
        return -1;
    }
    std::memcpy(output_.data() + begin, source, bytes);
    position_ += bytes;
    return count;
}

toff_t TiffFile::Seek(toff_t offset, int whence) {
    const std::uint64_t end = writing_ ? output_.size() : input_.size();
    if (whence == SEEK_CUR) offset += position_;
    if (whence == SEEK_END) offset += end;
    return position_ = offset;
}

void TiffFile::Start(const char* mode, std::size_t maxAllocation) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(
        TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    if (!options) return;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(maxAllocation));
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), OnWarning, this);
    const auto read = [](thandle_t self, void* target, tmsize_t count) {
        return FileOf(self).Read(target, count);
    };
    const auto write = [](thandle_t self, void* source, tmsize_t count) {
        return FileOf(self).Write(source, count);
    };
    const auto seek = [](thandle_t self, toff_t offset, int whence) {
        return FileOf(self).Seek(offset, whence);
    };
    const auto close = [](thandle_t) { return 0; };
    const auto size = [](thandle_t self) -> toff_t {
        const TiffFile& file = FileOf(self);
        return file.writing_ ? file.output_.size() : file.input_.size();
    };
    // Reading, the library works on the bytes where they are.
    const auto map = [](thandle_t self, void** base, toff_t* bytes) {
        const ByteView input = FileOf(self).input_;
        *base = const_cast<std::uint8_t*>(input.data());
        *bytes = input.size();
        return 1;
    };
    const auto unmap = [](thandle_t, void*, toff_t) {};
    tiff_ = TIFFClientOpenExt("", mode, this, read, write, seek, close, size, map, unmap,
                              options.get());
}

std::unique_ptr<TiffFile> TiffFile::Open(ByteView file, std::size_t maxAllocation) {
    std::unique_ptr<TiffFile> tiff(new TiffFile);
    tiff->input_ = file;
    tiff->Start("r", maxAllocation);
    return tiff;
}

std::unique_ptr<TiffFile> TiffFile::Create(bool big, std::size_t expectedBytes) {
    std::unique_ptr<TiffFile> tiff(new TiffFile);
    tiff->writing_ = true;
    tiff->expectedBytes_ = expectedBytes;
    tiff->Start(big ? "wl8" : "wl", 0);
    return tiff;
}

TiffFile::~TiffFile() {
    if (tiff_ != nullptr) TIFFClose(tiff_);
}

Bytes TiffFile::Finish() {
    const bool whole = TIFFWriteDirectory(tiff_) == 1 && error_.empty();
    TIFFClose(tiff_);
    tiff_ = nullptr;
    if (!whole || !error_.empty()) return {};
    return std::move(output_);
}

}  // namespace lumo::imaging::codecs
