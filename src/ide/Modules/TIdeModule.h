#pragma once

#include "Modules/TFormEditor.h"
#include "Source/TSourceBuffer.h"

namespace tarn {

class TFolderCache;
class TIde;
class TProjectModule;

/// A unit, form or project that is open. It owns the editors of its files: the source first, then
/// the form and the header that stand beside it.
class TIdeModule : public TPersistent {
public:
    /// A module of that source file, which is not read yet.
    /// \param former a module that gives up the source editor of the file to this one, and is to be
    ///     dropped then; or null
    TIdeModule(TIde& ide, std::string_view fileName, TIdeModule* former = nullptr);

    TIde& Ide() const { return FIde; }
    const std::string& FileName() const { return Source().FileName(); }

    TSourceBuffer& Source() const { return static_cast<TSourceBuffer&>(*FEditors.front()); }
    TFormEditor* FormEditor() const; ///< null when the module has no form
    int EditorCount() const { return static_cast<int>(FEditors.size()); }
    TFileEditor& Editor(int index) const { return *FEditors.at(static_cast<std::size_t>(index)); }
    /// The source editor of that file, the header included; null when it is not the module's.
    TSourceBuffer* FindSource(std::string_view fileName) const;

    bool Modified() const;
    /// Writes all modified files. Raises EFileError.
    void Save();
    /// Saves the source under another name; form file and header follow it as copies of that stem.
    /// Raises EFileError, and EInvalidOperation for a project, for a file that is open, and when a
    /// new unit would write over a form file or header that is there.
    void SaveAs(std::string_view fileName);

    /// The projects that list the module, in the order of opening.
    std::vector<TProjectModule*> Owners() const;

    /// The Open Tools API's view of the module, the same one each time.
    TIntf<IOTAModule> Interface();

protected:
    void AddEditor(std::unique_ptr<TFileEditor> editor) { FEditors.push_back(std::move(editor)); }
    virtual TIntf<IOTAModule> MakeInterface();

private:
    friend class TModuleList;
    void AddSiblings(TFolderCache& folders);
    void CheckNames(const std::string& target) const;

    TIde& FIde;
    std::vector<std::unique_ptr<TFileEditor>> FEditors;
    TIntf<IOTAModule> FInterface;
};

} // namespace tarn
