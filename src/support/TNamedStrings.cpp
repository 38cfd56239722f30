#include "TNamedStrings.h"

#include "AsciiText.h"
#include "rtl/SysUtils.h"

#include <cstdint>

namespace tarn {
namespace {

// An entry's companion is a number in a pointer's clothes, which nobody follows.

TObject* LineToObject(int line) {
    return reinterpret_cast<TObject*>( // NOLINT(performance-no-int-to-ptr)
        static_cast<std::intptr_t>(line));
}

int ObjectToLine(const TObject* object) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(object));
}

/// Empty when the line has no name.
std::string_view NameOf(std::string_view line) {
    const std::size_t mark = line.find('=');
    return mark == std::string_view::npos ? std::string_view() : line.substr(0, mark);
}

} // namespace

// --- TSearchTable -----------------------------------------------------------------------------

constinit const TClassRecord TSearchTable::ClassRecord{"TSearchTable", &TStringList::ClassRecord,
                                                       CreateObject<TSearchTable>};

void TSearchTable::SetAnsiComparing(bool value) {
    if (value == FAnsiComparing) return;
    const bool sorted = Sorted();
    SetSorted(false);
    FAnsiComparing = value;
    SetSorted(sorted);
}

void TSearchTable::AddName(std::string_view name, int line) {
    AddObject(name, LineToObject(line));
}

int TSearchTable::Line(int position) const {
    return ObjectToLine(GetObject(position));
}

void TSearchTable::SetLine(int position, int line) {
    PutObject(position, LineToObject(line));
}

int TSearchTable::CompareStrings(std::string_view a, std::string_view b) const {
    return FAnsiComparing ? TStringList::CompareStrings(a, b) : AsciiCompareText(a, b);
}

std::string TSearchTable::SortKey(std::string_view s) const {
    return FAnsiComparing ? TStringList::SortKey(s) : UpperCase(s);
}

// --- TNamedStrings ----------------------------------------------------------------------------

constinit const TClassRecord TNamedStrings::ClassRecord{"TNamedStrings", &TStringList::ClassRecord,
                                                        CreateObject<TNamedStrings>};

TNamedStrings::TNamedStrings() {
    FTable.Duplicates = dupError;
}

std::string TNamedStrings::GetNamedValue(std::string_view name) const {
    if (!QuickSearch()) return Value(name);
    int position = 0;
    if (!FTable.Find(name, position)) return {};
    // The name as it stands in the line: that of the caller may have letters of other sizes.
    const std::size_t start = FTable[position].size() + 1;
    const std::string& line = Get(FTable.Line(position));
    return start < line.size() ? line.substr(start) : std::string();
}

void TNamedStrings::SetNamedValue(std::string_view name, std::string_view value) {
    if (!QuickSearch()) return SetValue(name, value);
    int index = 0;
    const bool known = FindByName(name, index);
    const std::string line = std::string(name).append("=").append(value);
    if (value.empty()) {
        if (known) Delete(index);
    } else if (known)
        Put(index, line);
    else
        TStringList::AddObject(line, nullptr);
}

bool TNamedStrings::FindByName(std::string_view name, int& index) const {
    int position = 0;
    const bool found = FTable.Find(name, position);
    index = found ? FTable.Line(position) : -1;
    return found;
}

void TNamedStrings::SetQuickSearch(bool value) {
    if (value)
        PrepareSearchTable();
    else
        UnPrepareSearchTable();
}

void TNamedStrings::PrepareSearchTable() {
    UnPrepareSearchTable();
    for (int i = 0; i < Count(); ++i) EnterName(i);
    FTable.SetSorted(true);
}

void TNamedStrings::UnPrepareSearchTable() {
    FTable.SetSorted(false);
    FTable.Clear();
}

void TNamedStrings::EnterName(int index) {
    const std::string_view name = NameOf(Get(index));
    if (!name.empty()) FTable.AddName(name, index);
}

std::string TNamedStrings::GetSearchText() const {
    std::string text;
    for (int i = 0; i < FTable.Count(); ++i)
        text.append(LineBreak).append(Format("%s[%d]", {FTable[i], FTable.Line(i)}));
    return text;
}

int TNamedStrings::AddObject(std::string_view s, TObject* object) {
    const int index = TStringList::AddObject(s, object);
    if (QuickSearch()) EnterName(index);
    return index;
}

void TNamedStrings::InsertObject(int index, std::string_view s, TObject* object) {
    TStringList::InsertObject(index, s, object);
    if (QuickSearch()) EnterName(index);
}

void TNamedStrings::Delete(int index) {
    int position = 0;
    if (FindByName(Get(index), position)) FTable.Delete(position);
    TStringList::Delete(index);
}

void TNamedStrings::Exchange(int index1, int index2) {
    TStringList::Exchange(index1, index2);
    RenumberLine(index2);
}

void TNamedStrings::Move(int curIndex, int newIndex) {
    TStringList::Move(curIndex, newIndex);
    RenumberLine(newIndex);
}

void TNamedStrings::RenumberLine(int index) {
    int position = 0;
    if (FindByName(Get(index), position)) FTable.SetLine(position, index);
}

void TNamedStrings::Clear() {
    TStringList::Clear();
    FTable.Clear();
}

void TNamedStrings::Assign(const TPersistent* source) {
    const bool quick = QuickSearch();
    // Without the mode, names that stand twice are no error and none is entered by itself.
    UnPrepareSearchTable();
    try {
        TStringList::Assign(source);
    } catch (...) {
        SetQuickSearch(quick);
        throw;
    }
    SetQuickSearch(quick);
}

} // namespace tarn
