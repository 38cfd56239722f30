#pragma once

#include "Modules/TModuleList.h"
#include "Services/TIdeServices.h"
#include "Services/TKeyboard.h"
#include "Services/TPackages.h"
#include "Windows/TCpuWindow.h"
#include "Windows/TEditWindow.h"
#include "Windows/TIdeMainForm.h"

#include <functional>

namespace tarn {

/// The embedded IDE: the process's application and screen, a main window, a source editor, open
/// modules and projects, and the Open Tools API over them. One at a time; a second one raises
/// EInvalidOperation. The operating system layer must be installed for as long as it lives.
///
/// What a user does runs as a command, see RunCommand. The objects behind the accessors are owned
/// by the IDE.
class TIde {
public:
    TIde();
    TIde(const TIde&) = delete;
    TIde& operator=(const TIde&) = delete;
    /// Unloads the packages, closes everything without asking and takes the services out.
    ~TIde();

    /// The column block that was copied last; it is one as long as the clipboard has its text.
    std::string CopiedColumns;

    TPackages& Packages() { return FPackages; }
    TModuleList& Modules() { return FModules; }
    TKeyboard& Keyboard() { return FKeyboard; }
    TIdeMainForm& MainForm() { return FMainForm; }
    TEditWindow& EditWindow() { return FEditWindow; }

    // What is in front; null when there is nothing.
    TSourceBuffer* CurrentBuffer() { return FEditWindow.CurrentBuffer(); }
    TSourceView* CurrentView();
    TIdeModule* CurrentModule(); ///< of the active form under design, else of the current buffer

    /// Makes another tab current, as a click on it does; false when there is no such tab.
    bool ActivateTab(int index);
    /// \param fileName as the tab shows it, without case, or the full name
    bool ActivateTab(std::string_view fileName);
    /// Changes between the current module's form and its source.
    void ToggleFormUnit();

    /// Runs a command of the user. What it raises goes to the application's handler, with false as
    /// the result. All that it changes in a buffer becomes one undo step, which brings text, cursor
    /// and block back. Commands within commands belong to the outermost one.
    /// \param kind gkTyping joins typing to the step of the typing before it
    bool RunCommand(const std::function<void()>& command, TGroupKind kind = gkCommand);
    bool InCommand() const { return FCommandDepth > 0; }

    /// Sends a key on its way: the bindings of the editor, when that has the focus; the active
    /// form's menu and actions; those of the main form; the editor's own keys. False when nobody
    /// has taken it.
    bool PressKey(TShortCut key);
    /// The same without the editor's own keys, for an editor that has keys itself.
    bool PressShortCut(TShortCut key);
    /// Types into the editor; a line break is the Enter key. False when the editor does not have
    /// the focus. A command of its own unless told otherwise, see RunCommand.
    bool TypeText(std::string_view text, TGroupKind kind = gkCommand);
    /// Clicks an item as a user does: opens each menu above it from the top, so that its OnClick
    /// runs and the actions of its items are updated, then clicks the item. False when it or a menu
    /// above it is invisible, disabled or gone by then.
    bool ClickMenuItem(TMenuItem& item);
    bool Undo(); ///< in the current buffer; false when there is no step
    bool Redo();

    /// Handles the posted messages as one command, then lets the application idle.
    void PumpMessages();

    /// Hides one service of the Open Tools API, as an IDE that does not have it.
    void Withhold(const TGUID& iid) { FServices->Withhold(iid); }

    // The debugger: a program that stands still, and the CPU window, which shows it.

    /// The program has stopped: the CPU window is opened and made active, or shows the new stop
    /// when it is open.
    /// \param state not null; kept until the program goes on
    void StopAt(TStoppedState state);
    /// The program goes on: the CPU window is closed. Nothing when none is stopped.
    void ResumeProgram();
    /// The program that stands still; null when none does.
    const TStoppedState& StoppedProgram() const { return FStoppedProgram; }
    /// Opens the CPU window again after it was closed; false when no program is stopped.
    bool ShowCpuWindow();
    /// Closes the CPU window as the user does: it is freed at once, whoever is reading it. The
    /// program stays stopped.
    void CloseCpuWindow();
    TCpuWindow* CpuWindow() const { return FCpuWindow.Get(); } ///< null when it is not open

private:
    bool OpenMenus(TMenuItem& item);
    bool OfferKey(TShortCut key);
    bool OfferEditorKey(TShortCut key);

    TApplication FApplication;
    TScreen FScreen;
    TIdeMainForm FMainForm;
    TEditWindow FEditWindow;
    TModuleList FModules;
    TKeyboard FKeyboard;
    TPackages FPackages;
    TIdeServices* FServices;
    int FCommandDepth = 0;
    TStoppedState FStoppedProgram;
    TWeak<TCpuWindow> FCpuWindow;
};

} // namespace tarn
