#include "block/qsBlockMng.h"

#include "block/BlockShift.h"
#include "qsExpMng.h"
#include "qsLocale.h"
#include "qsOTAUtils.h"
#include "qsSourceLines.h"
#include "vcl/Forms.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo BlockMngProps[] = {
    Published<&TBlockMng::MoveCursorTopLeft>("MoveCursorTopLeft", {.Default = false}),
    Published<&TBlockMng::SafeStringMoving>("SafeStringMoving", {.Default = true}),
};

/// The method pointer of a command, once there is an expert.
template <void (TBlockMng::*Click)(TObject*)> TNotifyEvent Handler(TBlockMng* expert) {
    return TNotifyEvent::Of<Click>(expert);
}

/// One command of the expert.
struct TBlockCommand {
    std::string_view ItemID;
    int CaptionId;
    bool LineBefore;
    std::string_view ShortCutText;
    TNotifyEvent (*Click)(TBlockMng* expert);
};

constexpr TBlockCommand Commands[] = {
    {"MoveBlockLeftOneItem", 51044, true, "Ctrl+,", Handler<&TBlockMng::MoveBlockLeftOne>},
    {"MoveBlockLeftTwoItem", 51045, false, "Ctrl+Shift+,", Handler<&TBlockMng::MoveBlockLeftTwo>},
    {"MoveBlockRightOneItem", 51046, false, "Ctrl+.", Handler<&TBlockMng::MoveBlockRightOne>},
    {"MoveBlockRightTwoItem", 51047, false, "Ctrl+Shift+.", Handler<&TBlockMng::MoveBlockRightTwo>},
    {"SortLinesItem", 51048, false, "Ctrl+;", Handler<&TBlockMng::SortLines>},
};

} // namespace

constinit const TClassRecord TBlockMng::ClassRecord{"TBlockMng", &TCustomExpert::ClassRecord,
                                                    CreateObject<TBlockMng>, BlockMngProps};

TIntf<IOTASourceEditor>& OpenEditor() {
    static TIntf<IOTASourceEditor> editor;
    return editor;
}

TBlockMng::TBlockMng() {
    AddStoredData(this, "EditorManagerData", LocaleStr(51140),
                  Format("[TBlockMng]\r\nMoveCursorTopLeft=%s\r\nSafeStringMoving=%s",
                         {LocaleStr(51237), LocaleStr(51238)}));
}

// --- The commands -----------------------------------------------------------------------------

void TBlockMng::Init(TGetItemData getItemData) {
    ExpMenuItems().clear();
    for (const TBlockCommand& command : Commands) {
        TExpMenuItemData* const data = getItemData(command.ItemID);
        ExpMenuItems().emplace_back(data);
        data->Caption = LocaleStr(command.CaptionId);
        data->ShortCutText = command.ShortCutText;
        data->HaveLineBefore = command.LineBefore;
        data->OnExecute = command.Click(this);
        data->OnUpdate = TNotifyEvent::Of<&TBlockMng::UpdateBlockState>(this);
    }
}

void TBlockMng::MoveBlockLeftOne(TObject*) {
    DoAction(aiMoveLeftOne);
}
void TBlockMng::MoveBlockLeftTwo(TObject*) {
    DoAction(aiMoveLeftTwo);
}
void TBlockMng::MoveBlockRightOne(TObject*) {
    DoAction(aiMoveRightOne);
}
void TBlockMng::MoveBlockRightTwo(TObject*) {
    DoAction(aiMoveRightTwo);
}
void TBlockMng::SortLines(TObject*) {
    DoAction(aiSort);
}

void TBlockMng::UpdateBlockState(TObject* sender) {
    EnableCommand(sender, CheckState());
}

bool TBlockMng::CheckState() {
    const auto services = IDEService<IOTAEditorServices>();
    const auto buffer = services ? services->GetTopBuffer() : nullptr;
    if (!buffer || buffer->GetEditViewCount() == 0) return false;
    const auto view = services->GetTopView();
    const auto block = view ? view->GetBlock() : nullptr;
    return block && block->GetIsValid();
}

// --- Running a command ------------------------------------------------------------------------

namespace {

/// The view that a command acts on: that of the previewer's editor when one is open there, else the
/// IDE's top view.
TIntf<IOTAEditView> CommandView() {
    if (OpenEditor() && OpenEditor()->GetEditViewCount() > 0) return OpenEditor()->GetEditView(0);
    const auto services = IDEService<IOTAEditorServices>();
    return services ? services->GetTopView() : nullptr;
}

/// Keeps the cursor away from the edges of the view.
void ScrollToCursor(IOTAEditView& view) {
    const int row = view.GetPosition()->GetRow();
    if (row - view.GetTopRow() > 2) {
        if (view.GetBottomRow() - row < 3) view.Scroll(2, 0);
    } else
        view.Scroll(-2, 0);
}

TBlockRect ReadRect(IOTAEditBlock& block) {
    return {block.GetStartingRow(), block.GetStartingColumn(), block.GetEndingRow(),
            block.GetEndingColumn()};
}

/// Selects the rectangle again, with the cursor at one of its ends.
void SelectBlock(IOTAEditView& view, const TBlockRect& rect, bool cursorAtStart) {
    if (cursorAtStart) {
        view.GetPosition()->Move(rect.EndRow, rect.EndCol);
        view.GetBlock()->Extend(rect.StartRow, rect.StartCol);
    } else {
        view.GetPosition()->Move(rect.StartRow, rect.StartCol);
        view.GetBlock()->Extend(rect.EndRow, rect.EndCol);
    }
}

/// Takes up to `limit` spaces left of the block's start into the rectangle and returns their
/// number.
int TakeSpacesBefore(IOTAEditView& view, TBlockRect& rect, int limit) {
    if (rect.StartCol <= 1) return 0;
    const auto position = view.GetPosition();
    position->Move(rect.StartRow, rect.StartCol - 1);
    int skipped = 0;
    while (skipped < limit && position->GetCharacter() == ' ') {
        ++skipped;
        if (skipped >= rect.StartCol - 1) break;
        position->MoveRelative(0, -1);
    }
    rect.StartCol = std::max(rect.StartCol - skipped, 1);
    return skipped;
}

/// Switches automatic indents of a buffer off for as long as it lives, also when an insertion
/// fails.
class TIndentOff {
public:
    explicit TIndentOff(TIntf<IOTABufferOptions> options)
        : FOptions(std::move(options)), FSaved(FOptions->GetAutoIndent()) {
        FOptions->SetAutoIndent(false);
    }
    TIndentOff(const TIndentOff&) = delete;
    TIndentOff& operator=(const TIndentOff&) = delete;
    ~TIndentOff() { FOptions->SetAutoIndent(FSaved); }

private:
    TIntf<IOTABufferOptions> FOptions;
    bool FSaved;
};

/// Puts the text in the place of the block, as it stands.
void InsertText(IOTAEditView& view, std::string_view text) {
    const TIndentOff indentOff(view.GetBuffer()->GetBufferOptions());
    view.GetPosition()->InsertText(text);
}

void InvalidateEditor() {
    if (auto* const control = ClassCast<TControl>(GetEditorFormComponent("Editor")))
        control->Invalidate();
}

/// Whether a command has something to act on: a stream block that is not empty.
bool HasStreamBlock(IOTAEditView& view) {
    const auto block = view.GetBlock();
    return block && block->GetStyle() != btColumn && block->GetIsValid();
}

} // namespace

void TBlockMng::DoAction(TBlockActionID action) {
    const auto view = CommandView();
    if (!view) return;
    switch (action) {
    case aiSort:
        DoSortLines(*view);
        break;
    case aiSetup:
        break;
    case aiMoveLeftOne:
        DoMoveBlock(*view, -1);
        break;
    case aiMoveLeftTwo:
        DoMoveBlock(*view, -2);
        break;
    case aiMoveRightOne:
        DoMoveBlock(*view, +1);
        break;
    case aiMoveRightTwo:
        DoMoveBlock(*view, +2);
        break;
    }
    ScrollToCursor(*view);
    view->GetBuffer()->Show();
    view->Paint();
}

void TBlockMng::DoMoveBlock(IOTAEditView& view, int count) {
    if (count == 0 || !HasStreamBlock(view)) return;
    TBlockRect rect = ReadRect(*view.GetBlock());
    const TBlockRect asRead = rect;
    const bool cursorAtStart = view.GetPosition()->GetRow() <= rect.StartRow;
    if (count < 0) {
        TakeSpacesBefore(view, rect, -count);
        SelectBlock(view, rect, false);
    } else
        rect.StartCol += count;

    std::string text = view.GetBlock()->GetText();
    std::optional<TShiftedText> shifted = ShiftText(text, count, SafeStringMoving);
    if (!shifted) {
        SelectBlock(view, asRead, cursorAtStart);
        OS().MessageBeep();
        return;
    }
    const bool endsWithBreak = EndsWithBreak(text);
    text = {}; // a large block need not stand in memory twice while it is replaced
    InsertText(view, shifted->Text);
    if (!cursorAtStart) InvalidateEditor();
    if (TForm* const form = Screen()->ActiveForm()) form->Invalidate();
    // The topmost line's shift moves the end column even of a block of several lines.
    if (!endsWithBreak) rect.EndCol += shifted->Shift;
    SelectBlock(view, rect, MoveCursorTopLeft || cursorAtStart);
}

void TBlockMng::DoSortLines(IOTAEditView& view) {
    if (!HasStreamBlock(view)) return;
    TBlockRect rect = ReadRect(*view.GetBlock());
    const TBlockRect asRead = rect;
    const bool cursorAtStart = view.GetPosition()->GetRow() <= rect.StartRow;
    // All the spaces before the block on its first row belong to its first line.
    const int skipped = TakeSpacesBefore(view, rect, rect.StartCol - 1);
    SelectBlock(view, rect, true);

    const std::string text = view.GetBlock()->GetText();
    TStringList lines;
    lines.SetTextStr(text);
    int index = 0;
    if (!SortDeclarations(lines, index)) {
        SelectBlock(view, asRead, cursorAtStart);
        OS().MessageBeep();
        return;
    }
    std::string sorted = lines.GetTextStr();
    DropAddedBreak(text, sorted);
    InsertText(view, sorted);
    InvalidateEditor();
    view.GetPosition()->Move(rect.StartRow, rect.StartCol + skipped);
}

// --- Registration -----------------------------------------------------------------------------

namespace {

TUnitCounter& Counter() {
    static TUnitCounter counter;
    return counter;
}

} // namespace

void InitializeBlockMng() {
    if (Counter().Enter())
        RegisterExpClass(TExpertClass::Of<TBlockMng>(), 4, "EditorManager", 51140);
}

void FinalizeBlockMng() {
    if (Counter().Leave()) OpenEditor() = nullptr;
}

} // namespace tarn
