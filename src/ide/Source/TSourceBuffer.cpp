#include "Source/TSourceBuffer.h"

#include "Modules/TIdeModule.h"
#include "Services/OtaEditors.h"
#include "TIde.h"
#include "rtl/EAbort.h"

#include <algorithm>

namespace tarn {

constinit const TClassRecord TSourceBuffer::ClassRecord{"TSourceBuffer", &TPersistent::ClassRecord};

void TSourceBuffer::Load() {
    if (IsLoaded()) return;
    TFileContents file = LoadFile(FileName());
    Take(std::move(file.Bytes), file.Identity);
}

void TSourceBuffer::LoadOrMake() {
    try {
        Load();
    } catch (const EFileError&) {
        Take({}, std::nullopt);
        FText->MarkModified();
    }
}

void TSourceBuffer::Take(TGapBuffer<char> text, const std::optional<TFileIdentity>& identity) {
    FText.emplace(std::move(text));
    FIdentity = identity;
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
    if (!Modified()) return;
    try {
        Write(FileName(), FIdentity);
    } catch (const EFileError& error) {
        const auto& mayOverwrite = Module().Ide().Modules().OnOverwrite;
        if (error.Kind() != feChangedOnDisk || !mayOverwrite) throw;
        if (!mayOverwrite(*this)) throw EAbort("not saved: " + error.Path());
        Write(FileName(), std::nullopt);
    }
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

void TSourceBuffer::Recover(std::string_view text, const std::optional<TFileIdentity>& identity) {
    const std::string old = FText->Text();
    const auto front = static_cast<std::size_t>(
        std::mismatch(old.begin(), old.end(), text.begin(), text.end()).first - old.begin());
    if (front == old.size() && front == text.size()) return;
    const auto back = static_cast<std::size_t>(
        std::mismatch(old.rbegin(), old.rend() - static_cast<std::ptrdiff_t>(front), text.rbegin(),
                      text.rend() - static_cast<std::ptrdiff_t>(front))
            .first -
        old.rbegin());
    const TEditScope scope(*this);
    FText->Replace(front, old.size() - back, text.substr(front, text.size() - back - front));
    FView->GoTo(FText->PosAt(front));
    FIdentity = identity;
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
