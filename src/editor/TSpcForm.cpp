#include "TSpcForm.h"

#include "qsLocale.h"
#include "qsSpcEditor.h"
#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {

constinit const TClassRecord TSpcForm::ClassRecord{"TSpcForm", &TSmartForm::ClassRecord};

// --- The commands -----------------------------------------------------------------------------

/// One command of the window: its action and its tool button.
struct TSpcForm::TCommand {
    std::string_view Name; ///< of the action and the button, behind "ac" and "tb"
    TSpcEdVisibleButton Button;
    int CaptionId;
    TShortCut ShortCut;
    bool LineBefore;
    bool (*CanRun)(TSpcEditor& editor, TTreeNode* node); ///< `node`: the selected one, or null
    void (*Run)(TSpcForm& form, TTreeNode* node);        ///< called when it can
};

namespace {

bool Always(TSpcEditor&, TTreeNode*) {
    return true;
}
bool IsOnFile(TSpcEditor& editor, TTreeNode*) {
    return editor.OnFile();
}
bool IsModified(TSpcEditor& editor, TTreeNode*) {
    return editor.Modified();
}
bool CanExpand(TSpcEditor&, TTreeNode* node) {
    return node && node->Count() > 0 && !node->Expanded();
}
bool CanCollapse(TSpcEditor&, TTreeNode* node) {
    return node && node->Count() > 0 && node->Expanded();
}
template <TNodeMotion Motion> bool CanMove(TSpcEditor& editor, TTreeNode* node) {
    return node && editor.CanMoveNode(*node, Motion);
}

} // namespace

const TSpcForm::TCommand TSpcForm::Commands[] = {
    {"Exit", vbExitEditor, 51085, VK_ESCAPE, false, Always,
     [](TSpcForm& form, TTreeNode*) { form.Close(); }},
    {"Load", vbLoadSpc, strLoadSpc, scCtrl | 'O', true, IsOnFile,
     [](TSpcForm& form, TTreeNode*) { form.Editor().Load(); }},
    {"Save", vbSaveSpc, strSaveSpc, scCtrl | scShift | 'S', false, IsModified,
     [](TSpcForm& form, TTreeNode*) { form.Editor().DoSaveChanges(); }},
    {"SaveAs", vbSaveSpcAs, 50624, 0, false, IsOnFile,
     [](TSpcForm& form, TTreeNode*) { form.Editor().SaveAs(); }},
    {"Undo", vbSaveSpc, 51556, scCtrl | 'U', false, IsModified,
     [](TSpcForm& form, TTreeNode*) { form.Editor().UndoChanges(); }},
    {"AddNode", vbAddNode, 51550, scCtrl | 'N', true,
     [](TSpcEditor& editor, TTreeNode* node) { return node && editor.CanAddNode(*node); },
     [](TSpcForm& form, TTreeNode* node) { form.Editor().AddNode(*node); }},
    {"DeleteNode", vbDeleteNode, 51551, scCtrl | 'D', false,
     [](TSpcEditor& editor, TTreeNode* node) { return node && editor.CanDeleteNode(*node); },
     [](TSpcForm& form, TTreeNode* node) { form.Editor().DeleteNode(*node); }},
    {"MoveNodeUp", vbMoveNodeUp, 51552, scAlt | VK_UP, false, CanMove<nmUp>,
     [](TSpcForm& form, TTreeNode* node) { form.Editor().MoveNode(*node, nmUp); }},
    {"MoveNodeDown", vbMoveNodeDown, 51553, scAlt | VK_DOWN, false, CanMove<nmDown>,
     [](TSpcForm& form, TTreeNode* node) { form.Editor().MoveNode(*node, nmDown); }},
    {"ExpandNode", vbExpandNode, 51554, scAlt | VK_RIGHT, true, CanExpand,
     [](TSpcForm&, TTreeNode* node) { node->Expand(true); }},
    {"CollapseNode", vbCollapseNode, 51555, scAlt | VK_LEFT, false, CanCollapse,
     [](TSpcForm&, TTreeNode* node) { node->Collapse(true); }},
};

void TSpcForm::MakeCommands() {
    for (std::size_t i = 0; i < std::size(Commands); ++i) {
        const TCommand& command = Commands[i];
        auto* const action = new TAction(this);
        action->SetName("ac" + std::string(command.Name));
        action->SetCaption(LocaleStr(command.CaptionId));
        action->SetHint(action->Caption());
        action->SetShortCut(command.ShortCut);
        action->Tag = static_cast<std::intptr_t>(i);
        action->OnExecute = TNotifyEvent::Of<&TSpcForm::RunCommand>(this);
        action->OnUpdate = TNotifyEvent::Of<&TSpcForm::UpdateCommand>(this);
        action->SetActionList(&ActionList());
        if (command.LineBefore) {
            auto* const line = new TToolButton(this);
            line->SetStyle(tbsSeparator);
            line->SetParent(FToolBar);
        }
        auto* const button = new TToolButton(this);
        button->SetName("tb" + std::string(command.Name));
        button->SetAction(action);
        button->SetImageIndex(static_cast<int>(i));
        button->SetParent(FToolBar);
    }
}

void TSpcForm::ShowButtons() {
    for (const TCommand& command : Commands) {
        auto* const button =
            static_cast<TToolButton*>(FindComponent("tb" + std::string(command.Name)));
        button->SetVisible(FEditor.VisibleButtons.Contains(command.Button));
    }
}

void TSpcForm::UpdateCommand(TObject* sender) {
    auto& action = static_cast<TAction&>(*sender);
    const TCommand& command = Commands[action.Tag];
    action.SetEnabled(command.CanRun(FEditor, FTree->Selected()));
}

void TSpcForm::RunCommand(TObject* sender) {
    Commands[static_cast<TAction*>(sender)->Tag].Run(*this, FTree->Selected());
}

void TSpcForm::ToggleNode() {
    if (TTreeNode* const node = FTree->Selected()) node->SetExpanded(!node->Expanded());
}

bool TSpcForm::IsShortCut(TShortCut shortCut) {
    // A hot-key field and an open list get their keys before the commands do.
    const TControl* const active = ActiveControl();
    if (active && active->WantsKey(shortCut)) return false;
    if (shortCut == VK_RETURN && active && active == FTree &&
        FEditor.FormOptions.Contains(foTreeExpandOnEnter)) {
        ToggleNode();
        return true;
    }
    return TSmartForm::IsShortCut(shortCut);
}

// --- The controls -----------------------------------------------------------------------------

namespace {

constexpr int DefaultWidth = 620, DefaultHeight = 420, DefaultTreeWidth = 200; // pixels
constexpr int HeaderHeight = 20, StatusBarHeight = 19, ToolBarHeight = 28, ScrollBarWidth = 16;

/// An area of rows. The editor places them: there is nothing to be done as each comes or goes.
class TRowArea : public TPanel {
public:
    using TPanel::TPanel;

protected:
    void AlignControls() override {}
};

template <class T>
T* NewControl(TComponent* owner, std::string_view name, TControl* parent, TAlign align) {
    auto* const control = new T(owner);
    control->SetName(name);
    control->SetAlign(align);
    control->SetParent(parent);
    return control;
}

} // namespace

TSpcForm::TSpcForm(TSpcEditor& editor) : TSmartForm(&editor), FEditor(editor) {
    SetBoundsRect({0, 0, DefaultWidth, DefaultHeight});
    SetMinSize(300, 200);
    MakeControls();
    MakeCommands();
    SetActiveControl(FTree);
    OnShow = TNotifyEvent::Of<&TSpcForm::Shown>(this);
    OnClose = TNotifyEvent::Of<&TSpcForm::Closed>(this);
}

TSpcForm::~TSpcForm() {
    FEditor.FormGone();
}

void TSpcForm::MakeControls() {
    FImages = new TImageList(this);
    FToolBar = NewControl<TToolBar>(this, "ToolBar", this, alTop);
    FToolBar->SetHeight(ToolBarHeight);
    FStatusBar = NewControl<TStatusBar>(this, "StatusBar", this, alBottom);
    FStatusBar->SetHeight(StatusBarHeight);
    FTree = NewControl<TTreeView>(this, "Tree", this, alLeft);
    FTree->SetWidth(DefaultTreeWidth);
    FTree->SetImageList(FImages);
    FTree->OnChanging = TTreeAllowEvent::Of<&TSpcEditor::SpcTreeChanging>(&FEditor);
    FTree->OnChange = TTreeNodeEvent::Of<&TSpcEditor::SpcTreeChange>(&FEditor);
    FTree->OnEditing = TTreeAllowEvent::Of<&TSpcForm::CaptionEditing>(this);
    FSplitter = NewControl<TSplitter>(this, "Splitter", this, alLeft);
    FRowsPanel = NewControl<TPanel>(this, "RowsPanel", this, alClient);
    FHeader = NewControl<THeaderControl>(this, "Header", FRowsPanel, alTop);
    FHeader->SetHeight(HeaderHeight);
    FHeader->OnSectionResize = TSectionEvent::Of<&TSpcForm::SectionDragged>(this);
    FRows = NewControl<TScrollBox>(this, "Rows", FRowsPanel, alClient);
    FLabelArea = NewControl<TRowArea>(this, "LabelArea", FRows, alNone);
    FControlArea = NewControl<TRowArea>(this, "ControlArea", FRows, alNone);
}

void TSpcForm::AlignControls() {
    TSmartForm::AlignControls();
    if (Visible()) FEditor.UpdatePaintAreas(akAll);
}

int TSpcForm::RowsWidth(int rowsHeight) const {
    return FRows->Width() - (rowsHeight > FRows->Height() ? ScrollBarWidth : 0);
}

void TSpcForm::LayOutAreas(int labelWidth, int controlWidth, int height) {
    FLabelArea->SetBoundsRect({0, 0, labelWidth, height});
    FControlArea->SetBoundsRect({labelWidth, 0, controlWidth, height});
    FHeader->SetSectionCount(2 * FEditor.ColCount());
    for (int i = 0; i < FHeader->SectionCount(); ++i) {
        const bool isLabel = i % 2 == 0;
        FHeader->SetSectionText(i, LocaleStr(isLabel ? strParameter : strValue));
        FHeader->SetSectionWidth(i, isLabel ? labelWidth : controlWidth);
    }
}

/// The label area keeps the width that the user has given it.
void TSpcForm::SectionDragged(TObject*, int index) {
    if (index == 0)
        FEditor.SetLabelWidth(FHeader->SectionWidth(0));
    else
        FEditor.UpdatePaintAreas(akAll);
}

void TSpcForm::CaptionEditing(TObject*, TTreeNode* node, bool& allow) {
    allow = false;
    TSpcEditor::SetNodeName(*node, node->Text());
}

// --- Showing and closing ----------------------------------------------------------------------

void TSpcForm::Shown(TObject*) {
    FEditor.FormShown();
}

namespace {

/// An error keeps nothing from going on: the user reads it.
void ShowError(TObject* sender) {
    if (!Application()) throw;
    Application()->HandleException(sender);
}

} // namespace

/// What cannot be saved keeps the window open, with the changes in it.
bool TSpcForm::CloseQuery() {
    try {
        return TSmartForm::CloseQuery() && FEditor.SaveChanges();
    } catch (...) {
        ShowError(this);
        return false;
    }
}

void TSpcForm::Closed(TObject*) {
    FEditor.FormHidden();
}

void TSpcForm::WndProc(TMessage& message) {
    if (message.Msg == CM_SELECTSTARTNODE)
        FEditor.FormSettled();
    else if (message.Msg == CM_RELEASEEDITOR)
        FEditor.DoRelease(); // and the form is gone
    else
        TSmartForm::WndProc(message);
}

// --- The state --------------------------------------------------------------------------------

namespace {

/// One number of the window's state, by the name under which it is stored.
struct TStateRow {
    std::string_view Name;
    int (*Get)(TSpcForm& form);
    void (*Set)(TSpcForm& form, int value);
};

template <int (TControl::*Get)() const, void (TControl::*Set)(int)>
constexpr TStateRow BoundRow(std::string_view name) {
    return {name, [](TSpcForm& form) { return (form.*Get)(); },
            [](TSpcForm& form, int value) { (form.*Set)(value); }};
}

constexpr TStateRow StateRows[] = {
    BoundRow<&TControl::Left, &TControl::SetLeft>("Left"),
    BoundRow<&TControl::Top, &TControl::SetTop>("Top"),
    BoundRow<&TControl::Width, &TControl::SetWidth>("Width"),
    BoundRow<&TControl::Height, &TControl::SetHeight>("Height"),
    {"State", [](TSpcForm& form) { return static_cast<int>(form.WindowState()); },
     [](TSpcForm& form, int value) {
         form.SetWindowState(value == wsMaximized ? wsMaximized : wsNormal);
     }},
    {"TreeWidth", [](TSpcForm& form) { return form.Tree().Width(); },
     [](TSpcForm& form, int value) {
         form.Tree().SetWidth(std::clamp(value, 0, std::max(form.Width(), 0)));
     }},
    {"LabelAreaWidth", [](TSpcForm& form) { return form.Editor().LabelAreaInfo()->DefAreaWidth(); },
     [](TSpcForm& form, int value) { form.Editor().SetLabelWidth(std::max(value, 0)); }},
};

} // namespace

void TSpcForm::SetProperties() {
    FEditor.FontsChange(nullptr);
    SetFormStyle(FEditor.FormOptions.Contains(foStayOnTop) ? fsStayOnTop : fsNormal);
    AutoSavePlacement = FEditor.FormOptions.Contains(foAutoSaveParams);
    FStatusBar->SetVisible(FEditor.ShowStatusBar());
    ShowButtons();
    TStringList data;
    const TWeak<TSpcForm> alive(this); // a handler may close the window
    FEditor.ReadFormSetting(FEditor.IniFileName, FEditor.IniSection, data);
    if (!alive) return;
    for (const TStateRow& row : StateRows) {
        const std::string text = data.Value(row.Name);
        const int value = StrToIntDef(text, 0);
        if (IntToStr(value) == text) row.Set(*this, value);
    }
}

/// A state that cannot be stored does not keep the window from closing.
void TSpcForm::ReadFormData() {
    TStringList data;
    for (const TStateRow& row : StateRows) data.Add(Format("%s=%d", {row.Name, row.Get(*this)}));
    try {
        FEditor.WriteFormSetting(FEditor.IniFileName, FEditor.IniSection, data);
    } catch (...) {
        ShowError(this);
    }
}

} // namespace tarn
