#pragma once

#include <random>
#include <string>
#include <string_view>

namespace lumo::test {

/// Numbers from 0 to below `bound`; the same on every machine for the same seed, which the
/// distributions of the standard library are not.
inline std::size_t Below(std::mt19937& random, std::size_t bound) {
    return random() % bound;
}

/// Up to `maxLength` characters of the alphabet.
inline std::string RandomText(std::mt19937& random, std::size_t maxLength,
                              std::string_view alphabet) {
    std::string text(Below(random, maxLength + 1), '\0');
    for (char& c : text) c = alphabet[Below(random, alphabet.size())];
    return text;
}

/// Up to `maxLength` bytes of any value.
inline std::string RandomBytes(std::mt19937& random, std::size_t maxLength) {
    std::string bytes(Below(random, maxLength + 1), '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    return bytes;
}

/// One of them.
template <class Range>
const auto& Pick(std::mt19937& random, const Range& range) {
    return range[Below(random, std::size(range))];
}

}  // namespace lumo::test
