// The settings editor's rows: how they come, where they stand, and how they go.

#include "TAllSteps.h"
#include "TRowWalk.h"
#include "qsLocale.h"
#include "qsSpcEditor.h"
#include "rtl/SysUtils.h"
#include "vcl/TEllipsisLabel.h"

#include <algorithm>

namespace tarn {
namespace {

/// The hourglass, for as long as the object lives.
class TBusyCursor {
public:
    TBusyCursor() : FOld(Screen() ? Screen()->Cursor() : crDefault) { Set(crHourGlass); }
    TBusyCursor(const TBusyCursor&) = delete;
    TBusyCursor& operator=(const TBusyCursor&) = delete;
    ~TBusyCursor() { Set(FOld); }

private:
    static void Set(int cursor) {
        if (Screen()) Screen()->SetCursor(cursor);
    }
    int FOld;
};

/// The places of two things of one row, the taller of which gives it its height.
void Centre(TControl& taller, TControl& shorter, int top) {
    taller.SetTop(top);
    shorter.SetTop(top + (taller.Height() - shorter.Height()) / 2);
}

int AlignedLeft(TAlignment alignment, int left, int right, int width, int areaWidth) {
    if (alignment == taLeftJustify) return left;
    return alignment == taRightJustify ? areaWidth - right - width : (areaWidth - width) / 2;
}

} // namespace

/// An update of both areas, for as long as the object lives.
class TSpcEditor::TAreaUpdate {
public:
    explicit TAreaUpdate(TSpcEditor& editor) : FEditor(editor) { FEditor.BeginUpdate(akAll); }
    TAreaUpdate(const TAreaUpdate&) = delete;
    TAreaUpdate& operator=(const TAreaUpdate&) = delete;
    ~TAreaUpdate() { FEditor.EndUpdate(akAll); }

private:
    TSpcEditor& FEditor;
};

// --- The rows of a node -----------------------------------------------------------------------

/// A run through a node's properties that makes their rows.
struct TSpcEditor::TRowRun {
    unsigned Build;                    ///< that it belongs to
    int Top;                           ///< of the next row
    std::vector<const TObject*> Above; ///< items that wrap each other, the outermost first
};

void TSpcEditor::CreateNodeControls(TPersistent* instance) {
    if (!FForm) return;
    const TBusyCursor busy;
    const TAreaUpdate update(*this);
    const TRowWalk walk(*this);
    const TWeak<TPersistent> object(instance);
    const unsigned build = FBuild + 1; // which ClearPaintAreas begins
    try {
        ClearPaintAreas();
        MakeRows(object.Get(), build);
        FinishRows(build);
    } catch (...) {
        if (IsCurrent(build)) DropHalf(object.Get());
        throw;
    }
}

/// Whether a build of rows is still the last one: a handler may show another node, or close the
/// window.
bool TSpcEditor::IsCurrent(unsigned build) const {
    return FForm && FBuild == build;
}

void TSpcEditor::MakeRows(TPersistent* instance, unsigned build) {
    if (!instance || !IsCurrent(build)) return;
    FLabelWidth = FLabelAreaInfo->DefAreaWidth();
    FShown = instance;
    TRowRun run{build, TopInc, {}};
    CreateRows(*instance, run);
    if (IsCurrent(build)) SetControlsData();
}

void TSpcEditor::FinishRows(unsigned build) {
    if (IsCurrent(build)) UpdatePaintAreas(akAll);
    if (!IsCurrent(build)) return;
    CheckDisabledState();
    ShowCount();
}

/// Half the rows of a node would be taken for all of them. The node stays the one on show: its rows
/// come when what was wrong is mended.
void TSpcEditor::DropHalf(TPersistent* instance) {
    TAllSteps steps;
    steps.Run([&] { ClearPaintAreas(); });
    FShown = instance;
    steps.Run([&] { FinishRows(FBuild); });
}

void TSpcEditor::CreateRows(TPersistent& instance, TRowRun& run) {
    if (std::find(run.Above.begin(), run.Above.end(), &instance) != run.Above.end()) return;
    run.Above.push_back(&instance);
    const TWeak<TPersistent> alive(&instance);
    const TProps props = PropsOf(instance.ClassType()); // handlers may change their order
    for (std::size_t i = 0; i < props.size() && alive && IsCurrent(run.Build); ++i) {
        const TPropInfo& prop = *props[i];
        if (NamesNode(prop) || IsInvisible(instance, prop) || !CanProcessProperty(instance, prop))
            continue;
        if (!SharesNode(instance, prop))
            CreatePropControl(instance, prop, static_cast<int>(i), run.Top);
        else if (TPersistent* const wrapped = ValueOf(instance, prop))
            CreateRows(*wrapped, run);
    }
    run.Above.pop_back();
}

bool TSpcEditor::IsInvisible(const TPersistent& instance, const TPropInfo& prop) const {
    return FInvisibleProps->IndexOf(GetFullPropName(instance, prop)) >= 0;
}

bool TSpcEditor::CanProcessProperty(TPersistent&, const TPropInfo& prop) {
    return FindKind(BuiltInKinds(), prop) != nullptr;
}

TControlInfo* TSpcEditor::CreatePropControl(TPersistent& instance, const TPropInfo& prop,
                                            int propIndex, int& top) {
    const TRowWalk walk(*this);
    const unsigned build = FBuild;
    std::unique_ptr<TControlInfo> made = TakePending(instance, prop);
    const bool isNew = !made;
    // What a parameter section or a handler does to a control is no change of the user's.
    InState(esDataSetting, [&] {
        if (isNew)
            made = MakeControl(instance, prop, propIndex);
        else
            UpdatePlaceParams(*made);
    });
    if (!made) return nullptr;
    if (build != FBuild) {
        FreeControl(*made);
        return nullptr;
    }
    made->NodeObject = FShown ? FShown : made->EInstance;
    TControlInfo& info = FControls.Add(std::move(made));
    if (isNew) InState(esDataSetting, [&] { DoAfterCreateControl(info); });
    if (!info.EInstance) DropControl(info); // the handler has freed it
    if (!info.Dropped) MakeLabel(info);
    if (info.Dropped) return nullptr;
    top = PlaceRow(info, top);
    return &info;
}

/// A row without its label; null when the property has none.
std::unique_ptr<TControlInfo> TSpcEditor::MakeControl(TPersistent& instance, const TPropInfo& prop,
                                                      int propIndex) {
    auto info = std::make_unique<TControlInfo>();
    info->EInstance = &instance;
    info->EPropInfo = &prop;
    info->PropIndex = propIndex;
    try {
        bool handled = false;
        const bool made =
            MakeSuppliedControl(*info, handled) || (!handled && MakeBuiltInControl(*info));
        if (made) return info;
    } catch (...) {
        FreeControl(*info);
        throw;
    }
    return nullptr;
}

bool TSpcEditor::MakeSuppliedControl(TControlInfo& info, bool& handled) {
    TNewControlData data;
    if (BeforeCreateControl)
        BeforeCreateControl(this, *info.EInstance, *info.EPropInfo, &FForm->ControlArea(),
                            ChangeAction(), data, handled);
    if (!handled) DoBeforeCreateControl(info, data, handled);
    if (!handled || !data.Control) return false;
    info.EControl = data.Control;
    if (!FForm) { // the handler has closed the window
        FreeControl(info);
        return false;
    }
    info.EModifyObject = data.ModifyObject ? data.ModifyObject : data.Control;
    info.SetETag(data.ETag);
    info.NativeMarker = data.NativeMarker;
    info.EControl->SetParent(&FForm->ControlArea());
    TStringList params;
    params.SetTextStr(data.Params);
    SetControlParams(info, params);
    return true;
}

bool TSpcEditor::MakeBuiltInControl(TControlInfo& info) {
    const TPropKind* const kind = FindKind(BuiltInKinds(), *info.EPropInfo);
    if (!kind || !FForm) return false;
    info.EControl = kind->Create(*this, info, ChangeAction());
    if (!info.EControl) return false;
    info.EModifyObject = info.EControl;
    info.SetETag(kind->Tag);
    info.EControl->SetParent(&FForm->ControlArea());
    UpdateControlParams(info, kind->Name);
    return true;
}

void TSpcEditor::DoBeforeCreateControl(TControlInfo&, TNewControlData&, bool&) {}

void TSpcEditor::DoAfterCreateControl(TControlInfo& info) {
    if (AfterCreateControl) AfterCreateControl(this, info);
}

// --- Labels -----------------------------------------------------------------------------------

std::string TSpcEditor::LabelCaption(const TControlInfo& info) const {
    const std::string_view name = info.EPropInfo->Name;
    std::string caption =
        info.EInstance ? Translate(info.EInstance->ClassName(), name) : std::string(name);
    if (FormOptions.Contains(foMultiLineCaptions))
        for (std::size_t at = 0; (at = caption.find("##", at)) != std::string::npos;)
            caption.replace(at, 2, "\r\n");
    return Format("%s :", {caption});
}

void TSpcEditor::MakeLabel(TControlInfo& info) {
    const bool ellipsis = FormOptions.Contains(foEllipsisLabels);
    info.Label = ellipsis ? new TEllipsisLabel : new TLabel;
    TLabel& label = *info.Label;
    label.SetParent(&FForm->LabelArea());
    label.Font().Assign(FLabelAreaInfo->Font());
    label.SetFocusControl(info.EControl);
    label.OnClick = TNotifyEvent::Of<&TSpcEditor::LabelClicked>(this);
    label.SetCaption(LabelCaption(info));
    DoCreateLabel(label, info);
    label.SetAlignment(FLabelAreaInfo->Alignment());
    label.SetLeft(FLabelAreaInfo->LeftMargin());
    GrowLabelArea(label);
}

/// Up to the widest label, which has its margins: without them its end would be cut off.
void TSpcEditor::GrowLabelArea(const TLabel& label) {
    const TLabelAreaInfo& area = *FLabelAreaInfo;
    if (area.AutoWidth())
        FLabelWidth = std::max(FLabelWidth, area.LeftMargin() + label.Width() + area.RightMargin());
}

void TSpcEditor::DoCreateLabel(TLabel& label, TControlInfo& info) {
    if (OnCreateLabel) OnCreateLabel(this, label, info);
}

void TSpcEditor::LabelClicked(TObject* label) {
    TControl* const control = static_cast<TLabel*>(label)->FocusControl();
    if (control && control->CanFocus()) control->SetFocus();
}

// --- Places -----------------------------------------------------------------------------------

int TSpcEditor::PlaceRow(TControlInfo& info, int top) {
    TControl& control = *info.EControl;
    TControl& label = *info.Label;
    if (!info.Params.CentredLabel) {
        control.SetTop(top);
        label.SetTop(top + 1);
    } else if (control.Height() >= label.Height()) {
        Centre(control, label, top);
    } else {
        Centre(label, control, top);
    }
    return top + std::max(control.Height(), label.Height());
}

void TSpcEditor::ResizeControl(TControlInfo& info, int areaWidth) {
    const TRowWalk walk(*this);
    bool handled = false;
    if (OnResizeControl) OnResizeControl(this, info, areaWidth, handled);
    if (handled || info.Dropped) return;
    TControl& control = *info.EControl;
    const TRowParams& params = info.Params;
    TRect place = control.BoundsRect();
    if (params.HasWidth)
        place.Width = params.Percent ? areaWidth * params.Width / 100 : params.Width;
    place.Left = AlignedLeft(FControlAreaInfo->Alignment(), FControlAreaInfo->LeftMargin(),
                             FControlAreaInfo->RightMargin(), place.Width, areaWidth);
    if (place != control.BoundsRect()) control.SetBoundsRect(place);
}

void TSpcEditor::SetLabelWidth(int value) {
    FLabelAreaInfo->SetDefAreaWidth(value); // which lets the area grow
    FLabelWidth = value;
    UpdatePaintAreas(akAll);
}

/// The rows take over what has changed of an area.
void TSpcEditor::AreasChange(TObject*) {
    if (!FForm || FState.Contains(esFormDestroying)) return;
    FLabelWidth = FLabelAreaInfo->DefAreaWidth();
    int top = TopInc;
    for (TControlInfo* const info : Rows(false)) {
        if (!info->Label) continue;
        info->Label->Font().Assign(FLabelAreaInfo->Font());
        info->Label->SetAlignment(FLabelAreaInfo->Alignment());
        GrowLabelArea(*info->Label);
        top = PlaceRow(*info, top);
    }
    UpdatePaintAreas(akAll);
}

void TSpcEditor::UpdateLabelArea() {
    if (!FForm) return;
    const TLabelAreaInfo& area = *FLabelAreaInfo;
    for (const TControlInfo* const info : Rows(false)) {
        if (!info->Label) continue; // it is being made
        TLabel& label = *info->Label;
        const int room = FLabelWidth - area.LeftMargin() - area.RightMargin();
        if (FormOptions.Contains(foEllipsisLabels)) label.SetWidth(std::max(room, 0));
        label.SetLeft(AlignedLeft(area.Alignment(), area.LeftMargin(), area.RightMargin(),
                                  label.Width(), FLabelWidth));
    }
}

void TSpcEditor::UpdateControlArea() {
    if (!FForm) return;
    const TControlAreaInfo& area = *FControlAreaInfo;
    const int room = FForm->ControlArea().Width() - area.LeftMargin() - area.RightMargin();
    const TRowWalk walk(*this);
    for (TControlInfo* const info : Rows(false))
        if (!info->Dropped) ResizeControl(*info, std::max(room, 0));
}

void TSpcEditor::UpdatePaintAreas(TAreaKind kind) {
    if (!FForm || FState.Contains(esFormDestroying)) return;
    int height = 0;
    const auto reach = [&](const TControl* control) {
        if (control) height = std::max(height, control->Top() + control->Height());
    };
    for (const TControlInfo* const info : Rows(false)) {
        reach(info->EControl);
        reach(info->Label);
    }
    const int rest = FForm->RowsWidth(height) - FLabelWidth;
    const int width = FormOptions.Contains(foAreasDynamicResize) ? std::max(rest, 0)
                                                                 : FControlAreaInfo->DefAreaWidth();
    FForm->LayOutAreas(FLabelWidth, width, height);
    if (kind != akControl) UpdateLabelArea();
    if (kind != akLabel) UpdateControlArea();
}

// --- Painting ---------------------------------------------------------------------------------

TControl* TSpcEditor::Area(TAreaKind kind) const {
    if (!FForm) return nullptr;
    return kind == akLabel ? &FForm->LabelArea() : &FForm->ControlArea();
}

template <class F> void TSpcEditor::ForEachArea(TAreaKind kind, F&& visit) const {
    for (const TAreaKind each : {akLabel, akControl})
        if ((kind == akAll || kind == each) && Area(each)) visit(each);
}

void TSpcEditor::BeginUpdate(TAreaKind kind) {
    ForEachArea(kind, [&](TAreaKind each) {
        if (FUpdates[each]++ == 0) SetRedrawMode(each, false);
    });
}

void TSpcEditor::EndUpdate(TAreaKind kind) {
    ForEachArea(kind, [&](TAreaKind each) {
        if (FUpdates[each] == 0 || --FUpdates[each] > 0) return;
        SetRedrawMode(each, true);
        RedrawWnd(each);
    });
}

void TSpcEditor::SetRedrawMode(TAreaKind kind, bool on) {
    ForEachArea(kind, [&](TAreaKind each) { Area(each)->Perform(WM_SETREDRAW, on ? 1 : 0); });
}

void TSpcEditor::RedrawWnd(TAreaKind kind) {
    ForEachArea(kind, [&](TAreaKind each) {
        Area(each)->RedrawWindow(RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    });
}

// --- Disabled properties ----------------------------------------------------------------------

/// What can only be read is shown, too, and stays disabled. A control that somebody else has
/// disabled stays so when its row is taken off the list.
void TSpcEditor::CheckDisabledState() {
    if (!FForm || FState.Contains(esFormDestroying)) return;
    for (TControlInfo* const info : Rows(false)) {
        if (!info->EInstance) continue;
        const std::string name = GetFullPropName(*info->EInstance, *info->EPropInfo);
        const bool disable = FDisabledProps->IndexOf(name) >= 0 || !CanWrite(*info);
        if (disable == info->Disabled) continue;
        info->Disabled = disable;
        if (disable) info->WasEnabled = info->EControl->Enabled();
        info->EControl->SetEnabled(!disable && info->WasEnabled);
    }
}

/// An object that a property holds can be changed without replacing it.
bool TSpcEditor::CanWrite(const TControlInfo& info) {
    return info.EPropInfo->Set || info.EPropInfo->PropType->Kind == tkClass;
}

void TSpcEditor::ShowCount() {
    FForm->StatusBar().SetSimpleText(Format(LocaleStr(strProperties), {FControls.Count()}));
}

// --- Going ------------------------------------------------------------------------------------

void TSpcEditor::FreeControl(TControlInfo& info) {
    delete std::exchange(info.Label, nullptr);
    delete std::exchange(info.EControl, nullptr);
}

void TSpcEditor::FreeControlInfo(std::unique_ptr<TControlInfo> info) {
    info.reset();
}

/// The row goes even when the handler raises.
void TSpcEditor::Drop(std::unique_ptr<TControlInfo> info) {
    TAllSteps steps;
    steps.Run([&] {
        if (OnDropControl) OnDropControl(this, *info);
    });
    info->Dropped = true;
    FGone.push_back(std::move(info));
    if (FWalks == 0) FreeGone();
    steps.Finish();
}

void TSpcEditor::FreeGone() {
    // The newest first: their parent finds those at once.
    for (TRows gone = std::exchange(FGone, {}); !gone.empty(); gone.pop_back()) {
        FreeControl(*gone.back());
        FreeControlInfo(std::move(gone.back()));
    }
}

void TSpcEditor::DropControl(TControlInfo& info) {
    if (const int index = FControls.IndexOf(info); index >= 0) Drop(FControls.Take(index));
}

void TSpcEditor::DropAll(TRows rows) {
    TAllSteps steps;
    for (auto& info : rows) steps.Run([&] { Drop(std::move(info)); });
    steps.Finish();
}

/// Takes the rows off. Those with changes that wait are kept, out of sight, unless they are to go,
/// too.
void TSpcEditor::ClearPaintAreas(bool pendingToo) {
    ++FBuild;
    FShown = nullptr;
    TRows gone;
    for (auto& info : FControls.TakeAll()) {
        if (!info->Modified || !KeepsPending() || !info->EInstance) {
            gone.push_back(std::move(info));
            continue;
        }
        info->EControl->SetVisible(false);
        if (info->Label) info->Label->SetVisible(false);
        FPending.push_back(std::move(info));
    }
    if (pendingToo)
        for (auto& info : std::exchange(FPending, {})) gone.push_back(std::move(info));
    DropAll(std::move(gone));
}

/// On live objects the changes are written when they are saved, not when another node is shown.
bool TSpcEditor::KeepsPending() const {
    return !FClone && !Options.Contains(eoSaveSpcOnChange) && !FState.Contains(esNodeDeleting) &&
           !FState.Contains(esFormDestroying);
}

std::unique_ptr<TControlInfo> TSpcEditor::TakePending(const TPersistent& instance,
                                                      const TPropInfo& prop) {
    const auto found = std::find_if(FPending.begin(), FPending.end(), [&](const auto& info) {
        return info->EInstance == &instance && info->EPropInfo == &prop;
    });
    if (found == FPending.end()) return nullptr;
    std::unique_ptr<TControlInfo> info = std::move(*found);
    FPending.erase(found);
    info->EControl->SetVisible(true);
    delete std::exchange(info->Label, nullptr);
    return info;
}

void TSpcEditor::DropPending() {
    DropAll(std::exchange(FPending, {}));
}

/// Drops the rows that wait for nodes below this one, and for itself when it goes, too.
void TSpcEditor::DropPendingBelow(const TTreeNode& node, bool itself) {
    TRows gone;
    for (const TTreeNode* each = itself ? &node : node.GetNext();
         each && (each == &node || each->HasAsParent(node)); each = each->GetNext())
        for (auto& info : FPending)
            if (info && info->NodeObject.Get() == each->Data()) gone.push_back(std::move(info));
    std::erase(FPending, nullptr);
    DropAll(std::move(gone));
}

void TSpcEditor::RebuildControls() {
    if (!FForm || !FShown || FState.Contains(esFormDestroying)) return;
    // What is in the controls of a copy goes into the copy. Rows with what is no value yet stay as
    // they are: it would be lost.
    try {
        if (FClone && !GetControlsData()) return;
    } catch (const EConvertError&) {
        return;
    }
    if (FShown) CreateNodeControls(FShown.Get());
}

// --- Parameter sections -----------------------------------------------------------------------

void TSpcEditor::ControlParamsChange(TObject*) {
    FSectionsReady = false;
    if (!FForm || FState.Contains(esFormDestroying)) return;
    PrepareParams();
    RebuildControls();
}

void TSpcEditor::PrepareParams() {
    if (FSectionsReady) return;
    FSections.SetStrings(*FControlParams);
    std::string section;
    for (int i = 0; i < FRedefiedParams->Count(); ++i) {
        const std::string_view line = Trim((*FRedefiedParams)[i]);
        if (line.empty() || line.front() == ';') continue;
        if (line.front() == '[' && line.back() == ']') {
            section = line.substr(1, line.size() - 2);
            continue;
        }
        const std::size_t mark = line.find('=');
        if (section.empty() || mark == std::string_view::npos || mark == 0)
            throw ESpcEditorError(
                Format("%s\r\n[%s] %s", {LocaleStr(strParamSection), section, line}));
        FSections.WriteString(section, line.substr(0, mark), line.substr(mark + 1));
    }
    FSectionsReady = true;
}

void TSpcEditor::ReadParamSection(std::string_view kindName, TStrings& lines) const {
    lines.Clear();
    FSections.ReadSectionValues(std::string(kindName).append("Control"), lines);
}

void TSpcEditor::UpdateControlParams(TControlInfo& info, std::string_view kindName) {
    PrepareParams();
    TStringList section;
    ReadParamSection(kindName, section);
    SetControlParams(info, section);
}

/// A row that has waited keeps its control and what is in it; where it stands may be told anew.
void TSpcEditor::UpdatePlaceParams(TControlInfo& info) {
    const TPropKind* const kind =
        info.IsNativeControl(0) ? KindOfTag(BuiltInKinds(), info.GetETag()) : nullptr;
    if (!kind) return;
    PrepareParams();
    TStringList section;
    ReadParamSection(kind->Name, section);
    info.Params = {};
    for (int i = 0; i < section.Count(); ++i) ReadPlaceParam(info, section[i]);
}

namespace {

/// "80%" or "80".
void ReadWidth(std::string_view text, TRowParams& params) {
    const std::size_t mark = text.find('%');
    const int width = StrToInt(Trim(text.substr(0, mark)));
    const bool percent = mark != std::string_view::npos;
    if (percent && (width < 0 || width > 100)) throw ESpcEditorError(LocaleStr(strPercentRange));
    params.Width = width;
    params.Percent = percent;
    params.HasWidth = true;
}

} // namespace

/// Takes over a line that says where the row stands; false for another one.
bool TSpcEditor::ReadPlaceParam(TControlInfo& info, std::string_view line) {
    const std::size_t mark = line.find('=');
    if (mark == std::string_view::npos) return true; // a heading
    const std::string_view key = Trim(line.substr(0, mark));
    const std::string_view value = Trim(line.substr(mark + 1));
    if (SameText(key, "Width"))
        ReadWidth(value, info.Params);
    else if (SameText(key, "CentredLabel"))
        info.Params.CentredLabel = SameText(value, "True");
    else
        return false;
    return true;
}

void TSpcEditor::SetControlParams(TControlInfo& info, const TStrings& section) {
    for (int i = 0; i < section.Count(); ++i) {
        const std::string_view line = section[i];
        if (ReadPlaceParam(info, line)) continue;
        const std::size_t mark = line.find('=');
        SetPropByText(*info.EControl, Trim(line.substr(0, mark)), Trim(line.substr(mark + 1)));
    }
}

} // namespace tarn
