#include "support/jpeg_files.h"

#include <cstdio>
#include <cstdlib>

namespace lumo::test {
namespace {

[[noreturn]] void Unsound(const char* why) {
    std::fprintf(stderr, "JPG of a test: %s\n", why);
    std::abort();
}

int ByteAt(std::string_view file, std::size_t at) {
    if (at >= file.size()) Unsound("the file ends in its head");
    return static_cast<unsigned char>(file[at]);
}

/// Calls `take(code, payload)` for each segment; gives the place of the first scan.
template <class Take>
std::size_t Walk(std::string_view file, Take take) {
    if (ByteAt(file, 0) != 0xFF || ByteAt(file, 1) != 0xD8) Unsound("no start");
    std::size_t at = 2;
    for (;;) {
        const std::size_t from = at;
        if (ByteAt(file, at) != 0xFF) Unsound("no marker");
        while (ByteAt(file, at + 1) == 0xFF) ++at;
        const int code = ByteAt(file, at + 1);
        if (code == 0xDA) return from;
        const auto length =
            static_cast<std::size_t>(ByteAt(file, at + 2) * 256 + ByteAt(file, at + 3));
        if (length < 2) Unsound("length below 2");
        ByteAt(file, at + 1 + length);
        take(code, std::string(file.substr(at + 4, length - 2)));
        at += 2 + length;
    }
}

}  // namespace

std::string Segment(int code, std::string_view payload) {
    const std::size_t length = payload.size() + 2;
    std::string segment{'\xFF', static_cast<char>(code), static_cast<char>(length >> 8),
                        static_cast<char>(length & 0xFF)};
    return segment.append(payload);
}

std::string TextOf(imaging::codecs::ByteView bytes) {
    return {bytes.begin(), bytes.end()};
}

imaging::codecs::Bytes AsBytes(std::string_view text) {
    return {text.begin(), text.end()};
}

std::string ScanDataOf(std::string_view file) {
    return std::string(file.substr(Walk(file, [](int, const std::string&) {})));
}

std::vector<std::pair<int, std::string>> SegmentsOf(std::string_view file) {
    std::vector<std::pair<int, std::string>> segments;
    Walk(file,
         [&](int code, std::string payload) { segments.emplace_back(code, std::move(payload)); });
    return segments;
}

}  // namespace lumo::test
