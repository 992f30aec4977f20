#include "script/schema.h"

#include <algorithm>

#include "script/numbers.h"

namespace lumo::script {

namespace {

/// Without fields the count stands alone, as commands without parameters are stored.
std::string CountText(std::size_t count) {
    return IntegerToString(static_cast<long long>(count)) + (count == 0 ? "" : ",");
}

std::string QuoteFor(const FieldSpec& spec, std::string_view text) {
    // Names of files are kept to the byte; in texts a line ends in LF alone.
    const bool path = spec.kind == FieldKind::Path || spec.kind == FieldKind::Folder;
    return QuoteField(text, path ? CarriageReturns::Keep : CarriageReturns::Strip);
}

std::string_view PickLine(const PanelLine& line, const std::string& text) {
    if (line.lines.empty()) return {};
    for (std::size_t k = 0; k + 1 < line.lines.size(); ++k)
        if (text == IntegerToString(static_cast<long long>(k))) return line.lines[k];
    return line.lines.back();
}

}  // namespace

std::string FactoryString(std::span<const FieldSpec> fields) {
    std::string text = CountText(fields.size());
    for (const FieldSpec& field : fields) {
        const std::string_view quote = field.quoteFactory ? "\"" : "";
        text.append(quote).append(field.factory).append(quote) += ',';
    }
    return text;
}

std::string BuildParams(std::span<const FieldSpec> specs, std::span<const std::string> texts) {
    std::string params = CountText(specs.size());
    for (std::size_t i = 0; i < specs.size(); ++i) {
        const std::string_view text = i < texts.size() ? std::string_view(texts[i]) : "";
        if (specs[i].quoted) {
            params += QuoteFor(specs[i], text);
        } else {
            params += text;
        }
        params += ',';
    }
    return params;
}

Fields ReadParams(const CommandSpec& spec, std::string_view params) {
    return spec.parse ? spec.parse(params) : ParseParams(params);
}

std::string WriteParams(const CommandSpec& spec, std::span<const std::string> texts) {
    return spec.build ? spec.build(texts) : BuildParams(spec.fields, texts);
}

std::string PanelText(std::span<const PanelLine> panel, const Fields& fields) {
    std::string text;
    for (const PanelLine& line : panel) {
        switch (line.kind) {
            case PanelLine::Kind::Fixed:
                text += line.before;
                break;
            case PanelLine::Kind::Value:
                text.append(line.before).append(fields.Text(line.field)).append(line.after);
                break;
            case PanelLine::Kind::OneOf:
                text += PickLine(line, fields.Text(line.field));
                break;
            case PanelLine::Kind::WhenOn:
                if (!fields.Is(line.field, line.on)) continue;
                text += line.before;
                break;
        }
        text += '\n';
    }
    return text;
}

std::string PanelText(const CommandSpec& spec, const Fields& fields) {
    return spec.panelText ? spec.panelText(fields) : PanelText(spec.panel, fields);
}

}  // namespace lumo::script
