#pragma once

#include "Modules/TFolderNames.h"
#include "Modules/TProjectModule.h"
#include "Modules/TSourceIndex.h"

#include <functional>

namespace tarn {

/// What is open in the IDE, in the order of opening, and the commands on files. Each command
/// raises one error, with the file's name in its message, and has done nothing then, unless told
/// otherwise.
class TModuleList {
public:
    explicit TModuleList(TIde& ide) : FIde(ide) {}
    TModuleList(const TModuleList&) = delete;
    TModuleList& operator=(const TModuleList&) = delete;

    int Count() const { return static_cast<int>(FModules.size()); }
    TIdeModule& Items(int index) const { return *FModules.at(static_cast<std::size_t>(index)); }
    auto begin() const { return FModules.begin(); }
    auto end() const { return FModules.end(); }
    /// The module that the file is open in, as its source or its header; null when it is not open.
    TIdeModule* Find(std::string_view fileName) const;
    /// What Find looks in; whoever renames a source brings it up to date.
    TSourceIndex& Sources() { return FSources; }

    /// Opens the file and makes it current; a file that is open only becomes current.
    TIdeModule& OpenFile(std::string_view fileName);
    /// Opens a unit behind the current one.
    TIdeModule& OpenUnit(std::string_view fileName);
    /// Opens a project (.dpr .dpk .bpr .bpk) or a group (.bpg) with all its projects. Errors in
    /// such a file are raised as "FILE:LINE: reason".
    TIdeModule& OpenProject(std::string_view fileName);

    /// Opens a file with the text that was typed into `identity` of it and not saved, see
    /// TSourceBuffer::Recover. A file that is gone by now is made anew when it is saved.
    TSourceBuffer& Recover(std::string_view fileName, std::string_view text,
                           const std::optional<TFileIdentity>& identity);

    /// Whether a file that somebody else has changed since it was read may be written over. Without
    /// it that is an error.
    std::function<bool(const TSourceBuffer& buffer)> OnOverwrite;

    /// Saves what can be saved; the first error is raised afterwards.
    void SaveAll();

    /// Closes the module and, for a group, its projects. Unless forced, the user is asked about
    /// each modified file first; false when he wants one kept open, and then all stay. The modules
    /// are gone otherwise.
    bool Close(TIdeModule& module, bool force = false);
    bool CloseAll(bool force = false);
    /// Asks about each modified file as CloseAll does, and closes nothing.
    bool MayCloseAll();

private:
    TIdeModule& Add(std::unique_ptr<TIdeModule> module);
    TProjectModule& AddProject(const std::string& name, TProjectFile project);
    TIdeModule& OpenGroup(const std::string& name);
    using TSome = std::vector<TWeak<TIdeModule>>;
    TSome FromTheLast() const;
    bool MayClose(TIdeModule& module) const;
    bool MayClose(const TSome& modules) const;
    bool CloseSome(const TSome& modules, bool force);
    void Remove(TIdeModule& module);
    /// Takes the module out of the list and hands it over.
    std::unique_ptr<TIdeModule> Take(TIdeModule& module);
    /// The same with the one that has the file open; null when there is none.
    std::unique_ptr<TIdeModule> TakeFormer(const std::string& name);

    TIde& FIde;
    std::vector<std::unique_ptr<TIdeModule>> FModules;
    TSourceIndex FSources;
    TFolderCache FFolders;
};

} // namespace tarn
