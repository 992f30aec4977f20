#include "script/templates.h"

#include <utility>

#include "script/characters.h"
#include "script/names.h"

namespace lumo::script {

namespace {

constexpr std::string_view kNoParams = "0";
constexpr std::string_view kSubroutineInfo =
    "7,\"This is a script for use as\",\"a subroutine. It has no\",\"START image loop or\","
    "\"END image loop\",\"It cannot be batch\",\"processed by itself.\",\"\",";
constexpr std::size_t kCaptionCharacters = 30;

}  // namespace

Script NewScript(std::string_view startDefault, std::string_view outputDefault) {
    Script script;
    script.Add(names::kStartImageLoop, startDefault);
    script.Add(names::kOutputSetup, outputDefault);
    script.Add(names::kEndImageLoop, kNoParams);
    return script;
}

Script NewSubroutine() {
    Script script;
    script.Add(names::kScriptInfo, kSubroutineInfo);
    return script;
}

void EnsureMarkers(Script& script, std::string_view startDefault) {
    if (script.Find(names::kEndImageLoop) < 0) script.Add(names::kEndImageLoop, kNoParams);
    if (script.Find(names::kStartImageLoop) < 0)
        script.Insert(0, names::kStartImageLoop, startDefault);
}

void RemoveMarkers(Script& script) {
    // In one pass: a hostile file may hold a million of them.
    Script kept;
    for (int i = 0; i < script.Count(); ++i)
        if (!IsMarker(script.NameAt(i))) kept.Add(script.NameAt(i), script.ParamsAt(i));
    script = std::move(kept);
}

bool IsMarker(std::string_view name) {
    return name == names::kStartImageLoop || name == names::kEndImageLoop;
}

std::string ScriptCaption(std::string_view fileTitle) {
    std::string caption = "Script name: " + std::string(fileTitle);
    return CountCharacters(caption) > kCaptionCharacters ? std::string(fileTitle) : caption;
}

}  // namespace lumo::script
