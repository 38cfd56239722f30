#include "qsSpcEditor.h"

namespace tarn {

constinit const TClassRecord TSpcEditor::ClassRecord{"TSpcEditor", &TComponent::ClassRecord,
                                                     CreateObject<TSpcEditor>};
constinit const TClassRecord TSpcEditorPro::ClassRecord{"TSpcEditorPro", &TSpcEditor::ClassRecord,
                                                        CreateObject<TSpcEditorPro>};
constinit const TClassRecord TSmartForm::ClassRecord{"TSmartForm", &TForm::ClassRecord,
                                                     CreateObject<TSmartForm>};

TSpcEditor::TShowWindow TSpcEditor::ShowWindow;

bool TSpcEditor::ShowTree(TSpcObject& root) {
    return ShowWindow && ShowWindow(*this, root);
}

void TSpcEditor::ReadFormSetting(std::string_view, std::string_view, TStrings&) {}

void TSpcEditor::WriteFormSetting(std::string_view, std::string_view, const TStrings&) {}

TSmartForm::TSmartForm(TComponent* owner)
    : TForm(owner), FActionList(new TActionList(this)), FSavePlacementAction(new TAction(this)) {
    FActionList->SetName("ActionList");
    FSavePlacementAction->SetName("acSavePlacement");
    FSavePlacementAction->SetActionList(FActionList);
    FSavePlacementAction->OnExecute = TNotifyEvent::Of<&TSmartForm::SavePlacement>(this);
}

void TSmartForm::SetVisible(bool value) {
    if (!value && Visible() && AutoSavePlacement) ReadFormData();
    TForm::SetVisible(value);
}

} // namespace tarn
