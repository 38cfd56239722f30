#pragma once

#include "TNamedSequence.h"
#include "rtl/IniFiles.h"

#include <memory>
#include <memory_resource>
#include <unordered_map>

namespace tarn {

/// The value of a key, the key's companion in its section.
class TIniValue : public TObject {
public:
    explicit TIniValue(std::string_view text) : FText(text) {}
    std::string_view Text() const { return FText; }

private:
    friend class TIniSection;
    std::string_view FText;
};

/// One key of a section. Its texts lie in the memory of the document.
struct TIniKey : TSequenceNode {
    TIniKey(std::string_view name, std::string_view value) : Name(name), Value(value) {}

    std::string_view Name;
    TIniValue Value;
};

/// Memory for nodes of one type, given back one by one or all at once.
template <class Node> class TNodePool {
public:
    template <class... Args> Node& New(Args&&... args) {
        void* place = FFree;
        if (FFree)
            FFree = FFree->Right;
        else
            place = FNodes.allocate(sizeof(Node), alignof(Node));
        return *new (place) Node(std::forward<Args>(args)...);
    }
    void Free(Node& node) {
        std::destroy_at(&node);
        FFree = new (&node) TSequenceNode{.Right = FFree};
    }
    /// Gives back everything; no destructor runs.
    void Release() {
        FFree = nullptr;
        FNodes.release();
    }

private:
    std::pmr::monotonic_buffer_resource FNodes;
    TSequenceNode* FFree = nullptr; ///< those that were given back, linked to the right
};

class TIniSection;

/// The memory of a document: its source, sections, keys and texts.
class TIniMemory {
public:
    /// A copy of the text, which stays where it is.
    std::string_view Keep(std::string_view text);
    /// Gives back what Keep has made; a part of the source stays.
    void Drop(std::string_view text);
    /// A key of these texts, which must be kept already.
    TIniKey& NewKey(std::string_view name, std::string_view value);
    /// Gives back a key with its texts.
    void FreeKey(TIniKey& key);
    /// A section of this name, which must be kept already.
    TIniSection& NewSection(std::string_view name);
    /// Gives back a section without keys, with its name.
    void FreeSection(TIniSection& section);
    /// Gives back everything, where the sections are destroyed already, and keeps a new source,
    /// whose parts may be names and values.
    void Restart(std::string&& source);
    std::string_view Source() const { return FSource; }

private:
    std::string FSource;
    std::pmr::unsynchronized_pool_resource FTexts;
    TNodePool<TIniKey> FKeys;
    TNodePool<TIniSection> FSections;
};

/// The keys of one section, in their order, as a string list whose companions are the values. The
/// list owns them: another companion is refused with EStringListError. Equal keys may stand side by
/// side; a look-up gives the first one. Finding, adding, renaming and deleting a key takes O(log n)
/// at most.
class TIniSection : public TStrings, public TSequenceNode {
public:
    /// The memory is the document's, which frees what of the section lies in it.
    TIniSection(std::string_view name, TIniMemory& memory) : Name(name), FMemory(memory) {}

    int Count() const override { return FKeys.Count(); }
    const std::string& Get(int index) const override;
    /// Renames the key. Raises EStringListError in a sorted section.
    void Put(int index, std::string_view s) override;
    TObject* GetObject(int index) const override { return &At(index).Value; }
    void PutObject(int index, TObject* object) override;
    /// Inserts a key with an empty value; the companion must be null. Raises EStringListError in a
    /// sorted section.
    void InsertObject(int index, std::string_view s, TObject* object) override;
    /// In a sorted section the key goes to its place.
    int AddObject(std::string_view s, TObject* object) override;
    void Delete(int index) override { Remove(At(index)); }
    void Clear() override;
    int IndexOf(std::string_view s) const override;

    bool Sorted() const { return FKeys.Sorted(); }
    void SetSorted(bool value);

    /// The first key of that name; null when there is none.
    TIniKey* Find(std::string_view key) const { return FKeys.Find(key); }
    TIniKey* First() const { return FKeys.First(); }
    static TIniKey* Next(const TIniKey& key) { return TNamedSequence<TIniKey>::Next(key); }
    TIniKey& Add(std::string_view key, std::string_view value);
    void SetValue(TIniKey& key, std::string_view value);
    void Rename(TIniKey& key, std::string_view name);
    void Remove(TIniKey& key);

    const std::string_view Name; ///< of the section

private:
    friend class TIniParser;

    TIniKey& At(int index) const;
    void RequireUnsorted() const;
    /// To be called before a change: what Get has given out ends.
    void Changing() { FGiven.reset(); }

    TIniMemory& FMemory;
    TNamedSequence<TIniKey> FKeys;
    /// The names that Get has given out.
    mutable std::unique_ptr<std::unordered_map<const TIniKey*, std::string>> FGiven;
};

/// An INI document held in memory. A header line is "[NAME]"; a line before the first header, an
/// empty line and a line that begins with ";" are left out; any other line is a key with its value
/// behind the first "=". Nothing is trimmed. Names and keys are compared without case and may
/// repeat; a look-up finds the first one in the current order.
class TIniStrings : public TCustomIniFile {
public:
    TIniStrings() : TIniStrings(std::string_view()) {}
    /// Reads the file when there is one. Raises EFileError.
    explicit TIniStrings(std::string_view fileName);
    TIniStrings(const TIniStrings&) = delete;
    TIniStrings& operator=(const TIniStrings&) = delete;
    ~TIniStrings() override { Clear(); }

    /// Reads the file anew; without a file the document is empty. Raises EFileError, and then the
    /// document stays as it was.
    void LoadValues();
    /// Replaces the document by what the lines say.
    void SetStrings(const TStrings& lines);
    /// The same from the lines of a text.
    void SetText(std::string text);
    /// Appends the document to the lines: the header of each section, its keys, an empty line. A
    /// key of empty value is a line without "=".
    void GetStrings(TStrings& lines) const;
    /// The same as one text, each line followed by CR LF.
    std::string GetText() const;
    /// Writes the document to its file, at once or not at all. Raises EFileError.
    void UpdateFile() override;
    void Clear() { Clear({}); }

    /// Appends a section, also when there is one of that name.
    TIniSection* AddSection(std::string_view name);
    /// The first section of that name; null when there is none.
    TIniSection* GetSection(std::string_view name) const { return FSections.Find(name); }
    bool HasSection(std::string_view name) const { return GetSection(name) != nullptr; }
    bool HasKey(std::string_view section, std::string_view key) const;
    bool ValueExists(std::string_view section, std::string_view key) const override {
        return HasKey(section, key);
    }

    std::string ReadString(std::string_view section, std::string_view key,
                           std::string_view defaultValue) const override;
    /// Sets a value, with its section and key where they are missing. A new key that contains "="
    /// is split there; one without a name is stored with its value as a bare line.
    void WriteString(std::string_view section, std::string_view key,
                     std::string_view value) override;
    /// Adds a key line to a section, if there is that section.
    void AddString(std::string_view section, std::string_view line);
    /// Renames a key, which keeps its value; nothing happens when there is none.
    void ReplaceString(std::string_view section, std::string_view oldKey, std::string_view newKey);
    void DeleteKey(std::string_view section, std::string_view key) override;
    void EraseSection(std::string_view section) override;

    void ReadSections(TStrings& sections) const override;
    void ReadSection(std::string_view section, TStrings& keys) const override;
    void ReadSectionValues(std::string_view section, TStrings& lines) const override;

    bool SectionSorted() const { return FSections.Sorted(); }
    void SetSectionSorted(bool value) { FSections.SetSorted(value); }
    /// Whether the keys of every section are sorted; a section that AddSection made is not, until
    /// this is switched.
    bool KeySorted() const { return FKeySorted; }
    void SetKeySorted(bool value);
    void Sort();
    void UnSort();

    /// Leaves out key lines without a usable "=".
    bool IgnoreBareLines = false;

private:
    friend class TIniParser;

    TIniKey* FindKey(std::string_view section, std::string_view key) const;
    void DoAddString(TIniSection& section, std::string_view line) const;
    /// Makes the document anew from a source and restores the sorting. `forEachLine(source, take)`
    /// calls `take(std::string_view)` for each of its lines.
    template <class F> void Parse(std::string&& source, F&& forEachLine);
    void Clear(std::string&& source);
    /// Calls `line(start, middle, end)`, a line in three parts, for each line of the document.
    template <class F> void ForEachLineOut(F&& line) const;

    TIniMemory FMemory;
    TNamedSequence<TIniSection> FSections;
    bool FKeySorted = false;
    bool FHasMark = false; ///< the file begins with the mark of UTF-8
};

} // namespace tarn
