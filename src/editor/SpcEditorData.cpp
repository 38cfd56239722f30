// The settings editor's data: from the objects to the controls, back, and to the file.

#include "DataHeader.h"
#include "SpcStrings.h"
#include "TAllSteps.h"
#include "TRowJournal.h"
#include "TRowWalk.h"
#include "qsLocale.h"
#include "qsSpcEditor.h"
#include "rtl/SysUtils.h"
#include "vcl/Dialogs.h"

#include <filesystem>
#include <optional>

namespace tarn {

// --- Filling the controls ---------------------------------------------------------------------

void TSpcEditor::SetControlData(TControlInfo& info) {
    const TPropKind* const kind =
        info.IsNativeControl(0) ? KindOfTag(BuiltInKinds(), info.GetETag()) : nullptr;
    if (kind) kind->Fill(*this, info);
}

void TSpcEditor::FillRow(TControlInfo& info) {
    bool handled = false;
    if (BeforeSetControlData) BeforeSetControlData(this, info, handled);
    if (info.Dropped || !info.EInstance) return;
    if (!handled) SetControlData(info);
    if (AfterSetControlData) AfterSetControlData(this, info);
}

/// Rows with changes that wait keep what they have.
void TSpcEditor::SetControlsData() {
    const TRowWalk walk(*this);
    InState(esDataSetting, [&] {
        for (TControlInfo* const info : Rows(false))
            if (!info->Modified && !info->Dropped && info->EInstance) FillRow(*info);
    });
}

// --- Changes ----------------------------------------------------------------------------------

void TSpcEditor::ControlChange(TObject* sender) {
    if (FState.Contains(esDataSetting)) return;
    const TWeak<TSpcEditor> alive(this);
    const TRowWalk walk(*this);
    FModified = true; // also when the handler raises
    int index = 0;
    if (FControls.FindByModifyObject(sender, index)) {
        TControlInfo& info = FControls.Get(index);
        info.Modified = true;
        DoControlChange(info);
    }
    if (alive && !FClone && Options.Contains(eoSaveSpcOnChange)) ReadTolerantly();
}

void TSpcEditor::DoControlChange(TControlInfo& info) {
    if (OnControlChange) OnControlChange(this, info);
}

// --- Writing back -----------------------------------------------------------------------------

void TSpcEditor::GetControlData(TControlInfo& info) {
    const TPropKind* const kind =
        info.IsNativeControl(0) ? KindOfTag(BuiltInKinds(), info.GetETag()) : nullptr;
    if (kind) kind->Read(*this, info);
}

/// Writes a row. \return false when it was left to nobody: the handler wants to stop here
bool TSpcEditor::ReadRow(TControlInfo& info, bool& stopped) {
    bool handled = false;
    if (BeforeGetControlData) BeforeGetControlData(this, info, handled, stopped);
    if (stopped) return false;
    if (info.Dropped || !info.EInstance) return true; // the handler's doing
    if (!handled && CanWrite(info)) GetControlData(info);
    if (AfterGetControlData) AfterGetControlData(this, info, stopped);
    return true;
}

std::vector<TControlInfo*> TSpcEditor::Rows(bool pending) const {
    std::vector<TControlInfo*> rows;
    rows.reserve(static_cast<std::size_t>(FControls.Count()) + FPending.size());
    for (int i = 0; i < FControls.Count(); ++i) rows.push_back(&FControls.Get(i));
    if (pending)
        for (const auto& info : FPending) rows.push_back(info.get());
    return rows;
}

/// The property of a row as the user reads it.
std::string TSpcEditor::RowName(const TControlInfo& info) const {
    std::string caption = info.Label ? info.Label->Caption() : LabelCaption(info);
    for (std::size_t at = 0; (at = caption.find("\r\n", at)) != std::string::npos;)
        caption.replace(at, 2, " ");
    if (caption.ends_with(" :")) caption.resize(caption.size() - 2);
    return caption;
}

/// Leads the user to a row, also of another node. What goes wrong there must not hide the error.
void TSpcEditor::ShowFault(TControlInfo& info) {
    TAllSteps steps;
    steps.Run([&] {
        if (FControls.IndexOf(info) < 0)
            if (TTreeNode* const node = FindNode(info.NodeObject.Get()))
                FForm->Tree().SetSelected(node);
        if (!info.Dropped && info.EControl->CanFocus()) info.EControl->SetFocus();
    });
}

bool TSpcEditor::ReadRows(const std::vector<TControlInfo*>& rows) {
    const TRowWalk walk(*this);
    TRowJournal journal;
    bool stopped = false;
    for (TControlInfo* const info : rows) {
        if (info->Dropped || !info->EInstance) continue;
        try {
            journal.Keep(*info);
            if (!ReadRow(*info, stopped) || stopped) return false;
        } catch (const EConvertError& error) {
            journal.Restore();
            ShowFault(*info);
            throw EConvertError(Format("%s: %s", {RowName(*info), error.what()}));
        } catch (...) {
            journal.Restore();
            ShowFault(*info);
            throw;
        }
    }
    return true;
}

bool TSpcEditor::GetControlsData() {
    return ReadRows(Rows(false));
}

bool TSpcEditor::GetControlsDataEx() {
    return ReadRows(Rows(true));
}

/// While the user types, a text may be no value yet: its property keeps the value it has.
void TSpcEditor::ReadTolerantly() {
    const TRowWalk walk(*this);
    bool stopped = false;
    for (TControlInfo* const info : Rows(false)) {
        if (info->Dropped || !info->EInstance) continue;
        try {
            if (!ReadRow(*info, stopped) || stopped) return;
        } catch (const EConvertError&) {
            continue;
        }
    }
}

// --- Saving -----------------------------------------------------------------------------------

TDialogAnswer TSpcEditor::Ask(std::string_view question, std::uint32_t buttons) const {
    return OS().MessageBox(FForm ? FForm->Handle() : 0, question,
                           Application() ? Application()->Title : std::string(),
                           buttons | MB_ICONQUESTION);
}

bool TSpcEditor::SaveChanges() {
    if (!FModified) return true;
    if (!Options.Contains(eoSaveSpcOnExit)) {
        const TDialogAnswer answer = Ask(LocaleStr(strSaveChanges), MB_YESNOCANCEL);
        if (answer == IDNO) UndoChanges();
        if (answer != IDYES) return answer == IDNO;
    }
    return DoSaveChanges();
}

bool TSpcEditor::DoSaveChanges() {
    if (FOnFile) return Save();
    if (!GetControlsDataEx()) return false;
    Saved();
    return true;
}

/// The rows agree with what is stored.
void TSpcEditor::Saved() {
    FModified = false;
    FChangedSinceShown = true;
    for (TControlInfo* const info : Rows(true)) info->Modified = false;
    DropPending();
}

void TSpcEditor::UndoChanges() {
    FModified = false;
    TAllSteps steps;
    steps.Run([&] { DropSpcClone(); });
    if (FForm && FForm->Visible()) steps.Run([&] { UpdateSpc(); });
    steps.Finish();
}

TSpcObject& TSpcEditor::SpcToSave() {
    auto* const spc = ClassCast<TSpcObject>(GetUpdatingSpc());
    if (!spc) throw ESpcEditorError(LocaleStr(strNoSpcObject));
    return *spc;
}

void TSpcEditor::SaveToFile(const std::string& fileName, TObjectStorageFormat format) {
    SaveSpc(&SpcToSave(), fileName, format);
}

namespace {

/// The format of a file of stored objects; none when there is no such file.
std::optional<TObjectStorageFormat> FormatOfFile(const std::string& fileName) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(fileName, error)) return std::nullopt;
    TObjectStorageFormat format{};
    try {
        bool asResource = false;
        std::string description;
        ReadDataHeader(fileName, format, asResource, description);
        return format;
    } catch (const EDataHandlingError&) {
        return TestStreamFormat(fileName, format) ? std::optional(format) : std::nullopt;
    } catch (const EReadError&) {
        return std::nullopt;
    }
}

/// The format in which a file is to be saved: that which it has, else that of its extension, else
/// the given one.
TObjectStorageFormat FormatFor(const std::string& fileName, TObjectStorageFormat otherwise) {
    if (const auto present = FormatOfFile(fileName)) return *present;
    const std::string_view extension = ExtractFileExt(fileName);
    for (const TObjectStorageFormat format : {osfBin, osfResBin, osfExtBin, osfText})
        if (AnsiSameText(extension, StorageFormatExt(format))) return format;
    return otherwise;
}

} // namespace

/// Without a name of its own the editor takes the file's over; saved under another one it is a
/// copy, and the changes still wait.
bool TSpcEditor::DoSave(const std::string& fileName) {
    bool allow = true;
    if (BeforeSaveSpc) BeforeSaveSpc(this, SpcToSave(), fileName, allow);
    if (!allow) return false;
    SaveToFile(fileName, FormatFor(fileName, FFormat));
    TAllSteps steps;
    if (FSpcFileName.empty() || fileName == FSpcFileName) {
        SetSpcFileName(fileName);
        steps.Run([&] { Saved(); });
    }
    if (AfterSaveSpc) steps.Run([&] { AfterSaveSpc(this, SpcToSave(), fileName); });
    steps.Finish();
    return true;
}

bool TSpcEditor::Save() {
    if (FSpcFileName.empty()) return SaveAs();
    return GetControlsDataEx() && DoSave(std::string(FSpcFileName));
}

/// Asks for a file name; one that is there already must be confirmed.
bool TSpcEditor::InternalSaveAs(std::string& fileName) {
    const std::string binary = StorageFormatExt(osfBin), text = StorageFormatExt(osfText);
    TSaveDialog dialog;
    dialog.Title = LocaleStr(strSaveSpc);
    dialog.Filter = Format(LocaleStr(strSpcFilter), {binary, binary, text, text});
    dialog.FileName = fileName;
    dialog.DefaultExt = binary;
    dialog.OverwritePrompt = false; // asked here, in the editor's own words
    if (!dialog.Execute()) return false;
    fileName = dialog.FileName;
    std::error_code error;
    return !std::filesystem::exists(fileName, error) ||
           Ask(Format(LocaleStr(strReplaceFile), {fileName}), MB_YESNO) == IDYES;
}

bool TSpcEditor::SaveAs() {
    if (!GetControlsDataEx()) return false;
    std::string fileName = FSpcFileName;
    return InternalSaveAs(fileName) && DoSave(fileName);
}

// --- Loading ----------------------------------------------------------------------------------

bool TSpcEditor::Load() {
    const std::string binary = StorageFormatExt(osfBin), text = StorageFormatExt(osfText);
    TOpenDialog dialog;
    dialog.Title = LocaleStr(strLoadSpc);
    dialog.Filter = Format(LocaleStr(strSpcFilter), {binary, binary, text, text});
    return dialog.Execute() && LoadFromFile(dialog.FileName);
}

bool TSpcEditor::LoadFromFile(const std::string& fileName) {
    CheckInit();
    if (!FOnFile) throw ESpcEditorError("live objects are not loaded from a file");
    // A copy of its own, until the file has turned out well.
    std::unique_ptr<TPersistent> loaded = NewClone();
    auto* const spc = ClassCast<TSpcObject>(loaded.get());
    if (!spc) throw ESpcEditorError(LocaleStr(strNoSpcObject));
    if (!LoadSpc(spc, fileName, true, {fileName, true})) return false;
    TAllSteps steps; // what the handlers raise changes nothing about it
    steps.Run([&] { DropSpcClone(); });
    FClone = std::move(loaded);
    FModified = true;
    if (OnLoadSpc) steps.Run([&] { OnLoadSpc(this, *spc); });
    steps.Run([&] { BuildTree(); });
    steps.Finish();
    return true;
}

} // namespace tarn
