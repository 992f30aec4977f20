#include <algorithm>
#include <array>
#include <exception>
#include <new>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/decoders.h"
#include "imaging/last_error.h"

namespace lumo::imaging::codecs {
namespace {

using Decoder = Result<Decoded> (*)(ByteView, const DecodeOptions&);

bool StartsWith(ByteView file, std::string_view signature, std::size_t at = 0) {
    return file.size() >= at + signature.size() &&
           std::equal(signature.begin(), signature.end(), file.begin() + static_cast<long>(at),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

Decoder DecoderOf(Format format) {
    switch (format) {
        case Format::Jpeg:
            return DecodeJpeg;
        case Format::Tiff:
            return DecodeTiff;
        case Format::Bmp:
            return DecodeBmp;
        case Format::Png:
            return DecodePng;
        case Format::Gif:
            return DecodeGif;
        case Format::Pcx:
            return DecodePcx;
        case Format::Tga:
            return DecodeTga;
        case Format::Psd:
            return DecodePsd;
        case Format::Wmf:
        case Format::Apm:
            return DecodeWmf;
        case Format::Emf:
            return DecodeEmf;
        case Format::Raw:
            return DecodeRaw;
        case Format::Unknown:
            break;
    }
    return nullptr;
}

}  // namespace

Format FormatOfContent(ByteView file) {
    using namespace std::string_view_literals;
    if (StartsWith(file, "\xff\xd8\xff"sv)) return Format::Jpeg;
    if (StartsWith(file, "\x89PNG\r\n\x1a\n"sv)) return Format::Png;
    if (StartsWith(file, "GIF8"sv)) return Format::Gif;
    if (StartsWith(file, "8BPS"sv)) return Format::Psd;
    if (StartsWith(file, "BM"sv) || StartsWith(file, "BA"sv)) return Format::Bmp;
    if (StartsWith(file, "\xd7\xcd\xc6\x9a"sv)) return Format::Apm;
    if (StartsWith(file, "\x01\x00\x00\x00"sv) && StartsWith(file, " EMF"sv, 40))
        return Format::Emf;
    if (StartsWith(file, "\x01\x00\x09\x00"sv) || StartsWith(file, "\x02\x00\x09\x00"sv))
        return Format::Wmf;
    if (StartsWith(file, "FUJIFILMCCD-RAW"sv) || StartsWith(file, "FOVb"sv) ||
        StartsWith(file, "\0MRM"sv) || StartsWith(file, "HEAPCCDR"sv, 6))
        return Format::Raw;
    if (StartsWith(file, "II*\0"sv) || StartsWith(file, "MM\0*"sv) || StartsWith(file, "II+\0"sv) ||
        StartsWith(file, "MM\0+"sv))
        return Format::Tiff;
    if (file.size() >= 128 && file[0] == 10 && file[1] <= 5 && file[2] <= 1) return Format::Pcx;
    return Format::Unknown;
}

Result<Decoded> Decode(ByteView file, Format fromExtension, const DecodeOptions& options) {
    Format format = FormatOfContent(file);
    // Most camera files are TIFF containers that hold only a thumbnail for a TIFF reader.
    if (format == Format::Unknown || (format == Format::Tiff && fromExtension == Format::Raw))
        format = fromExtension;
    const Decoder decoder = DecoderOf(format);
    Result<Decoded> result = platform::Error{"not a picture of a known format"};
    if (file.empty()) {
        result = platform::Error{"the file is empty"};
    } else if (decoder != nullptr) {
        try {
            result = decoder(file, options);
        } catch (const std::bad_alloc&) {
            result = platform::Error{"not enough memory"};
        } catch (const std::exception& e) {
            result = platform::Error{e.what()};
        }
    }
    if (!result) SetLastError(result.Message());
    return result;
}

Result<Size> GetImageDims(ByteView file, Format fromExtension) {
    // Every decoder asks whether the size is allowed before it does more: none is.
    Size stated;
    const Result<Decoded> refused =
        Decode(file, fromExtension, {.limits = {.maxPixels = 0, .stated = &stated}});
    if (stated.IsEmpty()) return platform::Error{refused.Message()};
    return stated;
}

}  // namespace lumo::imaging::codecs
