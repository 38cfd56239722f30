#include "Windows/TIdeMainForm.h"

#include "TIde.h"
#include "vcl/Clipbrd.h"

namespace tarn {
namespace {

// --- Commands ---------------------------------------------------------------------------------

bool HasFile(TIde& ide) {
    return ide.CurrentBuffer() != nullptr;
}
bool HasModule(TIde& ide) {
    return ide.CurrentModule() != nullptr;
}
bool IsModified(TIde& ide) {
    const TIdeModule* const module = ide.CurrentModule();
    return module && module->Modified();
}
bool HasBlock(TIde& ide) {
    return HasFile(ide) && ide.CurrentView()->HasBlock();
}
bool IsAnyModified(TIde& ide) {
    for (const auto& module : ide.Modules())
        if (module->Modified()) return true;
    return false;
}

void Copy(TIde& ide) {
    const TSourceView& view = *ide.CurrentView();
    const std::string text = view.BlockText();
    Clipboard().SetAsText(text);
    ide.CopiedColumns = view.BlockStyle() == btColumn ? text : "";
}
void Cut(TIde& ide) {
    Copy(ide);
    ide.CurrentView()->DeleteBlock();
    ide.CurrentView()->ScrollIntoView();
}
/// The clipboard's text comes in as it is, without indentation of its own; a column block as one.
void Paste(TIde& ide) {
    TSourceView& view = *ide.CurrentView();
    const std::string text = Clipboard().AsText();
    if (!text.empty() && text == ide.CopiedColumns)
        view.PutColumns(text);
    else
        view.Put(text);
    view.ScrollIntoView();
}

// --- The menu ---------------------------------------------------------------------------------

/// An item of the menu bar: a menu when it has no name, else a command of the menu before it. A
/// command without `Run` is one that this IDE does not have; it is shown and never enabled.
struct TMenuRow {
    std::string_view Name;
    std::string_view Caption;
    TShortCut ShortCut = 0;
    void (*Run)(TIde& ide) = nullptr;
    bool (*Enabled)(TIde& ide) = nullptr;
};

constexpr TVirtualKey VK_F1 = 0x70, VK_F4 = 0x73, VK_F5 = 0x74, VK_F7 = 0x76, VK_F8 = 0x77,
                      VK_F9 = 0x78, VK_F11 = 0x7A, VK_F12 = 0x7B;

constexpr TMenuRow MenuRows[] = {
    {"FileMenu", "&File"},
    {"FileNewItem", "&New..."},
    {"FileOpenItem", "&Open..."},
    {"", "-"},
    {"FileSaveItem", "&Save", scCtrl | 'S', [](TIde& ide) { ide.CurrentModule()->Save(); },
     IsModified},
    {"FileSaveAllItem", "Sa&ve All", scShift | scCtrl | 'S',
     [](TIde& ide) { ide.Modules().SaveAll(); }, IsAnyModified},
    {"FileCloseItem", "&Close", scCtrl | VK_F4,
     [](TIde& ide) { ide.Modules().Close(*ide.CurrentModule()); }, HasModule},
    {"FileCloseAllItem", "C&lose All", 0, [](TIde& ide) { ide.Modules().CloseAll(); },
     [](TIde& ide) { return ide.Modules().Count() > 0; }},
    {"", "-"},
    {"FileExitItem", "E&xit"},

    {"EditMenu", "&Edit"},
    {"EditUndoItem", "&Undo", scCtrl | 'Z', [](TIde& ide) { ide.CurrentBuffer()->Undo(); },
     [](TIde& ide) { return HasFile(ide) && ide.CurrentBuffer()->Text().CanUndo(); }},
    {"EditRedoItem", "&Redo", scShift | scCtrl | 'Z',
     [](TIde& ide) { ide.CurrentBuffer()->Redo(); },
     [](TIde& ide) { return HasFile(ide) && ide.CurrentBuffer()->Text().CanRedo(); }},
    {"", "-"},
    {"EditCutItem", "Cu&t", scCtrl | 'X', Cut, HasBlock},
    {"EditCopyItem", "&Copy", scCtrl | 'C', Copy, HasBlock},
    {"EditPasteItem", "&Paste", scCtrl | 'V', Paste,
     [](TIde& ide) { return HasFile(ide) && !Clipboard().AsText().empty(); }},
    {"EditDeleteItem", "&Delete", 0, [](TIde& ide) { ide.CurrentView()->DeleteBlock(); }, HasBlock},
    {"EditSelectAll", "Select &All", scCtrl | 'A',
     [](TIde& ide) { ide.CurrentView()->SelectAll(); }, HasFile},

    {"SearchMenu", "&Search"},
    {"SearchFindItem", "&Find..."},
    {"SearchReplaceItem", "&Replace..."},
    {"SearchAgainItem", "&Search Again"},
    {"SearchGoToItem", "&Go to Line Number..."},

    {"ViewsMenu", "&View"},
    {"ViewPrjMgrItem", "&Project Manager"},
    {"ViewObjInspItem", "&Object Inspector", VK_F11},
    {"ViewToggleFormItem", "&Toggle Form/Unit", VK_F12, [](TIde& ide) { ide.ToggleFormUnit(); },
     [](TIde& ide) { return HasModule(ide) && ide.CurrentModule()->FormEditor() != nullptr; }},
    {"ViewUnitItem", "&Units..."},
    {"ViewFormItem", "&Forms..."},

    {"ProjectMenu", "&Project"},
    {"ProjectAddItem", "&Add to Project..."},
    {"ProjectRemoveItem", "&Remove from Project..."},
    {"ProjectCompileItem", "&Compile"},
    {"ProjectBuildItem", "&Build"},
    {"ProjectOptionsItem", "&Options..."},

    {"RunMenu", "&Run"},
    {"RunRunItem", "&Run", VK_F9},
    {"RunParametersItem", "&Parameters..."},
    {"RunStepOverItem", "&Step Over", VK_F8},
    {"RunTraceIntoItem", "&Trace Into", VK_F7},
    {"RunAddBreakpointItem", "Toggle &Breakpoint", VK_F5},

    {"ComponentMenu", "&Component"},
    {"ComponentNewItem", "&New Component..."},
    {"ComponentInstallItem", "&Install Component..."},
    {"ComponentInstallPackagesItem", "Install &Packages..."},

    {"DatabaseMenu", "&Database"},
    {"DatabaseExploreItem", "&Explore"},

    {"ToolsMenu", "&Tools"},
    {"ToolsOptionsItem", "&Environment Options..."},
    {"ToolsEditorOptionsItem", "E&ditor Options..."},
    {"ToolsDebuggerOptionsItem", "De&bugger Options..."},
    {"ToolsRepositoryItem", "&Repository..."},
    {"ToolsToolsItem", "&Configure Tools..."},

    {"HelpMenu", "&Help"},
    {"HelpContentsItem", "&Contents", VK_F1},
    {"HelpAboutItem", "&About..."},
};

constexpr bool IsMenu(const TMenuRow& row) {
    return row.Name.ends_with("Menu");
}

/// A row of the menu as an action of the IDE.
class TIdeAction : public TAction {
public:
    TIdeAction(TComponent* owner, TIde& ide, const TMenuRow& row)
        : TAction(owner), FIde(ide), FRow(row) {
        SetCaption(row.Caption);
        SetShortCut(row.ShortCut);
        SetEnabled(false);
        OnExecute = TNotifyEvent::Of<&TIdeAction::DoExecute>(this);
        OnUpdate = TNotifyEvent::Of<&TIdeAction::DoUpdate>(this);
    }

private:
    void DoExecute(TObject*) { FRow.Run(FIde); }
    void DoUpdate(TObject*) { SetEnabled(FRow.Enabled(FIde)); }

    TIde& FIde;
    const TMenuRow& FRow;
};

TMenuItem* MakeItem(TIdeMainForm& form, TIde& ide, const TMenuRow& row) {
    if (row.Name.empty()) return NewLine();
    auto* const item = new TMenuItem(&form);
    item->SetName(row.Name);
    item->SetCaption(row.Caption);
    item->SetShortCut(row.ShortCut);
    item->SetEnabled(IsMenu(row));
    if (row.Run) {
        auto* const action = new TIdeAction(&form, ide, row);
        action->SetActionList(&form.ActionList());
        item->SetAction(action);
    }
    return item;
}

} // namespace

constinit const TClassRecord TIdeMainForm::ClassRecord{"TIdeMainForm", &TForm::ClassRecord};

TIdeMainForm::TIdeMainForm(TIde& ide)
    : FActionList(new TActionList(this)), FImages(new TImageList(this)) {
    SetName("IdeMainForm");
    FActionList->SetName("ActionList");
    FImages->SetName("ImageList");
    FImages->Count = 60;
    Menu = new TMainMenu(this);
    Menu->SetName("MainMenu");
    Menu->Images = FImages;

    TMenuItem* top = nullptr;
    for (const TMenuRow& row : MenuRows) {
        TMenuItem* const item = MakeItem(*this, ide, row);
        if (IsMenu(row))
            Menu->Items()->Add(top = item);
        else if (top)
            top->Add(item);
    }
}

} // namespace tarn
