// The settings editor's texts: translations and names.

#include "qsSpcEditor.h"
#include "rtl/SysUtils.h"

namespace tarn {

void TSpcEditor::TranslatingTableChange(TObject*) {
    FTable.SetStrings(*FTranslatingTable);
    RebuildControls();
}

std::string TSpcEditor::Translate(std::string_view section, std::string_view name) const {
    return TranslateEx(section, name, name);
}

std::string TSpcEditor::TranslateEx(std::string_view section, std::string_view name,
                                    std::string_view defaultText) const {
    if (FSimpleMode) return std::string(defaultText);
    return FTable.ReadString(section, name, defaultText);
}

void TSpcEditor::TranslateEnumNames(TStrings& list, std::string_view section) const {
    for (int i = 0; i < list.Count(); ++i) list.Put(i, Translate(section, list[i]));
}

void TSpcEditor::ReadValueNames(const TTypeInfo& type, TStrings& names) const {
    const TTypeInfo& values = type.Kind == tkSet ? *type.CompType : type;
    FillEnumNames(values, names);
    if (FSimpleMode) return;
    const bool ownSection = type.Kind != tkSet || FTable.HasSection(type.TypeName());
    TranslateEnumNames(names, ownSection ? type.TypeName() : values.TypeName());
}

std::string TSpcEditor::GetFullPropName(const TPersistent& instance, const TPropInfo& prop) {
    return std::string(instance.ClassName()).append(".").append(prop.Name);
}

// --- Node names -------------------------------------------------------------------------------

std::string TSpcEditor::GetNodeName(TObject& object) {
    auto* const info = ObjectInterface<INodeInfo>(object);
    return info ? info->GetNodeName() : std::string();
}

std::string TSpcEditor::FindNodeName(TObject& object, std::string_view defaultName) const {
    std::string name = GetNodeName(object);
    return name.empty() ? std::string(defaultName) : name;
}

std::string TSpcEditor::FindNodeNameEx(TObject& object, std::string_view section,
                                       std::string_view defaultName) const {
    std::string name = FindNodeName(object, defaultName);
    auto* const info = ObjectInterface<INodeInfo>(object);
    return info && info->NeedsTranslate() ? TranslateEx(section, name, name) : name;
}

std::string TSpcEditor::FindItemNodeName(TCollectionItem& item, std::string_view section,
                                         std::string_view collectionName, int index) const {
    const auto withIndex = [&](std::string_view name) { return Format("%s[%d]", {name, index}); };
    const std::string defaultName = withIndex(collectionName);
    std::string name = FindNodeNameEx(item, section, defaultName);
    auto* const info = ObjectInterface<INodeOfItemInfo>(item);
    return name != defaultName && info && info->NeedsIterate() ? withIndex(name) : name;
}

void TSpcEditor::SetNodeName(TTreeNode&, std::string_view) {
    throw Exception("Operation not supported");
}

std::string TSpcEditor::GetClassName(const TObject& object) {
    return std::string(object.ClassName());
}

} // namespace tarn
