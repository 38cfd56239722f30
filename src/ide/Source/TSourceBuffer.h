#pragma once

#include "Modules/TFileEditor.h"
#include "Source/TSourceView.h"
#include "TextStore/TEditText.h"
#include "TextStore/TextFile.h"

#include <memory>
#include <optional>

namespace tarn {

/// A source file of a module: its text as it is being edited, its view and its undo steps. The
/// file is read when the buffer is loaded; before, it has neither text nor view.
class TSourceBuffer : public TFileEditor {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TFileEditor::TFileEditor;

    /// The module list finds the buffer by the new name from then on, and its tab shows it.
    void SetFileName(std::string_view value) override;

    /// Reads the file, once. Raises EFileError.
    void Load();
    /// The same, but without a file that can be read the text is empty, and counts as modified.
    void LoadOrMake();
    bool IsLoaded() const { return FText.has_value(); }
    /// Text and view of a loaded buffer.
    TEditText& Text() { return *FText; }
    const TEditText& Text() const { return *FText; }
    TSourceView* View() const { return FView.get(); } ///< null before the buffer is loaded

    bool Modified() const override { return IsLoaded() && FText->Modified(); }
    /// Writes the text back when it was modified. Raises EFileError, also when the file was changed
    /// by somebody else and TModuleList::OnOverwrite does not allow to write over that; EAbort when
    /// it was asked and refused. Then nothing has changed.
    void Save();
    /// Writes the text of a loaded buffer to another file, which is the buffer's own from then on.
    void SaveAs(std::string_view fileName);

    /// The file as it was when it was read or saved; none for a text without a file.
    const std::optional<TFileIdentity>& Identity() const { return FIdentity; }
    /// Puts a text into the place of the loaded one, as one command: what was typed into `identity`
    /// of the file and could not be saved. Saving it over another file than that is somebody else's
    /// change written over. Nothing happens when the texts are the same.
    void Recover(std::string_view text, const std::optional<TFileIdentity>& identity);

    /// Takes the last command back, or runs it again: text, cursor and block. False when there is
    /// none.
    bool Undo();
    bool Redo();

    /// All changes between the two are one undo step, which brings back what the view was at
    /// BeginCommand. The pairs nest.
    void BeginCommand(TGroupKind kind = gkCommand);
    void EndCommand();

    /// Held while the text is changed: outside a command the change is a command of its own.
    class TEditScope {
    public:
        explicit TEditScope(TSourceBuffer& buffer) : FBuffer(buffer) {
            FBuffer.BeginCommand();
            FBuffer.OpenGroup();
        }
        TEditScope(const TEditScope&) = delete;
        TEditScope& operator=(const TEditScope&) = delete;
        ~TEditScope() { FBuffer.EndCommand(); }

    private:
        TSourceBuffer& FBuffer;
    };

    void Show() override;
    TIntf<IOTAEditor> Interface() override { return BufferInterface(); }
    TIntf<IOTAEditBuffer> BufferInterface();

    bool AutoIndent = true;

private:
    void Take(TGapBuffer<char> text, const std::optional<TFileIdentity>& identity);
    void OpenGroup();
    void CloseGroup();
    bool Step(bool (TEditText::*step)(TViewState&));
    void Write(const std::string& fileName, const std::optional<TFileIdentity>& expected);

    std::optional<TEditText> FText;
    std::unique_ptr<TSourceView> FView;
    std::optional<TFileIdentity> FIdentity;
    TViewState FBefore; ///< of the running command
    TGroupKind FKind = gkCommand;
    int FCommandDepth = 0;
    bool FGroupOpen = false;
    TIntf<IOTAEditBuffer> FInterface;
};

} // namespace tarn
