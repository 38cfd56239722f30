#pragma once

#include "rtl/TChunkedList.h"
#include "rtl/TObject.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace tarn {

/// An ordered list of strings with 0-based indexes, each with one optional companion object, which
/// the list refers to but does not own. An index outside the list raises EStringListError.
class TStrings : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    virtual int Count() const = 0;
    bool IsEmpty() const { return Count() == 0; }
    /// The string at the index; valid until the list changes.
    virtual const std::string& Get(int index) const = 0;
    const std::string& operator[](int index) const { return Get(index); }
    virtual void Put(int index, std::string_view s) = 0;
    virtual TObject* GetObject(int index) const = 0;
    virtual void PutObject(int index, TObject* object) = 0;

    virtual void InsertObject(int index, std::string_view s, TObject* object) = 0;
    virtual void Delete(int index) = 0;
    virtual void Clear() = 0;
    virtual int AddObject(std::string_view s, TObject* object);

    int Add(std::string_view s) { return AddObject(s, nullptr); }
    void Insert(int index, std::string_view s) { InsertObject(index, s, nullptr); }
    void AddStrings(const TStrings& source);
    virtual void Exchange(int index1, int index2);
    virtual void Move(int curIndex, int newIndex);

    /// The index of the first string that equals `s` by CompareStrings, -1 when none.
    virtual int IndexOf(std::string_view s) const;
    /// The index of the first string with that companion, -1 when none.
    int IndexOfObject(const TObject* object) const;
    /// The index of the first string "NAME=..." with that name without case, -1 when none.
    int IndexOfName(std::string_view name) const;
    /// The text behind "NAME=", empty when there is none.
    std::string Value(std::string_view name) const;
    /// Gives the first string "NAME=..." that value, or adds one; an empty value deletes the
    /// string. Raises EStringListError when the string of a sorted list would have to change.
    void SetValue(std::string_view name, std::string_view value);
    /// The part of the string before its first "=", empty when it has none.
    std::string Name(int index) const;
    /// Whether both lists hold the same strings, to the byte, in the same order.
    bool Equals(const TStrings& other) const;

    /// All lines, each followed by CR LF.
    std::string GetTextStr() const;
    /// The lines of a text that breaks at CR LF, lone CR or lone LF; a final break adds no line.
    virtual void SetTextStr(std::string_view text);
    /// The strings separated by commas, those with blanks, commas or quotes in double quotes.
    std::string GetCommaText() const;
    void SetCommaText(std::string_view text);

    /// The lines of a file. Raises EInOutError naming the file, which leaves the list as it is.
    void LoadFromFile(std::string_view fileName);
    /// Writes GetTextStr as the whole contents of a file, which holds the old text until the new
    /// one is complete. Raises EInOutError naming the file.
    void SaveToFile(std::string_view fileName) const;

    /// Between the two no change is reported; the pairs nest, the last EndUpdate reports. See
    /// UpdateOnce.
    void BeginUpdate();
    void EndUpdate();

    /// Copies strings and companions of another string list.
    void Assign(const TPersistent* source) override;

protected:
    /// The order of two strings: below, at or above 0. AnsiCompareText unless a list has its own.
    virtual int CompareStrings(std::string_view a, std::string_view b) const;
    virtual void SetUpdateState(bool updating);
    /// Stores the strings as "Strings", a list, unless it is empty or the same as the ancestor's.
    /// What is read takes the place of the strings there are; companions are not stored.
    void DefineProperties(TFiler& filer) override;
    bool Updating() const { return FUpdateCount > 0; }

private:
    void ReadStrings(TReader& reader);
    void WriteStrings(TWriter& writer) const;

    int FUpdateCount = 0;
};

/// Calls `line(std::string_view)` for each line of a text: it breaks at CR LF, lone CR or lone LF;
/// a final break adds no line.
template <class F> void ForEachLine(std::string_view text, F&& line) {
    // The next break of each kind is remembered until it is passed, so that a text with one kind
    // alone is walked once.
    const auto find = [text](char c, std::size_t from) {
        return std::min(text.find(c, from), text.size());
    };
    std::size_t lf = find('\n', 0);
    std::size_t cr = find('\r', 0);
    for (std::size_t at = 0; at < text.size();) {
        if (lf < at) lf = find('\n', at);
        if (cr < at) cr = find('\r', at);
        const std::size_t end = std::min(lf, cr);
        line(text.substr(at, end - at));
        at = end + (cr + 1 == lf ? 2 : 1);
    }
}

enum TDuplicates : std::uint8_t { dupIgnore, dupAccept, dupError };
inline constexpr std::string_view DuplicatesNames[] = {"dupIgnore", "dupAccept", "dupError"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TDuplicates> = EnumType("TDuplicates", DuplicatesNames);

/// A string list in memory, which takes and loses strings quickly at every place. A sorted list
/// keeps its strings in the order of CompareStrings.
class TStringList : public TStrings {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TStringList() = default;
    TStringList(std::initializer_list<std::string_view> lines);

    int Count() const override { return FItems.Count(); }
    const std::string& Get(int index) const override { return At(index).Text; }
    void Put(int index, std::string_view s) override;
    TObject* GetObject(int index) const override { return At(index).Object; }
    void PutObject(int index, TObject* object) override;
    /// Raises EStringListError on a sorted list.
    void InsertObject(int index, std::string_view s, TObject* object) override;
    /// In a sorted list the string goes to its place; an equal one is treated as Duplicates says.
    int AddObject(std::string_view s, TObject* object) override;
    void Delete(int index) override;
    void Clear() override;
    void Exchange(int index1, int index2) override;
    void Move(int curIndex, int newIndex) override;
    int IndexOf(std::string_view s) const override;
    void SetTextStr(std::string_view text) override;

    /// The place of the first `s` in a sorted list, or else the place where it would stand.
    bool Find(std::string_view s, int& index) const;
    /// Sorts once by CompareStrings; equal strings keep their order.
    void Sort();
    bool Sorted() const { return FSorted; }
    void SetSorted(bool value);

    TDuplicates Duplicates = dupIgnore; ///< what a sorted list does with a string that it holds
    TNotifyEvent OnChange;
    TNotifyEvent OnChanging;

protected:
    /// A key whose byte order is the order of CompareStrings: who changes one changes both.
    virtual std::string SortKey(std::string_view s) const;
    void SetUpdateState(bool updating) override;

private:
    struct TItem {
        std::string Text;
        TObject* Object = nullptr;
    };

    const TItem& At(int index) const;
    TItem& At(int index) { return const_cast<TItem&>(std::as_const(*this).At(index)); }
    void RequireUnsorted() const;
    void Changing();
    void Changed();

    TChunkedList<TItem> FItems;
    bool FSorted = false;
};

} // namespace tarn
