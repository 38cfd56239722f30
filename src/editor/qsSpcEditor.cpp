// The settings editor: its properties and its life cycle.

#include "qsSpcEditor.h"

#include "SpcStrings.h"
#include "TAllSteps.h"
#include "qsLocale.h"
#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

// Events of the same signature have names of their own.
constexpr TTypeInfo CreateSpcEventType = MethodType("TCreateSpc", MethodSignatureOf<TCreateSpc>);
constexpr TTypeInfo ControlNotifyEventType =
    MethodType("TControlNotifyEvent", MethodSignatureOf<TControlNotifyEvent>);
constexpr TTypeInfo ControlHandlingEventType =
    MethodType("TControlHandlingEvent", MethodSignatureOf<TControlHandlingEvent>);
constexpr TTypeInfo AfterGetControlDataEventType =
    MethodType("TAfterGetControlDataEvent", MethodSignatureOf<TAfterGetControlDataEvent>);
constexpr TTypeInfo BeforeGetControlDataEventType =
    MethodType("TBeforeGetControlDataEvent", MethodSignatureOf<TBeforeGetControlDataEvent>);
constexpr TTypeInfo AfterSaveSpcEventType =
    MethodType("TAfterSaveSpcEvent", MethodSignatureOf<TAfterSaveSpcEvent>);
constexpr TTypeInfo BeforeSaveSpcEventType =
    MethodType("TBeforeSaveSpcEvent", MethodSignatureOf<TBeforeSaveSpcEvent>);
constexpr TTypeInfo BeforeCreateControlEventType =
    MethodType("TBeforeCreateControlEvent", MethodSignatureOf<TBeforeCreateControlEvent>);
constexpr TTypeInfo CollectionChangeEventType =
    MethodType("TCollectionChangeEvent", MethodSignatureOf<TCollectionChangeEvent>);
constexpr TTypeInfo CollectionChangingEventType =
    MethodType("TCollectionChangingEvent", MethodSignatureOf<TCollectionChangingEvent>);
constexpr TTypeInfo CreateLabelEventType =
    MethodType("TCreateLabelEvent", MethodSignatureOf<TCreateLabelEvent>);
constexpr TTypeInfo WriteFormSettingEventType =
    MethodType("TWriteFormSettingEvent", MethodSignatureOf<TWriteFormSettingEvent>);
constexpr TTypeInfo ReadFormSettingEventType =
    MethodType("TReadFormSettingEvent", MethodSignatureOf<TReadFormSettingEvent>);
constexpr TTypeInfo ResizeControlEventType =
    MethodType("TResizeControlEvent", MethodSignatureOf<TResizeControlEvent>);
constexpr TTypeInfo PlaceNodeImageEventType =
    MethodType("TPlaceNodeImageEvent", MethodSignatureOf<TPlaceNodeImageEvent>);
constexpr TTypeInfo SelectStartNodeEventType =
    MethodType("TSelectStartNodeEvent", MethodSignatureOf<TSelectStartNodeEvent>);

using E = TSpcEditor;
constexpr TPropInfo SpcEditorProps[] = {
    Published<&E::ShowStatusBar, &E::SetShowStatusBar>("ShowStatusBar", {.Default = true}),
    Published<&E::SimpleMode, &E::SetSimpleMode>("SimpleMode", {.Default = false}),
    Published<&E::ColCount, &E::SetColCount>("ColCount", {.Default = 1}),
    Published<&E::ControlAreaInfo, &E::SetControlAreaInfo>("ControlAreaInfo"),
    Published<&E::ControlParams, &E::SetControlParamsText>("ControlParams"),
    Published<&E::DisabledProps, &E::SetDisabledProps>("DisabledProps"),
    Published<&E::FormCaption, &E::SetFormCaption>("FormCaption"),
    Published<&E::FormOptions>("FormOptions", {.Default = E::BaseFormOptions.Mask()}),
    Published<&E::HeaderFont, &E::SetHeaderFont>("HeaderFont"),
    Published<&E::IniFileName>("IniFileName"),
    Published<&E::IniSection>("IniSection"),
    Published<&E::InvisibleProps, &E::SetInvisibleProps>("InvisibleProps"),
    Published<&E::LabelAreaInfo, &E::SetLabelAreaInfo>("LabelAreaInfo"),
    Published<&E::Options>("Options", {.Default = 0}),
    Published<&E::RedefiedParams, &E::SetRedefiedParams>("RedefiedParams"),
    Published<&E::TopInc>("TopInc", {.Default = 0}),
    Published<&E::TranslatingTable, &E::SetTranslatingTable>("TranslatingTable"),
    Published<&E::TreeFont, &E::SetTreeFont>("TreeFont"),
    Published<&E::VisibleButtons>("VisibleButtons", {.Default = E::AllButtons.Mask()}),
    Published<&E::AfterCreateControl>("AfterCreateControl", {.Type = &ControlNotifyEventType}),
    Published<&E::AfterGetControlData>("AfterGetControlData",
                                       {.Type = &AfterGetControlDataEventType}),
    Published<&E::AfterSaveSpc>("AfterSaveSpc", {.Type = &AfterSaveSpcEventType}),
    Published<&E::AfterSetControlData>("AfterSetControlData", {.Type = &ControlNotifyEventType}),
    Published<&E::BeforeCreateControl>("BeforeCreateControl",
                                       {.Type = &BeforeCreateControlEventType}),
    Published<&E::BeforeGetControlData>("BeforeGetControlData",
                                        {.Type = &BeforeGetControlDataEventType}),
    Published<&E::BeforeSaveSpc>("BeforeSaveSpc", {.Type = &BeforeSaveSpcEventType}),
    Published<&E::BeforeSetControlData>("BeforeSetControlData",
                                        {.Type = &ControlHandlingEventType}),
    Published<&E::OnCollectionChange>("OnCollectionChange", {.Type = &CollectionChangeEventType}),
    Published<&E::OnCollectionChanging>("OnCollectionChanging",
                                        {.Type = &CollectionChangingEventType}),
    Published<&E::OnControlChange>("OnControlChange", {.Type = &ControlNotifyEventType}),
    Published<&E::OnCreateLabel>("OnCreateLabel", {.Type = &CreateLabelEventType}),
    Published<&E::OnCreateSpc>("OnCreateSpc", {.Type = &CreateSpcEventType}),
    Published<&E::OnDropControl>("OnDropControl", {.Type = &ControlNotifyEventType}),
    Published<&E::OnLoadSpc>("OnLoadSpc", {.Type = &CreateSpcEventType}),
    Published<&E::OnPlaceNodeImage>("OnPlaceNodeImage", {.Type = &PlaceNodeImageEventType}),
    Published<&E::OnReadFormSetting>("OnReadFormSetting", {.Type = &ReadFormSettingEventType}),
    Published<&E::OnResizeControl>("OnResizeControl", {.Type = &ResizeControlEventType}),
    Published<&E::OnSelectStartNode>("OnSelectStartNode", {.Type = &SelectStartNodeEventType}),
    Published<&E::OnWriteFormSetting>("OnWriteFormSetting", {.Type = &WriteFormSettingEventType}),
};

void SetDefaultFont(TFont& font) {
    font.SetName("MS Sans Serif");
    font.SetSize(9);
    font.SetColor(clBlack);
}

} // namespace

constinit const TClassRecord TSpcEditor::ClassRecord{"TSpcEditor", &TComponent::ClassRecord,
                                                     CreateObject<TSpcEditor>, SpcEditorProps};

TSpcEditor::TSpcEditor(TComponent* owner) : TComponent(owner) {
    SetDefaultFont(*FTreeFont);
    SetDefaultFont(*FHeaderFont);
    FControlParams->SetTextStr(BuiltInParams());
    FControlAreaInfo->OnChange = TNotifyEvent::Of<&TSpcEditor::AreasChange>(this);
    FLabelAreaInfo->OnChange = TNotifyEvent::Of<&TSpcEditor::AreasChange>(this);
    FTreeFont->OnChange = FHeaderFont->OnChange = TNotifyEvent::Of<&TSpcEditor::FontsChange>(this);
    FControlParams->OnChange = TNotifyEvent::Of<&TSpcEditor::ControlParamsChange>(this);
    FRedefiedParams->OnChange = TNotifyEvent::Of<&TSpcEditor::RedefiedParamsChange>(this);
    FDisabledProps->OnChange = TNotifyEvent::Of<&TSpcEditor::DisabledPropsChange>(this);
    FInvisibleProps->OnChange = TNotifyEvent::Of<&TSpcEditor::InvisiblePropsChange>(this);
    FTranslatingTable->OnChange = TNotifyEvent::Of<&TSpcEditor::TranslatingTableChange>(this);
}

TSpcEditor::~TSpcEditor() {
    // A handler's error must not stop the end, and has stopped nothing.
    try {
        DoRelease();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

// --- Properties -------------------------------------------------------------------------------

void TSpcEditor::SetShowStatusBar(bool value) {
    FShowStatusBar = value;
    if (FForm) FForm->StatusBar().SetVisible(value);
}

void TSpcEditor::SetSimpleMode(bool value) {
    if (FSimpleMode == value) return;
    FSimpleMode = value;
    RebuildControls();
}

void TSpcEditor::SetColCount(int value) {
    if (value < 1) throw ESpcEditorError(LocaleStr(strColCount));
    FColCount = value;
    UpdatePaintAreas(akAll);
}

void TSpcEditor::SetFormCaption(std::string_view value) {
    FFormCaption = value;
    SetCaption();
}

TStrings* TSpcEditor::StringsProp(TSpcEdStringsKind kind) const {
    switch (kind) {
    case skDisabledProps:
        return DisabledProps();
    case skInvisibleProps:
        return InvisibleProps();
    case skTranslatingTable:
        return TranslatingTable();
    case skControlParams:
        return ControlParams();
    case skRedefiedParams:
        break;
    }
    return RedefiedParams();
}

void TSpcEditor::SetStringsProp(TSpcEdStringsKind kind, const TStrings& strings) {
    StringsProp(kind)->Assign(&strings);
}

void TSpcEditor::FontsChange(TObject*) {
    if (!FForm) return;
    FForm->Tree().Font().Assign(FTreeFont.get());
    FForm->Header().Font().Assign(FHeaderFont.get());
}

// --- Binding ----------------------------------------------------------------------------------

void TSpcEditor::Init(const TInitData& data) {
    FBound = true;
    FFormat = data.Format;
    SetSpcFileName(data.FileName);
    SetSpcRoot(data.Spc);
}

void TSpcEditor::CheckInit() const {
    if (!FBound) throw ESpcEditorError(LocaleStr(strNoInitData));
    if (!FRoot) throw ESpcEditorError(LocaleStr(strNoSpcObject));
}

void TSpcEditor::SetSpcRoot(TPersistent* root) {
    const bool isOther = root != FRoot.Get();
    if (isOther) UnPrepare();
    FRoot = root;
    FBound = true;
    if (!isOther || !root || !FForm || !FForm->Visible()) return;
    Prepare();
    SetCaption();
    BuildTree();
}

void TSpcEditor::SetSpcFileName(std::string_view name) {
    FSpcFileName = name;
    FOnFile = !name.empty();
    SetCaption();
}

TPersistent* TSpcEditor::GetUpdatingSpc() const {
    return FClone ? FClone.get() : FRoot.Get();
}

void TSpcEditor::Prepare() {
    CheckInit();
    PrepareParams();
    if (FOnFile) MakeSpcClone();
    FModified = false;
}

void TSpcEditor::UnPrepare() {
    FModified = false;
    DropSpcClone();
}

void TSpcEditor::FillClone(TPersistent& clone) {
    auto* const spc = ClassCast<TSpcObject>(&clone);
    if (OnCreateSpc && spc)
        OnCreateSpc(this, *spc);
    else
        clone.Assign(FRoot.Get());
}

std::unique_ptr<TPersistent> TSpcEditor::NewClone() {
    const TClassRecord& record = FRoot->ClassType();
    if (!record.Create)
        throw ESpcEditorError(Format("a %s cannot be copied", {FRoot->ClassName()}));
    std::unique_ptr<TPersistent> clone(static_cast<TPersistent*>(record.Create().release()));
    FillClone(*clone);
    return clone;
}

void TSpcEditor::MakeSpcClone() {
    CheckInit();
    if (!FClone) {
        FClone = NewClone();
        return;
    }
    ForgetRows(); // nothing may show what is about to go
    FillClone(*FClone);
}

void TSpcEditor::DropSpcClone() {
    TAllSteps steps;
    steps.Run([&] { ForgetRows(); });
    FClone.reset();
    steps.Finish();
}

/// Takes off all rows, those that wait among them, and the tree.
void TSpcEditor::ForgetRows() {
    InState(esNodeDeleting, [&] {
        if (FForm) FForm->Tree().Items().Clear();
        ClearPaintAreas(true);
    });
}

void TSpcEditor::UpdateSpc() {
    ForgetRows();
    if (FOnFile) MakeSpcClone();
    BuildTree();
}

// --- The window -------------------------------------------------------------------------------

void TSpcEditor::MakeForm() {
    if (FForm) return;
    FKeyFilter = TKeyFilter(); // the separators may be others by now
    FFormUsed = false;
    FForm = new TSpcForm(*this);
}

bool TSpcEditor::ShowTree(TPersistent& root) {
    SetSpcRoot(&root);
    return ShowTree();
}

bool TSpcEditor::ShowTreeEx(TObject* selected) {
    if (FForm && FForm->Visible()) {
        FForm->Show();
        if (TTreeNode* const node = FindNode(InShownTree(selected)))
            FForm->Tree().SetSelected(node);
        return false;
    }
    if (FFormUsed)
        DoRelease();
    else
        UnPrepare();
    Prepare();
    const TWeak<TSpcEditor> alive(this);
    try {
        MakeForm();
        FStartObject = InShownTree(selected);
        FChangedSinceShown = false;
        SetCaption();
        FModalForm = FormOptions.Contains(foModalShowing);
        if (!FModalForm) {
            FForm->Show();
            return false;
        }
        FForm->ShowModal();
    } catch (...) {
        if (alive) DoRelease();
        throw;
    }
    if (!alive) return false;
    DoRelease();
    return FChangedSinceShown;
}

/// What the tree shows in place of an object: on a copy, the copy of it.
TPersistent* TSpcEditor::InShownTree(TObject* object) {
    if (!object || !FClone) return ClassCast<TPersistent>(object);
    FOnWay.clear();
    return Counterpart(*FRoot, *FClone, *object);
}

void TSpcEditor::Release() {
    if (FForm && FForm->Visible())
        OS().PostMessage(FForm->Handle(), CM_RELEASEEDITOR, 0, 0);
    else
        DoRelease();
}

void TSpcEditor::DoRelease() {
    InState(esFormDestroying, [&] {
        TAllSteps steps; // a handler's error must not keep the window
        steps.Run([&] { UnPrepare(); });
        delete FForm.Get();
        steps.Finish();
    });
}

/// The window goes, by whomever.
void TSpcEditor::FormGone() noexcept {
    try {
        InState(esFormDestroying, [&] { UnPrepare(); });
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
    std::fill(std::begin(FUpdates), std::end(FUpdates), 0);
}

void TSpcEditor::FormShown() {
    FFormUsed = true;
    InState(esFormShowing, [&] {
        FLabelWidth = FLabelAreaInfo->DefAreaWidth();
        FForm->SetProperties();
        BuildTree();
    });
}

void TSpcEditor::FormHidden() {
    // A window that is not modal goes with its last event.
    if (FForm && !FModalForm) Release();
}

void TSpcEditor::SetCaption() {
    if (!FForm) return;
    if (!FFormCaption.empty()) return FForm->SetCaption(FFormCaption);
    if (FOnFile) return FForm->SetCaption(Format(LocaleStr(strSpecification), {FSpcFileName}));
    TPersistent* const root = FRoot.Get();
    if (!root) return;
    const TBaseClassIdent ident = GetInstanceID(root);
    std::string caption = ident == ciCollection  ? "Collection "
                          : ident == ciComponent ? "Component "
                                                 : "Object ";
    auto* const component = ClassCast<TComponent>(root);
    const std::string name = component ? component->Name() : GetNodeName(*root);
    if (!name.empty()) caption.append(name).append(": ");
    FForm->SetCaption(caption.append(GetClassName(*root)));
}

// --- The window's state -----------------------------------------------------------------------

bool TSpcEditor::CanReadFormSetting(std::string_view iniFileName, std::string_view section,
                                    TStrings& data) {
    bool allow = true;
    if (OnReadFormSetting) OnReadFormSetting(this, iniFileName, section, data, allow);
    return allow;
}

bool TSpcEditor::CanWriteFormSetting(std::string_view iniFileName, std::string_view section,
                                     TStrings& data) {
    bool allow = true;
    if (OnWriteFormSetting) OnWriteFormSetting(this, iniFileName, section, data, allow);
    return allow;
}

void TSpcEditor::ReadFormSetting(std::string_view iniFileName, std::string_view section,
                                 TStrings& data) {
    if (!CanReadFormSetting(iniFileName, section, data) || iniFileName.empty()) return;
    TIniStrings(iniFileName).ReadSectionValues(section, data);
}

void TSpcEditor::WriteFormSetting(std::string_view iniFileName, std::string_view section,
                                  const TStrings& data) {
    TStringList lines;
    lines.Assign(&data);
    if (!CanWriteFormSetting(iniFileName, section, lines) || iniFileName.empty()) return;
    TIniStrings file(iniFileName);
    file.EraseSection(section);
    for (int i = 0; i < lines.Count(); ++i)
        file.WriteString(section, lines.Name(i), lines.Value(lines.Name(i)));
    file.UpdateFile();
}

} // namespace tarn
