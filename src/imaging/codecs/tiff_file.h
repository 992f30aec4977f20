#pragma once

// A TIFF in memory behind a libtiff handle: no file, no global error handler, nothing printed.

#include <tiffio.h>

#include <memory>
#include <string>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

class TiffFile {
  public:
    /// Opens a file for reading at its first picture; `file` must outlive the object.
    /// `maxAllocation` bounds each block that the library takes, in bytes.
    static std::unique_ptr<TiffFile> Open(ByteView file, std::size_t maxAllocation);
    /// Starts an empty file; `big` chooses the variant with 64-bit offsets. `expectedBytes` of
    /// pixels are made room for.
    static std::unique_ptr<TiffFile> Create(bool big, std::size_t expectedBytes = 0);

    ~TiffFile();
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    /// Null if the file could not be opened.
    TIFF* Handle() const { return tiff_; }

    /// The length of a file that is read.
    std::size_t InputBytes() const { return input_.size(); }

    /// A field of the first directory, its default where it has one, else `fallback`.
    template <class T>
    T Field(std::uint32_t tag, T fallback = {}) const {
        T value = fallback;
        return TIFFGetFieldDefaulted(tiff_, tag, &value) == 1 ? value : fallback;
    }

    /// The first error that the library told, as one line; else the first warning; else empty.
    std::string Failure() const { return error_.empty() ? warning_ : error_; }
    const std::string& Warning() const { return warning_; }

    /// Ends writing and gives the file; empty, with Failure() set, if that failed.
    Bytes Finish();

  private:
    TiffFile() = default;
    void Start(const char* mode, std::size_t maxAllocation);
    __attribute__((format(printf, 4, 0))) static int OnError(TIFF*, void* self, const char* module,
                                                             const char* format, va_list);
    __attribute__((format(printf, 4, 0))) static int OnWarning(TIFF*, void* self,
                                                               const char* module,
                                                               const char* format, va_list);
    tmsize_t Read(void* target, tmsize_t count);
    tmsize_t Write(const void* source, tmsize_t count) noexcept;
    toff_t Seek(toff_t offset, int whence);

    ByteView input_;
    Bytes output_;
    bool writing_ = false;
    std::size_t expectedBytes_ = 0;
    std::uint64_t position_ = 0;
    std::string error_;
    std::string warning_;
    TIFF* tiff_ = nullptr;
};

}  // namespace lumo::imaging::codecs
