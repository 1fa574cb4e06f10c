// finding_json.cpp: findings written by RapidJSON.
#include "tools/finding_json.h"

#include <rapidjson/prettywriter.h>

namespace uti::tool {

namespace {

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

// Whatever bytes a source has, the output is UTF-8.
void writeText(Writer &writer, std::string_view text) {
    std::string whole;
    while (!text.empty())
        appendCharacter(whole, takeCharacter(text));
    writer.String(whole.data(), static_cast<rapidjson::SizeType>(whole.size()));
}

void writePlace(Writer &writer, Place place) {
    if (place.line == 0)
        return;
    writer.Key("line");
    writer.Uint(place.line);
    writer.Key("column");
    writer.Uint(place.column);
    writer.Key("length");
    writer.Uint(place.length);
}

void writeFinding(Writer &writer, const std::string &path, const Finding &finding) {
    writer.StartObject();
    writer.Key("file");
    writeText(writer, path);
    writePlace(writer, finding.place);
    writer.Key("severity");
    writer.String(finding.severity == Severity::error ? "error" : "warning");
    if (!finding.rule.empty()) {
        writer.Key("rule");
        writeText(writer, finding.rule);
    }
    writer.Key("text");
    writeText(writer, finding.text);
    if (!finding.notes.empty()) {
        writer.Key("notes");
        writer.StartArray();
        for (const auto &[place, text] : finding.notes) {
            writer.StartObject();
            writePlace(writer, place);
            writer.Key("text");
            writeText(writer, text);
            writer.EndObject();
        }
        writer.EndArray();
    }
    writer.EndObject();
}

} // namespace

void writeFindingsAsJson(std::span<const Diagnostics *const> files, std::ostream &out) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartArray();
    for (const Diagnostics *file : files)
        for (const Finding *finding : file->findings())
            writeFinding(writer, file->path(), *finding);
    writer.EndArray();
    out << buffer.GetString() << '\n';
}

} // namespace uti::tool
