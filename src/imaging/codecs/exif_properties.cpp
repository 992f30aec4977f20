#include "imaging/codecs/exif_properties.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "imaging/codecs/jpeg_segments.h"
#include "imaging/codecs/tiff_words.h"
#include "imaging/codecs/unicode.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_view_literals;
using platform::Error;

constexpr std::string_view kNewPayload = "Exif\0\0II*\0\0\0\0\0"sv;
constexpr std::size_t kFirstTableAt = 4;  // where a block says where its main table is

constexpr std::uint16_t kTitle = 0x9C9B, kComments = 0x9C9C, kAuthor = 0x9C9D, kKeywords = 0x9C9E,
                        kSubject = 0x9C9F;
constexpr std::uint16_t kExifTable = 0x8769, kInteroperabilityTable = 0xA005;
constexpr std::array<std::uint16_t, 4> kTablePointers{kExifTable, kInteroperabilityTable, 0x8825,
                                                      0x14A};  // the others: places, further ones
constexpr std::array<std::uint8_t, 4> kNowhere{0xFF, 0xFF, 0xFF, 0xFF};
constexpr std::uint16_t kByte = 1, kLong = 4, kTable = 13;
constexpr std::array<std::uint8_t, 14> kBytesOfType{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};

bool IsProperty(std::uint16_t tag) {
    return tag >= kTitle && tag <= kSubject;
}

struct Entry {
    std::uint16_t tag = 0, type = 0;
    std::uint32_t count = 0;
    std::array<std::uint8_t, 4> field{};  // the value, or its place
    Bytes value;                          // longer than the field, to be written; else empty
};

/// The tables in their order: each is reached by a pointer in the one before.
enum Table { kMain, kExif, kInteroperability, kTableCount };
constexpr std::array<std::uint16_t, kTableCount> kPointerTo{0, kExifTable, kInteroperabilityTable};

struct TableState {
    bool present = false;    // with entries, read or new
    bool untouched = false;  // cannot be read: its pointer stays as it is
    std::size_t at = 0;      // in the old block; 0: there is none
    std::vector<Entry> entries;
    std::array<std::uint8_t, 4> next{};  // place of the table that follows, as stored

    std::size_t Bytes() const { return 2 + entries.size() * kTiffEntryBytes + next.size(); }
    Entry* Find(std::uint16_t tag) {
        const auto found = std::ranges::find(entries, tag, &Entry::tag);
        return found == entries.end() ? nullptr : &*found;
    }
    /// Replaces the entry of that tag, or puts it before the first one with a higher tag.
    void Put(Entry entry) {
        present = true;
        if (Entry* old = Find(entry.tag)) {
            *old = std::move(entry);
            return;
        }
        const auto higher = std::ranges::find_if(
            entries, [&](const Entry& other) { return other.tag > entry.tag; });
        entries.insert(higher, std::move(entry));
    }
};

class ExifBlock {
  public:
    /// False if the block is damaged.
    bool Read(ByteView block);
    void Put(Table table, std::uint16_t tag, std::string_view text);
    bool HasTitle() { return tables_[kMain].Find(kTitle) != nullptr; }
    /// Changed tables and their texts behind everything else.
    Bytes Write();

  private:
    bool ReadTable(TableState& table);
    bool LeadsOut(const Entry& entry) const;
    void ReadSubTable(Table table);
    void DropOwnEnd();
    std::optional<ByteView> OutsideValue(const Entry& entry) const;

    Bytes block_;
    TiffWords words_{false};
    std::array<TableState, kTableCount> tables_;
};

bool ExifBlock::ReadTable(TableState& table) {
    if (table.at < 8 || table.at > block_.size() || block_.size() - table.at < 6) return false;
    const std::size_t count = words_.Get16(&block_[table.at]);
    if ((block_.size() - table.at - 6) / kTiffEntryBytes < count) return false;
    const std::uint8_t* from = &block_[table.at + 2];
    for (std::size_t i = 0; i < count; ++i, from += kTiffEntryBytes) {
        Entry entry{words_.Get16(from), words_.Get16(from + 2), words_.Get32(from + 4)};
        std::copy_n(from + 8, entry.field.size(), entry.field.begin());
        if (LeadsOut(entry)) entry.field = kNowhere;
        table.entries.push_back(std::move(entry));
    }
    std::copy_n(from, table.next.size(), table.next.begin());
    if (words_.Get32(from) >= block_.size()) table.next = kNowhere;
    table.present = true;
    return true;
}

void ExifBlock::ReadSubTable(Table which) {
    TableState& table = tables_[which];
    const Entry* pointer = tables_[which - 1].Find(kPointerTo[which]);
    if (pointer == nullptr) return;
    table.at = words_.Get32(pointer->field.data());
    const bool twice = std::any_of(tables_.begin(), tables_.begin() + which,
                                   [&](const TableState& other) { return other.at == table.at; });
    const bool isPlace = pointer->type == kLong || pointer->type == kTable;
    if (isPlace && pointer->count == 1 && !twice && ReadTable(table)) return;
    table = {.untouched = true};
}

/// True if the value or table that an entry points at is not in the block. It must not be found
/// there either when the block has grown, so such a place is replaced by one beyond any block.
bool ExifBlock::LeadsOut(const Entry& entry) const {
    if (entry.type >= kBytesOfType.size()) return false;
    const std::uint64_t bytes = std::uint64_t{entry.count} * kBytesOfType[entry.type];
    const std::size_t at = words_.Get32(entry.field.data());
    const bool pointsAtTable = std::ranges::find(kTablePointers, entry.tag) != kTablePointers.end();
    if (bytes <= 4) return pointsAtTable && at >= block_.size();
    return at > block_.size() || block_.size() - at < bytes;
}

/// The value of an entry that lies outside of it; none if it lies in the entry or nowhere.
std::optional<ByteView> ExifBlock::OutsideValue(const Entry& entry) const {
    if (entry.type >= kBytesOfType.size()) return std::nullopt;
    const std::uint64_t bytes = std::uint64_t{entry.count} * kBytesOfType[entry.type];
    const std::size_t at = words_.Get32(entry.field.data());
    if (bytes <= 4 || at > block_.size() || block_.size() - at < bytes) return std::nullopt;
    return ByteView(block_).subspan(at, static_cast<std::size_t>(bytes));
}

/// What an earlier change put at the end of the block is taken away, so that a picture whose
/// properties change often does not grow: tables and property texts that fill the block from the
/// main table to its end without a gap, with nothing else among them.
void ExifBlock::DropOwnEnd() {
    const std::size_t end = tables_[kMain].at;
    std::size_t known = 0;
    for (const TableState& table : tables_) {
        if (!table.present || table.at < end) continue;
        known += table.Bytes();
        for (const Entry& entry : table.entries) {
            const auto value = OutsideValue(entry);
            if (!value || value->data() < block_.data() + end) continue;
            if (!IsProperty(entry.tag) || entry.type != kByte) return;
            known += value->size();
        }
    }
    if (known != block_.size() - end) return;
    for (TableState& table : tables_) {
        for (Entry& entry : table.entries) {
            const auto value = OutsideValue(entry);
            if (value && value->data() >= block_.data() + end)
                entry.value.assign(value->begin(), value->end());
        }
    }
    block_.resize(end);
}

bool ExifBlock::Read(ByteView block) {
    const auto words = TiffWords::Of(block);
    if (!words) return false;
    words_ = *words;
    block_.assign(block.begin(), block.end());
    TableState& main = tables_[kMain];
    main.at = words_.Get32(&block_[kFirstTableAt]);
    if (main.at == 0) return true;  // a block without any table
    if (!ReadTable(main)) return false;
    ReadSubTable(kExif);
    ReadSubTable(kInteroperability);
    DropOwnEnd();
    return true;
}

void ExifBlock::Put(Table which, std::uint16_t tag, std::string_view text) {
    TableState& table = tables_[which];
    if (std::any_of(tables_.begin(), tables_.begin() + which + 1,
                    [](const TableState& other) { return other.untouched; }))
        return;
    Bytes units = TextAsUtf16(text);
    Entry entry{tag, kByte, static_cast<std::uint32_t>(units.size())};
    if (units.size() <= entry.field.size())
        std::ranges::copy(units, entry.field.begin());
    else
        entry.value = std::move(units);
    table.Put(std::move(entry));
}

Bytes ExifBlock::Write() {
    block_.resize(block_.size() + block_.size() % 2);
    // The pointers are entries themselves, so they are in before lengths are counted.
    for (const Table which : {kInteroperability, kExif})
        if (tables_[which].present)
            tables_[which - 1].Put({.tag = kPointerTo[which], .type = kLong, .count = 1});
    std::size_t at = block_.size();
    for (TableState& table : tables_) {
        if (!table.present) continue;
        table.at = at;
        at += table.Bytes();
    }
    for (const Table which : {kExif, kInteroperability})
        if (tables_[which].present)
            words_.Put32(tables_[which - 1].Find(kPointerTo[which])->field.data(),
                         static_cast<std::uint32_t>(tables_[which].at));
    words_.Put32(&block_[kFirstTableAt], static_cast<std::uint32_t>(tables_[kMain].at));

    Bytes values;
    for (TableState& table : tables_) {
        if (!table.present) continue;
        block_.resize(block_.size() + table.Bytes());
        std::uint8_t* to = &block_[table.at];
        words_.Put16(to, static_cast<std::uint16_t>(table.entries.size()));
        to += 2;
        for (Entry& entry : table.entries) {
            if (!entry.value.empty()) {
                words_.Put32(entry.field.data(), static_cast<std::uint32_t>(at + values.size()));
                values.insert(values.end(), entry.value.begin(), entry.value.end());
            }
            words_.Put16(to, entry.tag);
            words_.Put16(to + 2, entry.type);
            words_.Put32(to + 4, entry.count);
            std::ranges::copy(entry.field, to + 8);
            to += kTiffEntryBytes;
        }
        std::ranges::copy(table.next, to);
    }
    block_.insert(block_.end(), values.begin(), values.end());
    return std::move(block_);
}

}  // namespace

Result<Bytes> AddProperties(ByteView payload, const PropertyTexts& texts) {
    const ByteView fresh(reinterpret_cast<const std::uint8_t*>(kNewPayload.data()),
                         kNewPayload.size());
    if (payload.empty()) payload = fresh;
    ExifBlock block;
    if (!IsExifPayload(payload) || !block.Read(payload.subspan(kExifPrefixBytes)))
        return Error{"EXIF: the block is damaged"};
    if (!texts.title.empty() || !block.HasTitle())
        for (const Table table : {kMain, kExif, kInteroperability})
            block.Put(table, kTitle, texts.title.empty() ? " "sv : std::string_view(texts.title));
    const std::pair<std::uint16_t, const std::string&> others[]{{kSubject, texts.subject},
                                                                {kAuthor, texts.author},
                                                                {kKeywords, texts.keywords},
                                                                {kComments, texts.comments}};
    for (const auto& [tag, text] : others)
        if (!text.empty()) block.Put(kMain, tag, text);

    Bytes changed = block.Write();
    changed.insert(changed.begin(), payload.begin(), payload.begin() + kExifPrefixBytes);
    return changed;
}

}  // namespace lumo::imaging::codecs
