#pragma once

#include "rtl/TStrings.h"

#include <string>
#include <string_view>

namespace tarn {

/// A table of names, each with the index of the line that carries it.
class TSearchTable : public TStringList {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// Whether names are compared like AnsiCompareText, or else by their bytes with ASCII letters
    /// folded to capitals. A sorted table follows a change.
    bool AnsiComparing() const { return FAnsiComparing; }
    void SetAnsiComparing(bool value);

    /// Adds a name. Raises EStringListError on one that a sorted table holds, where Duplicates
    /// says so.
    void AddName(std::string_view name, int line);
    /// The line of the entry at a position of the table, both 0-based. Raises EStringListError on
    /// a position outside.
    int Line(int position) const;
    void SetLine(int position, int line);

protected:
    int CompareStrings(std::string_view a, std::string_view b) const override;
    std::string SortKey(std::string_view s) const override;

private:
    bool FAnsiComparing = true;
};

/// A list of lines "NAME=VALUE" that can find a line by its name in logarithmic time. The name of a
/// line is the text before its first "="; a line without one, or that begins with it, has none.
///
/// In quick-search mode the names stand in a table beside the list, which follows Add and Insert
/// as far as the new name goes. Kept quirks: the indexes of later lines are not shifted then; all
/// other changes leave the table as good as untouched, so that a name may lead to another line, to
/// EStringListError where there is no such line any more, or to none though there is one. Whoever
/// changes the list in another way leaves the mode and enters it again.
class TNamedStrings : public TStringList {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TNamedStrings();

    /// The value of the name; empty when there is none. Outside quick-search mode that is Value.
    std::string GetNamedValue(std::string_view name) const;
    /// Sets the value of the name; an empty one deletes its line. Outside quick-search mode that is
    /// SetValue. A kept quirk: a name new to quick-search mode gets a line but no place in the
    /// table, so that setting it twice makes two lines.
    void SetNamedValue(std::string_view name, std::string_view value);

    /// The 0-based index of the line of that name, of the first of several; -1 and false when the
    /// table does not hold the name, which it never does outside quick-search mode.
    bool FindByName(std::string_view name, int& index) const;

    bool QuickSearch() const { return FTable.Sorted(); }
    /// Switching it on makes the table anew, also when it was on.
    void SetQuickSearch(bool value);
    void EnterQuickSearchMode() { SetQuickSearch(true); }
    void LeaveQuickSearchMode() { SetQuickSearch(false); }
    void PrepareSearchTable();
    void UnPrepareSearchTable();

    /// How names are compared in quick-search mode, see TSearchTable; true at first.
    bool NamesAnsiComparing() const { return FTable.AnsiComparing(); }
    void SetNamesAnsiComparing(bool value) { FTable.SetAnsiComparing(value); }

    /// The table for people who look for a fault: CR LF and "NAME[LINE]" for each entry.
    std::string GetSearchText() const;

    /// In quick-search mode a name that the table holds already raises EStringListError; the line
    /// is in the list then. The same goes for InsertObject.
    int AddObject(std::string_view s, TObject* object) override;
    void InsertObject(int index, std::string_view s, TObject* object) override;
    /// A kept quirk of these three: the table is asked for the whole text of the line, not for its
    /// name. Where a line's text is another line's name, Delete takes out the entry of the table
    /// that stands at the index of that other line; Exchange and Move give that entry the new index
    /// of their line. Raises EStringListError when there is no such entry: before the line is
    /// deleted, but after lines have changed places.
    void Delete(int index) override;
    void Exchange(int index1, int index2) override;
    void Move(int curIndex, int newIndex) override;
    void Clear() override;
    /// In quick-search mode the table is made anew.
    void Assign(const TPersistent* source) override;

private:
    void EnterName(int index);
    void RenumberLine(int index);

    TSearchTable FTable; ///< sorted in quick-search mode, else empty
};

} // namespace tarn
