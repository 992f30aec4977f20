#include "imaging/codecs/decoders.h"
namespace lumo::imaging::codecs {
#define STUB(name) __attribute__((weak)) Result<Decoded> name(ByteView, const DecodeOptions&) { return platform::Error{"stub"}; }
STUB(DecodeBmp) STUB(DecodePcx) STUB(DecodeTga) STUB(DecodePsd) STUB(DecodeWmf) STUB(DecodeEmf) STUB(DecodeRaw)
#define WSTUB(name) __attribute__((weak)) Result<Bytes> name(ConstImageView) { return platform::Error{"stub"}; }
WSTUB(EncodeBmp) WSTUB(EncodePcx) WSTUB(EncodeTga) WSTUB(EncodePsd)
__attribute__((weak)) Result<Bytes> EncodeMetafile(ConstImageView, Format) { return platform::Error{"stub"}; }
}
