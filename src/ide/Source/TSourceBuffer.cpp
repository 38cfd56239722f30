#include "Source/TSourceBuffer.h"

#include "Modules/TIdeModule.h"
#include "Services/OtaEditors.h"
#include "TIde.h"

namespace tarn {

constinit const TClassRecord TSourceBuffer::ClassRecord{"TSourceBuffer", &TPersistent::ClassRecord};

void TSourceBuffer::Load() {
    if (IsLoaded()) return;
    TFileContents file = LoadFile(FileName());
    FText.emplace(std::move(file.Bytes));
    FIdentity = file.Identity;
    FView = std::make_unique<TSourceView>(*this);
    // A file that a command opens takes part in that command from here on.
    if (Module().Ide().InCommand()) BeginCommand();
}

// --- Files ------------------------------------------------------------------------------------

void TSourceBuffer::SetFileName(std::string_view value) {
    TSourceIndex& sources = Module().Ide().Modules().Sources();
    const bool open = sources.Remove(*this);
    TFileEditor::SetFileName(value);
    if (open) sources.Add(*this);
    Module().Ide().EditWindow().UpdateCaptions();
}

void TSourceBuffer::Save() {
    if (Modified()) Write(FileName(), FIdentity);
}

void TSourceBuffer::SaveAs(std::string_view fileName) {
    Write(std::string(fileName), std::nullopt);
    SetFileName(fileName);
}

void TSourceBuffer::Write(const std::string& fileName,
                          const std::optional<TFileIdentity>& expected) {
    FIdentity = SaveFile(fileName, FText->Chunks(), expected);
    CloseGroup();
    FText->MarkSaved();
}

// --- Undo -------------------------------------------------------------------------------------

void TSourceBuffer::BeginCommand(TGroupKind kind) {
    if (FCommandDepth++ > 0) return;
    FBefore = FView->State();
    FKind = kind;
    if (kind == gkCommand) FText->EndTyping();
}

void TSourceBuffer::EndCommand() {
    if (--FCommandDepth == 0) CloseGroup();
}

/// The group is opened with the first change, so that undo, redo and saving can be commands too.
void TSourceBuffer::OpenGroup() {
    if (FGroupOpen) return;
    FText->BeginGroup(FBefore, FKind);
    FGroupOpen = true;
}

void TSourceBuffer::CloseGroup() {
    if (FGroupOpen) {
        FGroupOpen = false;
        FText->EndGroup(FView->State());
    }
    FBefore = FView->State();
}

bool TSourceBuffer::Undo() {
    return Step(&TEditText::Undo);
}
bool TSourceBuffer::Redo() {
    return Step(&TEditText::Redo);
}

bool TSourceBuffer::Step(bool (TEditText::*step)(TViewState&)) {
    CloseGroup();
    TViewState state;
    if (!((*FText).*step)(state)) return false;
    FView->SetState(state);
    FView->ScrollIntoView();
    FBefore = state;
    return true;
}

// --- The IDE ----------------------------------------------------------------------------------

void TSourceBuffer::Show() {
    Load();
    Module().Ide().EditWindow().ShowBuffer(*this);
}

TIntf<IOTAEditBuffer> TSourceBuffer::BufferInterface() {
    if (!FInterface) FInterface = MakeEditBufferInterface(*this);
    return FInterface;
}

} // namespace tarn
