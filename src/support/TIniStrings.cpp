#include "TIniStrings.h"

#include "rtl/SafeFile.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace tarn {
namespace {

/// A key line taken apart. A line without "=", or with nothing before it, is all key.
struct TKeyLine {
    explicit TKeyLine(std::string_view line) {
        const std::size_t mark = line.find('=');
        IsBare = mark == std::string_view::npos || mark == 0;
        Key = IsBare ? line : line.substr(0, mark);
        if (!IsBare) Value = line.substr(mark + 1);
    }

    std::string_view Key, Value;
    bool IsBare;
};

} // namespace

/// Fills a document line by line; the lines are parts of its source. The lists are built in one
/// go, each at its end.
class TIniParser {
public:
    explicit TIniParser(TIniStrings& document) : FDocument(document) {}
    TIniParser(const TIniParser&) = delete;
    TIniParser& operator=(const TIniParser&) = delete;
    ~TIniParser() {
        EndSection();
        FDocument.FSections.Build(FSections);
    }

    void operator()(std::string_view line) {
        if (line.empty() || line.front() == ';') return;
        if (line.front() == '[' && line.back() == ']')
            BeginSection(line.substr(1, line.size() - 2));
        else if (FSection)
            AddKey(TKeyLine(line));
    }

private:
    void BeginSection(std::string_view name) {
        EndSection();
        FSection = &FDocument.FMemory.NewSection(name);
        FSections.push_back(FSection);
    }
    void EndSection() {
        if (FSection) FSection->FKeys.Build(FKeys);
        FKeys.clear();
    }
    void AddKey(const TKeyLine& line) {
        if (line.IsBare && FDocument.IgnoreBareLines) return;
        FKeys.push_back(&FDocument.FMemory.NewKey(line.Key, line.Value));
    }

    TIniStrings& FDocument;
    TIniSection* FSection = nullptr;
    std::vector<TSequenceNode*> FSections;
    std::vector<TSequenceNode*> FKeys; ///< of the current section
};

// --- TIniMemory -------------------------------------------------------------------------------

std::string_view TIniMemory::Keep(std::string_view text) {
    if (text.empty()) return {};
    auto* const copy = static_cast<char*>(FTexts.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), copy);
    return {copy, text.size()};
}

void TIniMemory::Drop(std::string_view text) {
    // The order of std::less is total, also where the texts are parts of different blocks.
    const std::less<const char*> before;
    const char* const source = FSource.data();
    const bool inSource =
        !before(text.data(), source) && before(text.data(), source + FSource.size());
    if (text.empty() || inSource) return;
    FTexts.deallocate(const_cast<char*>(text.data()), text.size(), 1);
}

TIniKey& TIniMemory::NewKey(std::string_view name, std::string_view value) {
    return FKeys.New(name, value);
}

void TIniMemory::FreeKey(TIniKey& key) {
    Drop(key.Name);
    Drop(key.Value.Text());
    FKeys.Free(key);
}

TIniSection& TIniMemory::NewSection(std::string_view name) {
    return FSections.New(name, *this);
}

void TIniMemory::FreeSection(TIniSection& section) {
    Drop(section.Name);
    FSections.Free(section);
}

void TIniMemory::Restart(std::string&& source) {
    // Keys and texts hold nothing but this memory: no destructor needs to run.
    FSections.Release();
    FKeys.Release();
    FTexts.release();
    FSource = std::move(source);
}

// --- TIniSection ------------------------------------------------------------------------------

TIniKey& TIniSection::At(int index) const {
    if (index < 0 || index >= Count()) throw EStringListError(Format(SListIndexError, {index}));
    return FKeys.At(index);
}

const std::string& TIniSection::Get(int index) const {
    const TIniKey& key = At(index);
    if (!FGiven) FGiven = std::make_unique<std::unordered_map<const TIniKey*, std::string>>();
    return FGiven->try_emplace(&key, key.Name).first->second;
}

TIniKey& TIniSection::Add(std::string_view key, std::string_view value) {
    const std::string_view name = FMemory.Keep(key);
    TIniKey& added = FMemory.NewKey(name, FMemory.Keep(value));
    Changing();
    FKeys.Add(added);
    return added;
}

void TIniSection::SetValue(TIniKey& key, std::string_view value) {
    const std::string_view old = key.Value.FText;
    key.Value.FText = FMemory.Keep(value);
    FMemory.Drop(old);
}

void TIniSection::Rename(TIniKey& key, std::string_view name) {
    const std::string_view old = key.Name;
    const std::string_view kept = FMemory.Keep(name);
    Changing();
    FKeys.Rename(key, kept);
    FMemory.Drop(old);
}

void TIniSection::Remove(TIniKey& key) {
    Changing();
    FKeys.Remove(key);
    FMemory.FreeKey(key);
}

void TIniSection::SetSorted(bool value) {
    Changing();
    FKeys.SetSorted(value);
}

void TIniSection::RequireUnsorted() const {
    if (Sorted()) throw EStringListError("operation not allowed on a sorted string list");
}

void TIniSection::Put(int index, std::string_view s) {
    RequireUnsorted();
    Rename(At(index), s);
}

void TIniSection::PutObject(int index, TObject* object) {
    if (object != &At(index).Value)
        throw EStringListError("the values of an INI section cannot be replaced");
}

void TIniSection::InsertObject(int index, std::string_view s, TObject* object) {
    RequireUnsorted();
    if (index != Count()) (void)At(index);
    if (object) throw EStringListError("the values of an INI section cannot be replaced");
    TIniKey& key = FMemory.NewKey(FMemory.Keep(s), {});
    Changing();
    FKeys.Insert(index, key);
}

int TIniSection::AddObject(std::string_view s, TObject* object) {
    if (object) throw EStringListError("the values of an INI section cannot be replaced");
    return TNamedSequence<TIniKey>::IndexOf(Add(s, {}));
}

void TIniSection::Clear() {
    const bool sorted = Sorted();
    Changing();
    FKeys.Dispose([this](TIniKey& key) { FMemory.FreeKey(key); });
    FKeys.SetSorted(sorted);
}

int TIniSection::IndexOf(std::string_view s) const {
    const TIniKey* const key = Find(s);
    return key ? TNamedSequence<TIniKey>::IndexOf(*key) : -1;
}

// --- TIniStrings: the whole document -----------------------------------------------------------

TIniStrings::TIniStrings(std::string_view fileName) : TCustomIniFile(fileName) {
    LoadValues();
}

void TIniStrings::Clear(std::string&& source) {
    FSections.Dispose([](TIniSection& section) { std::destroy_at(&section); });
    FMemory.Restart(std::move(source));
}

template <class F> void TIniStrings::Parse(std::string&& source, F&& forEachLine) {
    const bool sectionSorted = SectionSorted();
    const bool keySorted = std::exchange(FKeySorted, false);
    Clear(std::move(source));
    forEachLine(FMemory.Source(), TIniParser(*this));
    SetSectionSorted(sectionSorted);
    SetKeySorted(keySorted);
}

void TIniStrings::LoadValues() {
    std::string text;
    bool found = !FileName().empty();
    try {
        if (found) text = LoadFileText(FileName());
    } catch (const EFileError& error) {
        if (error.Kind() != feMissing) throw;
        found = false;
    }
    FHasMark = text.starts_with(Utf8Mark);
    if (FHasMark) text.erase(0, Utf8Mark.size());
    if (found)
        SetText(std::move(text));
    else
        Clear();
}

void TIniStrings::SetStrings(const TStrings& lines) {
    // A line may hold line breaks of its own: the lines are told apart by their sizes.
    // The sizes are kept: the lines may be a section of this document, which ends.
    std::string source;
    std::vector<std::size_t> sizes;
    for (int i = 0; i < lines.Count(); ++i) {
        source += lines[i];
        sizes.push_back(lines[i].size());
    }
    Parse(std::move(source), [&sizes](std::string_view left, TIniParser&& take) {
        for (const std::size_t size : sizes) {
            take(left.substr(0, size));
            left.remove_prefix(size);
        }
    });
}

void TIniStrings::SetText(std::string text) {
    Parse(std::move(text),
          [](std::string_view source, TIniParser&& take) { ForEachLine(source, take); });
}

template <class F> void TIniStrings::ForEachLineOut(F&& line) const {
    for (const TIniSection* section = FSections.First(); section;
         section = TNamedSequence<TIniSection>::Next(*section)) {
        line("[", section->Name, "]");
        for (const TIniKey* key = section->First(); key; key = TIniSection::Next(*key)) {
            const std::string_view value = key->Value.Text();
            line(key->Name, value.empty() ? "" : "=", value);
        }
        line("", "", "");
    }
}

void TIniStrings::GetStrings(TStrings& lines) const {
    TStringList all;
    ForEachLineOut([&all](std::string_view start, std::string_view middle, std::string_view end) {
        all.Add(std::string(start).append(middle).append(end));
    });
    lines.AddStrings(all);
}

std::string TIniStrings::GetText() const {
    std::string text;
    ForEachLineOut([&text](std::string_view start, std::string_view middle, std::string_view end) {
        text.append(start).append(middle).append(end).append(LineBreak);
    });
    return text;
}

void TIniStrings::UpdateFile() {
    SaveFileText(FileName(), (FHasMark ? std::string(Utf8Mark) : std::string()) + GetText());
}

void TIniStrings::SetKeySorted(bool value) {
    if (value == FKeySorted) return;
    for (TIniSection* section = FSections.First(); section;
         section = TNamedSequence<TIniSection>::Next(*section))
        section->SetSorted(value);
    FKeySorted = value;
}

void TIniStrings::Sort() {
    SetSectionSorted(true);
    SetKeySorted(true);
}

void TIniStrings::UnSort() {
    SetSectionSorted(false);
    SetKeySorted(false);
}

// --- TIniStrings: sections and keys ------------------------------------------------------------

TIniSection* TIniStrings::AddSection(std::string_view name) {
    TIniSection& section = FMemory.NewSection(FMemory.Keep(name));
    FSections.Add(section);
    return &section;
}

TIniKey* TIniStrings::FindKey(std::string_view section, std::string_view key) const {
    const TIniSection* const keys = GetSection(section);
    return keys ? keys->Find(key) : nullptr;
}

bool TIniStrings::HasKey(std::string_view section, std::string_view key) const {
    return FindKey(section, key) != nullptr;
}

std::string TIniStrings::ReadString(std::string_view section, std::string_view key,
                                    std::string_view defaultValue) const {
    const TIniKey* const found = FindKey(section, key);
    return std::string(found ? found->Value.Text() : defaultValue);
}

void TIniStrings::WriteString(std::string_view section, std::string_view key,
                              std::string_view value) {
    TIniSection* keys = GetSection(section);
    if (!keys) {
        keys = AddSection(section);
        keys->SetSorted(FKeySorted);
    }
    if (TIniKey* const found = keys->Find(key))
        keys->SetValue(*found, value);
    else
        DoAddString(*keys, std::string(key).append("=").append(value));
}

void TIniStrings::AddString(std::string_view section, std::string_view line) {
    if (TIniSection* const keys = GetSection(section)) DoAddString(*keys, line);
}

void TIniStrings::DoAddString(TIniSection& section, std::string_view line) const {
    const TKeyLine parts(line);
    if (parts.IsBare && IgnoreBareLines) return;
    section.Add(parts.Key, parts.Value);
}

void TIniStrings::ReplaceString(std::string_view section, std::string_view oldKey,
                                std::string_view newKey) {
    TIniSection* const keys = GetSection(section);
    if (TIniKey* const key = keys ? keys->Find(oldKey) : nullptr) keys->Rename(*key, newKey);
}

void TIniStrings::DeleteKey(std::string_view section, std::string_view key) {
    TIniSection* const keys = GetSection(section);
    if (TIniKey* const found = keys ? keys->Find(key) : nullptr) keys->Remove(*found);
}

void TIniStrings::EraseSection(std::string_view section) {
    TIniSection* const keys = GetSection(section);
    if (!keys) return;
    FSections.Remove(*keys);
    keys->Clear();
    FMemory.FreeSection(*keys);
}

// --- TIniStrings: lists ------------------------------------------------------------------------

void TIniStrings::ReadSections(TStrings& sections) const {
    TStringList names;
    for (const TIniSection* section = FSections.First(); section;
         section = TNamedSequence<TIniSection>::Next(*section))
        names.Add(section->Name);
    sections.Assign(&names);
}

void TIniStrings::ReadSection(std::string_view section, TStrings& keys) const {
    TStringList names;
    if (const TIniSection* const found = GetSection(section))
        for (const TIniKey* key = found->First(); key; key = TIniSection::Next(*key))
            names.Add(key->Name);
    keys.Assign(&names);
}

void TIniStrings::ReadSectionValues(std::string_view section, TStrings& lines) const {
    TStringList values;
    if (const TIniSection* const found = GetSection(section))
        for (const TIniKey* key = found->First(); key; key = TIniSection::Next(*key)) {
            const std::string_view value = key->Value.Text();
            std::string line(key->Name);
            if (!value.empty()) line.append("=").append(value);
            values.Add(line);
        }
    lines.Assign(&values);
}

} // namespace tarn
