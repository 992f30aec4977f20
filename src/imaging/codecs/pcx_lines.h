#pragma once

// The coding of PCX: a byte with its two top bits set says how often the next byte stands; any
// other byte stands for itself.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

inline constexpr std::size_t kMaxPcxRun = 63;

/// Reads lines of a fixed number of bytes. Runs may go on from one line to the next.
class PcxLines {
  public:
    PcxLines(ByteView bytes, std::size_t lineBytes, bool runLengths);

    /// The next line, valid until the next call; null where the file ends before the line does.
    const std::uint8_t* Next();

    /// Where the next code stands.
    std::size_t Position() const { return at_; }

  private:
    bool Unpack();
    void CopyWords(std::uint8_t*& out, const std::uint8_t* end);

    ByteView bytes_;
    std::size_t lineBytes_;
    bool runLengths_;
    std::vector<std::uint8_t> line_;
    std::size_t at_ = 0;
    std::size_t run_ = 0;  // bytes of a run that the line before did not take
    std::uint8_t value_ = 0;
};

/// The codes of one plane of one line, in `codes`, which is reused from call to call.
ByteView PcxRuns(ByteView plane, std::vector<std::uint8_t>& codes);

}  // namespace lumo::imaging::codecs
