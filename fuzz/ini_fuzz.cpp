// Parses any bytes as INI text: printing and parsing again changes nothing, and look-ups find the
// first key of a name.

#include "TIniStrings.h"

#include <cstdint>
#include <cstdlib>

namespace {

/// The lines that are headers. A key "[...]" without a value is printed as one.
int HeaderLines(std::string_view text) {
    int count = 0;
    tarn::ForEachLine(text, [&count](std::string_view line) {
        count += line.starts_with('[') && line.ends_with(']');
    });
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn;
    TIniStrings ini;
    ini.SetText(std::string(reinterpret_cast<const char*>(data), size));
    TStringList sections;
    ini.ReadSections(sections);
    for (int i = 0; i < sections.Count(); ++i) {
        const TIniSection* const section = ini.GetSection(sections[i]);
        if (!section || (sections.IndexOf(sections[i]) == i && section->Name != sections[i]))
            std::abort();
        for (const TIniKey* key = section->First(); key; key = TIniSection::Next(*key)) {
            const TIniKey* const first = section->Find(key->Name);
            if (!first || !AnsiSameText(first->Name, key->Name)) std::abort();
        }
    }
    const std::string printed = ini.GetText();
    if (HeaderLines(printed) != sections.Count()) return 0;
    ini.SetText(printed);
    if (ini.GetText() != printed) std::abort();
    ini.Sort();
    const std::string sorted = ini.GetText();
    if (sorted.size() != printed.size()) std::abort();
    ini.SetText(sorted);
    if (ini.GetText() != sorted) std::abort();
    return 0;
}
