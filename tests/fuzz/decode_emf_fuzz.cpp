// Corpus: emf

#include "fuzz/decode_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumo::fuzz::CheckDecoder(lumo::imaging::codecs::DecodeEmf, data, size);
    return 0;
}
