#include "rtl/TStrings.h"

#include "rtl/SafeFile.h"
#include "rtl/SysUtils.h"
#include "rtl/UpdateOnce.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tarn {

constinit const TClassRecord TStrings::ClassRecord{"TStrings", &TPersistent::ClassRecord};
constinit const TClassRecord TStringList::ClassRecord{"TStringList", &TStrings::ClassRecord,
                                                      CreateObject<TStringList>};

// --- TStrings ---------------------------------------------------------------------------------

int TStrings::AddObject(std::string_view s, TObject* object) {
    const int index = Count();
    InsertObject(index, s, object);
    return index;
}

void TStrings::AddStrings(const TStrings& source) {
    UpdateOnce(*this, [&] {
        // The count is taken first: a list may be added to itself.
        const int count = source.Count();
        for (int i = 0; i < count; ++i) AddObject(std::string(source.Get(i)), source.GetObject(i));
    });
}

void TStrings::Exchange(int index1, int index2) {
    const std::string text1 = Get(index1);
    const std::string text2 = Get(index2);
    TObject* const object1 = GetObject(index1);
    UpdateOnce(*this, [&] {
        Put(index1, text2);
        PutObject(index1, GetObject(index2));
        Put(index2, text1);
        PutObject(index2, object1);
    });
}

void TStrings::Move(int curIndex, int newIndex) {
    if (curIndex == newIndex) return;
    const std::string text = Get(curIndex);
    TObject* const object = GetObject(curIndex);
    (void)Get(newIndex);
    UpdateOnce(*this, [&] {
        Delete(curIndex);
        InsertObject(newIndex, text, object);
    });
}

int TStrings::IndexOf(std::string_view s) const {
    for (int i = 0; i < Count(); ++i)
        if (CompareStrings(Get(i), s) == 0) return i;
    return -1;
}

int TStrings::IndexOfObject(const TObject* object) const {
    for (int i = 0; i < Count(); ++i)
        if (GetObject(i) == object) return i;
    return -1;
}

int TStrings::IndexOfName(std::string_view name) const {
    for (int i = 0; i < Count(); ++i) {
        const std::string& s = Get(i);
        const std::size_t mark = s.find('=');
        if (mark != std::string::npos && SameText(std::string_view(s).substr(0, mark), name))
            return i;
    }
    return -1;
}

std::string TStrings::Value(std::string_view name) const {
    const int index = IndexOfName(name);
    return index < 0 ? std::string() : Get(index).substr(name.size() + 1);
}

void TStrings::SetValue(std::string_view name, std::string_view value) {
    const int index = IndexOfName(name);
    if (value.empty()) {
        if (index >= 0) Delete(index);
        return;
    }
    const std::string line = std::string(name).append("=").append(value);
    if (index < 0)
        Add(line);
    else
        Put(index, line);
}

std::string TStrings::Name(int index) const {
    const std::string& s = Get(index);
    const std::size_t mark = s.find('=');
    return mark == std::string::npos ? std::string() : s.substr(0, mark);
}

bool TStrings::Equals(const TStrings& other) const {
    bool equal = Count() == other.Count();
    for (int i = 0; equal && i < Count(); ++i) equal = Get(i) == other.Get(i);
    return equal;
}

std::string TStrings::GetTextStr() const {
    std::size_t size = 0;
    const int count = Count();
    for (int i = 0; i < count; ++i) size += Get(i).size() + LineBreak.size();
    std::string text;
    text.reserve(size);
    for (int i = 0; i < count; ++i) text.append(Get(i)).append(LineBreak);
    return text;
}

void TStrings::SetTextStr(std::string_view text) {
    // The text may be one of the list's own strings.
    const std::string kept(text);
    UpdateOnce(*this, [&] {
        Clear();
        ForEachLine(kept, [this](std::string_view line) { Add(line); });
    });
}

std::string TStrings::GetCommaText() const {
    // A single empty string is quoted, or it would read back as no string at all.
    if (Count() == 1 && Get(0).empty()) return "\"\"";
    std::string result;
    for (int i = 0; i < Count(); ++i) {
        const std::string& s = Get(i);
        if (i > 0) result += ',';
        const bool plain = std::all_of(s.begin(), s.end(), [](char c) {
            return static_cast<unsigned char>(c) > 32 && c != '"' && c != ',';
        });
        if (plain) {
            result += s;
            continue;
        }
        result += '"';
        for (char c : s) result.append(c == '"' ? 2 : 1, c);
        result += '"';
    }
    return result;
}

void TStrings::SetCommaText(std::string_view text) {
    const auto blank = [](char c) { return static_cast<unsigned char>(c) <= 32; };
    const auto skipBlanks = [&](std::size_t at) {
        while (at < text.size() && blank(text[at])) ++at;
        return at;
    };
    std::vector<std::string> items;
    std::size_t at = skipBlanks(0);
    while (at < text.size()) {
        std::string item;
        if (text[at] == '"') {
            for (++at; at < text.size(); ++at) {
                if (text[at] == '"' && (at + 1 >= text.size() || text[at + 1] != '"')) break;
                if (text[at] == '"') ++at;
                item += text[at];
            }
            ++at;
        } else
            while (at < text.size() && !blank(text[at]) && text[at] != ',') item += text[at++];
        items.push_back(std::move(item));
        at = skipBlanks(at);
        if (at >= text.size() || text[at] != ',') continue;
        at = skipBlanks(at + 1);
        if (at >= text.size()) items.emplace_back();
    }
    UpdateOnce(*this, [&] {
        Clear();
        for (const std::string& item : items) Add(item);
    });
}

void TStrings::LoadFromFile(std::string_view fileName) {
    SetTextStr(LoadFileText(fileName));
}

void TStrings::SaveToFile(std::string_view fileName) const {
    SaveFileText(fileName, GetTextStr());
}

int TStrings::CompareStrings(std::string_view a, std::string_view b) const {
    return AnsiCompareText(a, b);
}

void TStrings::BeginUpdate() {
    // Counted behind the call: a handler that raises leaves no update behind.
    if (FUpdateCount == 0) SetUpdateState(true);
    ++FUpdateCount;
}

void TStrings::EndUpdate() {
    if (--FUpdateCount == 0) SetUpdateState(false);
}

void TStrings::SetUpdateState(bool) {}

void TStrings::Assign(const TPersistent* source) {
    const auto* strings = dynamic_cast<const TStrings*>(source);
    if (!strings) {
        TPersistent::Assign(source);
        return;
    }
    if (strings == this) return;
    UpdateOnce(*this, [&] {
        Clear();
        AddStrings(*strings);
    });
}

void TStrings::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    const auto* const ancestor = ClassCast<TStrings>(filer.Ancestor());
    // An empty list is stored where it takes the strings of an ancestor away.
    const bool differs = ancestor ? !Equals(*ancestor) : !IsEmpty();
    filer.DefineProperty(
        "Strings", [this](TReader& reader) { ReadStrings(reader); },
        [this](TWriter& writer) { WriteStrings(writer); }, differs);
}

void TStrings::ReadStrings(TReader& reader) {
    reader.ReadListBegin();
    UpdateOnce(*this, [&] {
        Clear();
        for (int index = 0; !reader.EndOfList(); ++index) {
            const TReader::TPlace place(reader, index);
            Add(reader.ReadString());
        }
    });
    reader.ReadListEnd();
}

void TStrings::WriteStrings(TWriter& writer) const {
    writer.WriteListBegin();
    for (int i = 0; i < Count(); ++i) writer.WriteString(Get(i));
    writer.WriteListEnd();
}

// --- TStringList ------------------------------------------------------------------------------

TStringList::TStringList(std::initializer_list<std::string_view> lines) {
    for (std::string_view line : lines) FItems.Insert(FItems.Count(), {std::string(line)});
}

const TStringList::TItem& TStringList::At(int index) const {
    if (index < 0 || index >= Count()) throw EStringListError(Format(SListIndexError, {index}));
    return FItems.At(index);
}

void TStringList::RequireUnsorted() const {
    if (FSorted) throw EStringListError("operation not allowed on a sorted string list");
}

void TStringList::Put(int index, std::string_view s) {
    RequireUnsorted();
    TItem& item = At(index);
    Changing();
    item.Text = s;
    Changed();
}

void TStringList::PutObject(int index, TObject* object) {
    TItem& item = At(index);
    Changing();
    item.Object = object;
    Changed();
}

void TStringList::InsertObject(int index, std::string_view s, TObject* object) {
    RequireUnsorted();
    if (index != Count()) (void)At(index);
    Changing();
    FItems.Insert(index, {std::string(s), object});
    Changed();
}

int TStringList::AddObject(std::string_view s, TObject* object) {
    int index = Count();
    if (FSorted && Find(s, index)) {
        if (Duplicates == dupIgnore) return index;
        if (Duplicates == dupError)
            throw EStringListError(Format("string list does not allow duplicates: %s", {s}));
    }
    Changing();
    FItems.Insert(index, {std::string(s), object});
    Changed();
    return index;
}

void TStringList::Delete(int index) {
    (void)At(index);
    Changing();
    FItems.Take(index);
    Changed();
}

void TStringList::Clear() {
    if (IsEmpty()) return;
    Changing();
    FItems = {};
    Changed();
}

void TStringList::Exchange(int index1, int index2) {
    RequireUnsorted();
    TItem& a = At(index1);
    TItem& b = At(index2);
    Changing();
    std::swap(a, b);
    Changed();
}

void TStringList::Move(int curIndex, int newIndex) {
    RequireUnsorted();
    (void)At(curIndex);
    (void)At(newIndex);
    Changing();
    FItems.Insert(newIndex, FItems.Take(curIndex));
    Changed();
}

int TStringList::IndexOf(std::string_view s) const {
    if (!FSorted) return TStrings::IndexOf(s);
    int index = 0;
    return Find(s, index) ? index : -1;
}

void TStringList::SetTextStr(std::string_view text) {
    UpdateOnce(*this, [&] {
        // The old strings live on until the end: the text may be one of them.
        const TChunkedList<TItem> before = std::exchange(FItems, {});
        Clear(); // for descendants that keep more than the strings
        ForEachLine(text, [this](std::string_view line) { Add(line); });
    });
}

bool TStringList::Find(std::string_view s, int& index) const {
    bool found = false;
    index = FItems.CountWhile([&](const TItem& item) {
        const int order = CompareStrings(item.Text, s);
        // Of the strings that are asked, the last one not below `s` is that at the index.
        if (order >= 0) found = order == 0;
        return order < 0;
    });
    return found;
}

void TStringList::Sort() {
    if (FSorted || Count() < 2) return;
    Changing();
    std::vector<std::pair<std::string, std::size_t>> keys;
    keys.reserve(static_cast<std::size_t>(Count()));
    for (int i = 0; i < Count(); ++i)
        keys.emplace_back(SortKey(Get(i)), static_cast<std::size_t>(i));
    std::sort(keys.begin(), keys.end());
    std::vector<std::size_t> order;
    order.reserve(keys.size());
    for (const auto& key : keys) order.push_back(key.second);
    FItems.Reorder(order);
    Changed();
}

std::string TStringList::SortKey(std::string_view s) const {
    return AnsiTextKey(s);
}

void TStringList::SetSorted(bool value) {
    if (value) Sort();
    FSorted = value;
}

void TStringList::SetUpdateState(bool updating) {
    const TNotifyEvent& handler = updating ? OnChanging : OnChange;
    if (handler) handler(this);
}

void TStringList::Changing() {
    if (OnChanging && !Updating()) OnChanging(this);
}

void TStringList::Changed() {
    if (OnChange && !Updating()) OnChange(this);
}

} // namespace tarn
