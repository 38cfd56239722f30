#include "qsSpcEditor.h"

namespace tarn {

constinit const TClassRecord TSpcEditor::ClassRecord{"TSpcEditor", &TComponent::ClassRecord,
                                                     CreateObject<TSpcEditor>};
constinit const TClassRecord TSpcEditorPro::ClassRecord{"TSpcEditorPro", &TSpcEditor::ClassRecord,
                                                        CreateObject<TSpcEditorPro>};
TSpcEditor::TShowWindow TSpcEditor::ShowWindow;

bool TSpcEditor::ShowTree(TSpcObject& root) {
    return ShowWindow && ShowWindow(*this, root);
}

void TSpcEditor::ReadFormSetting(std::string_view, std::string_view, TStrings&) {}

void TSpcEditor::WriteFormSetting(std::string_view, std::string_view, const TStrings&) {}

} // namespace tarn
