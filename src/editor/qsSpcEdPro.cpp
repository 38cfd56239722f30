// The settings editor with the extended kinds: which properties they take and how their rows come.

#include "qsSpcEdPro.h"

#include "TSpcImage.h"
#include "vcl/TMemo.h"

namespace tarn {

constinit const TClassRecord TSpcEditorPro::ClassRecord{"TSpcEditorPro", &TSpcEditor::ClassRecord,
                                                        CreateObject<TSpcEditorPro>};

TSpcEditorPro::TSpcEditorPro(TComponent* owner) : TSpcEditor(owner) {
    ControlParams()->SetTextStr(TSpcEditorPro::DefaultParams());
}

void TSpcEditorPro::Init(const TInitData& data) {
    TSpcEditor::Init(data);
    if (!GetUserData(*this)) AddUserData(*this, &FData);
}

bool TSpcEditorPro::CanProcessProperty(TPersistent& instance, const TPropInfo& prop) {
    return FindKind(ExtendedKinds(), prop) || TSpcEditor::CanProcessProperty(instance, prop);
}

/// A class of an extended kind is a row only.
bool TSpcEditorPro::BecomesNode(const TPropInfo& prop) const {
    return !FindKind(ExtendedKinds(), prop) && TSpcEditor::BecomesNode(prop);
}

void TSpcEditorPro::DoBeforeCreateControl(TControlInfo& info, TNewControlData& data,
                                          bool& handled) {
    const TPropKind* const kind = FindKind(ExtendedKinds(), *info.EPropInfo);
    if (!kind) return TSpcEditor::DoBeforeCreateControl(info, data, handled);
    handled = true;
    PrepareParams();
    TStringList params;
    ReadParamSection(kind->Name, params);
    data.Params = params.GetTextStr();
    data.ETag = kind->Tag;
    data.NativeMarker = ProMarker;
    data.Control = kind->Create(*this, info, ChangeAction());
}

void TSpcEditorPro::DoAfterCreateControl(TControlInfo& info) {
    if (info.IsNativeControl(ProMarker)) AttachMenus(info);
    TSpcEditor::DoAfterCreateControl(info);
}

void TSpcEditorPro::AttachMenus(TControlInfo& info) {
    switch (info.GetETag()) {
    case xkPicture:
    case xkGraphic: {
        auto& image = ControlOf<TSpcImage>(info);
        image.SetPopupMenu(&CreatePicEditorMenu());
        image.OnDblClick = TNotifyEvent::Of<&TSpcEditorPro::ImageDblClick>(this);
        break;
    }
    case xkStrings:
        ControlOf<TMemo>(info).OnDblClick = TNotifyEvent::Of<&TSpcEditorPro::MemoDblClick>(this);
        break;
    case xkCheckStrings:
    case xkSelectStrings:
        info.EControl->SetPopupMenu(&CreateStringsEditorMenu());
        break;
    default:
        break;
    }
}

// --- Values -----------------------------------------------------------------------------------

const TPropKind* TSpcEditorPro::KindOfRow(const TControlInfo& info) {
    return info.IsNativeControl(ProMarker) ? KindOfTag(ExtendedKinds(), info.GetETag()) : nullptr;
}

void TSpcEditorPro::SetControlData(TControlInfo& info) {
    if (const TPropKind* const kind = KindOfRow(info))
        kind->Fill(*this, info);
    else
        TSpcEditor::SetControlData(info);
}

void TSpcEditorPro::GetControlData(TControlInfo& info) {
    if (const TPropKind* const kind = KindOfRow(info))
        kind->Read(*this, info);
    else
        TSpcEditor::GetControlData(info);
}

} // namespace tarn
