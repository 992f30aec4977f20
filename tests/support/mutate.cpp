#include "support/mutate.h"

#include <algorithm>
#include <array>
#include <random>

namespace lumo::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::array<std::uint32_t, 14> kExtremes{
    0,      1,      2,      0x7F,    0x80,       0xFF,       0x100,
    0x7FFF, 0x8000, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

class Damage {
  public:
    Damage(Bytes& file, std::uint32_t seed)
        : file_(file), random_(seed), limit_(2 * file.size() + 64) {}

    void Once() {
        if (file_.empty()) file_.push_back(static_cast<std::uint8_t>(random_()));
        switch (Below(9)) {
            case 0:
                file_[Place()] ^= static_cast<std::uint8_t>(1U << Below(8));
                break;
            case 1:
                file_[Place()] = static_cast<std::uint8_t>(random_());
                break;
            case 2:
                SetNumber(1);
                break;
            case 3:
                SetNumber(2);
                break;
            case 4:
                SetNumber(4);
                break;
            case 5:
                Remove();
                break;
            case 6:
                CopyRun();
                break;
            case 7:
                Fill();
                break;
            default:
                file_.resize(Place());
                break;
        }
    }

  private:
    std::size_t Below(std::size_t count) { return random_() % count; }
    /// Half of the changes strike the first 512 bytes, where headers are.
    std::size_t Place() {
        return Below(Below(2) == 0 ? std::min<std::size_t>(file_.size(), 512) : file_.size());
    }
    std::size_t RunFrom(std::size_t first) {
        return 1 + Below(std::min<std::size_t>(file_.size() - first, 64));
    }

    void SetNumber(std::size_t bytes) {
        const std::size_t at = Place();
        const std::uint32_t value = kExtremes[Below(kExtremes.size())];
        const bool bigEndian = Below(2) == 0;
        for (std::size_t i = 0; i < bytes && at + i < file_.size(); ++i) {
            const std::size_t shift = 8 * (bigEndian ? bytes - 1 - i : i);
            file_[at + i] = static_cast<std::uint8_t>(value >> shift);
        }
    }
    void Remove() {
        const std::size_t first = Place();
        const auto begin = file_.begin() + static_cast<std::ptrdiff_t>(first);
        file_.erase(begin, begin + static_cast<std::ptrdiff_t>(RunFrom(first)));
    }
    /// Inserts a copy of a run at another place.
    void CopyRun() {
        const std::size_t first = Place();
        const std::size_t count = RunFrom(first);
        if (file_.size() + count > limit_) return;
        const Bytes run(file_.begin() + static_cast<std::ptrdiff_t>(first),
                        file_.begin() + static_cast<std::ptrdiff_t>(first + count));
        file_.insert(file_.begin() + static_cast<std::ptrdiff_t>(Place()), run.begin(), run.end());
    }
    void Fill() {
        const std::size_t first = Place();
        std::fill_n(file_.begin() + static_cast<std::ptrdiff_t>(first), RunFrom(first),
                    static_cast<std::uint8_t>(Below(2) == 0 ? 0 : 0xFF));
    }

    Bytes& file_;
    std::mt19937 random_;
    std::size_t limit_;
};

}  // namespace

Bytes Mutate(std::span<const std::uint8_t> file, std::uint32_t seed) {
    Bytes copy(file.begin(), file.end());
    Damage damage(copy, seed);
    for (std::uint32_t changes = 1 + (seed * 2654435761U >> 29); changes > 0; --changes)
        damage.Once();
    return copy;
}

}  // namespace lumo::test
