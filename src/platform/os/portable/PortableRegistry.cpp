// The registry as a text file: a section for each key, a line NAME=VALUE for each value. What is no
// such line stays as it is when the file is written.

#include "os/portable/TPortableOS.h"
#include "rtl/SafeFile.h"
#include "rtl/SysUtils.h"
#include "rtl/TStrings.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

namespace tarn {
namespace fs = std::filesystem;

namespace {

/// A value on one line: line breaks and backslashes as escapes.
std::string Escape(std::string_view value) {
    std::string text;
    for (const char c : value) {
        if (c == '\r')
            text += "\\r";
        else if (c == '\n')
            text += "\\n";
        else if (c == '\\')
            text += "\\\\";
        else
            text += c;
    }
    return text;
}

std::string Unescape(std::string_view text) {
    std::string value;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            value += text[i];
            continue;
        }
        const char c = text[++i];
        value += c == 'r' ? '\r' : c == 'n' ? '\n' : c;
    }
    return value;
}

using TLines = std::vector<std::string>;

/// The lines of the file; none when it is there but cannot be read. A missing file has no lines.
std::optional<TLines> ReadLines(const fs::path& file) {
    TLines lines;
    try {
        ForEachLine(LoadFileText(file.string()),
                    [&](std::string_view line) { lines.emplace_back(line); });
    } catch (const EFileError& error) {
        if (error.Kind() != feMissing) return std::nullopt;
    }
    return lines;
}

/// Replaces the file as a whole.
bool WriteLines(const fs::path& file, const TLines& lines) {
    std::error_code error;
    // The file behind a link is written; a link that leads nowhere has none.
    if (fs::is_symlink(file, error) && !fs::exists(file, error)) return false;
    if (file.has_parent_path()) fs::create_directories(file.parent_path(), error);
    std::string text;
    for (const std::string& line : lines) text.append(line) += '\n';
    try {
        SaveFileText(file.string(), text);
    } catch (const EFileError&) {
        return false;
    }
    return true;
}

/// The name of the section that a line begins; empty when it begins none.
std::string_view SectionOf(std::string_view line) {
    const std::string_view trimmed = Trim(line);
    if (!trimmed.starts_with('[') || !trimmed.ends_with(']')) return {};
    return trimmed.substr(1, trimmed.size() - 2);
}

/// The place of a section's header; the number of lines when there is none.
std::size_t FindSection(const TLines& lines, std::string_view key) {
    std::size_t at = 0;
    while (at < lines.size() && !SameText(SectionOf(lines[at]), key)) ++at;
    return at;
}

/// The place of a value's line in the section at `header`, or else of the section's end.
struct TValuePlace {
    std::size_t Line;
    bool Found;
};

TValuePlace FindValue(const TLines& lines, std::size_t header, std::string_view name) {
    for (std::size_t at = header + 1; at < lines.size(); ++at) {
        if (!SectionOf(lines[at]).empty()) return {at, false};
        const std::string_view line = lines[at];
        const std::size_t mark = line.find('=');
        if (mark != std::string_view::npos && SameText(Trim(line.substr(0, mark)), name))
            return {at, true};
    }
    return {lines.size(), false};
}

} // namespace

std::string TPortableOS::UserRegistryFile() {
    const auto variable = [](const char* name) -> std::string {
        const char* const value = std::getenv(name);
        return value ? value : "";
    };
    if (std::string file = variable("TARN_REGISTRY"); !file.empty()) return file;
    fs::path folder = variable("XDG_CONFIG_HOME");
    // The desktop's conventions ask for an absolute path there; anything else is ignored.
    if (!folder.is_absolute()) {
        const std::string home = variable("HOME");
        if (home.empty()) return {};
        folder = fs::path(home) / ".config";
    }
    return (folder / "tarnexperts" / "registry").string();
}

bool TPortableOS::OpenRegistryKey(std::string_view key) {
    if (FRegistryFile.empty()) return false;
    std::optional<TLines> lines = ReadLines(FRegistryFile);
    if (!lines) return false;
    if (FindSection(*lines, key) < lines->size()) return true;
    lines->push_back("[" + std::string(key) + "]");
    return WriteLines(FRegistryFile, *lines);
}

std::optional<std::string> TPortableOS::ReadRegistryString(std::string_view key,
                                                           std::string_view name) {
    if (FRegistryFile.empty()) return std::nullopt;
    const std::optional<TLines> lines = ReadLines(FRegistryFile);
    if (!lines) return std::nullopt;
    const TValuePlace place = FindValue(*lines, FindSection(*lines, key), name);
    if (!place.Found) return std::nullopt;
    const std::string& line = (*lines)[place.Line];
    return Unescape(std::string_view(line).substr(line.find('=') + 1));
}

bool TPortableOS::WriteRegistryString(std::string_view key, std::string_view name,
                                      std::string_view value) {
    if (FRegistryFile.empty()) return false;
    std::optional<TLines> lines = ReadLines(FRegistryFile);
    if (!lines) return false;
    if (FindSection(*lines, key) == lines->size()) lines->push_back("[" + std::string(key) + "]");
    const TValuePlace place = FindValue(*lines, FindSection(*lines, key), name);
    const std::string line = std::string(name).append("=").append(Escape(value));
    if (place.Found) {
        if ((*lines)[place.Line] == line) return true;
        (*lines)[place.Line] = line;
    } else
        lines->insert(lines->begin() + static_cast<std::ptrdiff_t>(place.Line), line);
    return WriteLines(FRegistryFile, *lines);
}

} // namespace tarn
