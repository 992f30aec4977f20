#include "reference/plain_script_reader.h"

#include <cctype>

namespace lumo::reference {

namespace {

int PlainInteger(const std::string& text) {
    std::size_t i = 0;
    while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
    bool minus = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) minus = text[i++] == '-';
    double value = 0;  // exact for all that matters here, and never overflows
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        value = value * 10 + (text[i] - '0');
    if (value > 1000) value = 1000;
    return static_cast<int>(minus ? -value : value);
}

/// Bytes with the number of those left.
class Tape {
  public:
    explicit Tape(std::string_view bytes) : bytes_(bytes) {}
    int Left() const { return static_cast<int>(bytes_.size()) - position_; }
    char Take() { return bytes_[static_cast<std::size_t>(position_++)]; }
    void Skip(int count) {
        for (int i = 0; i < count && Left() > 0; ++i) Take();
    }

  private:
    std::string_view bytes_;
    int position_ = 0;
};

/// The data lines of a file; true if "END" ended them.
bool ReadDataLines(std::string_view bytes, std::vector<std::string>& lines) {
    Tape tape(bytes);
    tape.Skip(7);
    std::string line;
    while (tape.Left() > 0) {
        const char c = tape.Take();
        if (c != '\r') {
            line += c;
            continue;
        }
        if (line == "END") return true;
        if (tape.Left() == 0) return false;
        if (line.empty() || line[0] != ';') lines.push_back(line);
        line.clear();
        tape.Skip(1);
    }
    return false;
}

bool BeginsRight(std::string_view bytes) {
    return bytes.substr(0, 5) == "BEGIN" || bytes.substr(0, 5) == "SUBRT";
}

}  // namespace

PlainFields ReadParams(std::string_view text) {
    PlainFields result;
    if (text.empty()) return result;
    std::size_t remaining = text.size();
    std::size_t i = 0;
    std::string count;
    while (text[i] != ',') {
        count += text[i++];
        if (--remaining == 0) return result;
    }
    for (int k = 0; k < PlainInteger(count) && k < 32; ++k) {
        if (i >= text.size()) break;
        ++i;
        if (i == text.size() && k > 0) break;  // the end of the text counts before the guard does
        if (--remaining == 0) return result;
        std::string& slot = result.slots[static_cast<std::size_t>(k)];
        bool quoted = false;
        for (; i < text.size() && (quoted || text[i] != ','); ++i) {
            if (text[i] == '"') {
                quoted = !quoted;
            } else {
                slot += text[i];
            }
        }
        if (quoted && text.back() == ',') slot.pop_back();
    }
    result.complete = true;
    return result;
}

PlainScript ReadScript(std::string_view bytes) {
    PlainScript result;
    if (bytes.size() < 9 || !BeginsRight(bytes)) return result;
    std::vector<std::string> lines;
    result.complete = ReadDataLines(bytes, lines);
    std::string old;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i % 2 == 0) {
            old = lines[i];
            std::string name = old;
            if (old == "Exit") name = "Exit (get next image)";
            if (old == "Start: Input setup") name = "START image loop (setup)";
            if (old == "Set: Canvas size") name = "Canvas size";
            if (old == "No final output") name = "Exit (get next image)";
            if (old == "Output (intermediate)") name = "Output setup";
            if (old == "End: Output setup") name = "Output setup";
            result.names.push_back(name);
            if (old == "End: Output setup") result.names.push_back("END image loop");
        } else {
            result.params.push_back(old == "Output (intermediate)" ? "11,0,,0,jpg,0,0,,,1,1,0,"
                                                                   : lines[i]);
            if (old == "End: Output setup") result.params.push_back("0");
        }
    }
    return result;
}

PlainScript ReadSubroutine(std::string_view bytes, std::string_view title) {
    PlainScript result;
    if (!BeginsRight(bytes)) return result;
    result.names.push_back("SUBROUTINE_START");
    result.params.push_back("1,\"" + std::string(title) + "\",");
    std::vector<std::string> lines;
    result.complete = ReadDataLines(bytes, lines);
    lines.resize((lines.size() + 1) / 2 * 2);
    for (std::size_t i = 0; i < lines.size(); i += 2) {
        if (lines[i] == "START image loop (setup)" || lines[i] == "END image loop") continue;
        result.names.push_back(lines[i]);
        result.params.push_back(lines[i + 1]);
    }
    if (result.complete) {
        result.names.push_back("SUBROUTINE_END");
        result.params.push_back("0");
    }
    return result;
}

}  // namespace lumo::reference
