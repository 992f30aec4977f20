#pragma once

#include <string>
#include <string_view>

namespace lumo::ops {

/// Collects the lines of a panel text that does not follow the pattern of script::PanelLine.
class PanelLines {
  public:
    PanelLines& Line(std::string_view words, std::string_view value = {}) {
        text_.append(words).append(value) += '\n';
        return *this;
    }
    const std::string& Text() const { return text_; }

  private:
    std::string text_;
};

}  // namespace lumo::ops
