// Corpus: jpg jpg/invalid
// Any bytes as a JPG whose header is rewritten: the picture data stays, the result is a sound head
// again, and a second rewrite without wishes changes nothing.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "imaging/codecs/jpeg_segments.h"
#include "imaging/codecs/stored_metadata.h"

namespace {

using namespace lumo::imaging::codecs;

void Check(bool holds) {
    if (!holds) std::abort();
}

Bytes Joined(const Bytes& head, ByteView rest) {
    Bytes file = head;
    file.insert(file.end(), rest.begin(), rest.end());
    return file;
}

bool Same(ByteView a, ByteView b) {
    return std::ranges::equal(a, b);
}

std::size_t Count(const JpegHead& head, int code) {
    return static_cast<std::size_t>(std::ranges::count(head.segments, code, &JpegSegment::code));
}

void CheckSplice(const JpegHead& head, const JpegChanges& changes) {
    const auto spliced = SpliceJpegHead(head, changes);
    Check(static_cast<bool>(spliced) == head.damage.empty());
    if (!spliced) return;
    const Bytes file = Joined(*spliced, head.rest);
    const JpegHead again = ReadJpegHead(file);
    Check(again.damage.empty() || again.segments.size() == kMaxSegments);
    if (!again.damage.empty()) return;
    Check(Same(again.rest, head.rest));
    Check(again.file.size() - again.rest.size() == spliced->size());
    const std::size_t added = changes.added.size();
    if (changes.keepAll) {
        Check(again.segments.size() <= head.segments.size() + added + 1);
        Check(again.segments.size() >= head.segments.size() + added);
    } else {
        Check(Count(again, kApp13) == 0 && Count(again, kApp1) == 0);
        Check(Count(again, kComment) == added);
    }
    for (const int kept : {kApp0, kApp2, kApp14, 0xDB, 0xC4, 0xC0})
        Check(Count(again, kept) == Count(head, kept));
    const auto same = SpliceJpegHead(again, {.keepAll = true});
    Check(same && Same(*same, *spliced));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const JpegHead head = ReadJpegHead({data, size});
    Check(head.segments.size() <= kMaxSegments);
    Check(head.damage.empty() != head.rest.empty());
    const Bytes comment{'n', 'e', 'w'}, exif{'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 0, 0, 0, 0};
    CheckSplice(head, {.keepAll = true});
    CheckSplice(head, {.keepAll = true, .added = {{kComment, comment}}, .exif = exif});
    CheckSplice(head, {.added = {{kComment, comment}, {kComment, {}}}});
    return 0;
}
