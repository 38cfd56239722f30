#include "Settings.h"

#include "ScriptSource.h"
#include "qsDataHndl2.h"
#include "qsExpShrData.h"

#include <vector>

namespace tarn {
namespace {

[[noreturn]] void Refuse(const std::string& what) {
    throw EScriptError(ExitUsage, what);
}

std::vector<std::string> SplitPath(std::string_view path) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t point = path.find('.');
        parts.emplace_back(path.substr(0, point));
        if (point == std::string_view::npos) return parts;
        path.remove_prefix(point + 1);
    }
}

/// The identifiers of a collection's items, or the names of a class's properties, for a message.
std::string Choices(const TSpcCollection& collection) {
    const TPropInfo* const ident =
        collection.ItemClass().Record().FindProp(collection.GetUpdateName());
    std::string text;
    for (int i = 0; i < collection.Count(); ++i) {
        std::string id;
        ident->Get(*collection.Items(i), &id);
        text += (i > 0 ? ", " : "") + id;
    }
    return text;
}

std::string Choices(const TClassRecord& record) {
    std::string text;
    ForEachProp(record, [&](const TPropInfo& prop) {
        text.append(text.empty() ? "" : ", ").append(prop.Name);
    });
    return text;
}

/// The names of an enumeration's values.
std::string Choices(const TTypeInfo& type) {
    std::string text;
    for (const std::string_view name : type.Names)
        text.append(text.empty() ? "" : ", ").append(name);
    return text;
}

struct TListName {
    std::string_view Name;
    TSpcCollection* List;
};

/// What a path leads to.
struct TTarget {
    TObject* Object;
    const TPropInfo* Prop;
};

TTarget Find(std::string_view path) {
    if (!HasExpData()) throw EScriptError(ExitRefused, "the pack is not started");
    TExpData& data = ExpData();
    const std::vector<std::string> parts = SplitPath(path);
    std::size_t next = 0;
    TSpcCollection* list = &data.CustomData;
    for (const TListName& named :
         {TListName{"ActiveExperts", &data.ActiveExperts}, TListName{"MenuData", &data.MenuData},
          TListName{"CustomData", &data.CustomData}})
        if (SameText(parts[0], named.Name)) list = named.List, next = 1;
    if (next >= parts.size()) Refuse("'" + std::string(path) + "' names no setting");

    TSpcItem* const item = list->FindItemID(parts[next]);
    if (!item)
        Refuse("there is no '" + parts[next] + "'; there are " + Choices(*list) +
               (next == 0 ? ", ActiveExperts, MenuData" : ""));
    TObject* object = item;
    if (auto* const wrapper = ClassCast<TWrapperItem>(item)) object = wrapper->NestedObject();
    if (!object) Refuse("the object of '" + parts[next] + "' is not there");
    for (++next;; ++next) {
        if (next >= parts.size())
            Refuse("'" + std::string(path) + "' needs a property: " + Choices(object->ClassType()));
        const TPropInfo* const prop = object->ClassType().FindProp(parts[next]);
        if (!prop)
            Refuse("there is no property '" + parts[next] + "'; there are " +
                   Choices(object->ClassType()));
        const bool isObject = prop->PropType->Kind == tkClass;
        if (!isObject && next + 1 == parts.size()) return {object, prop};
        TObject* below = nullptr;
        if (isObject) prop->Get(*object, &below);
        if (!below) Refuse("'" + parts[next] + "' has no properties");
        object = below;
    }
}

/// The access's result; what the property refuses becomes an error that names the path.
template <class F> auto Naming(std::string_view path, F&& access) {
    try {
        return access();
    } catch (const Exception& error) {
        Refuse(Format("'%s': %s", {path, error.Message()}));
    }
}

} // namespace

std::string GetSetting(std::string_view path) {
    const TTarget target = Find(path);
    return Naming(path, [&] { return GetPropAsText(*target.Object, *target.Prop); });
}

void SetSetting(std::string_view path, std::string_view value) {
    const TTarget target = Find(path);
    const TTypeInfo& type = *target.Prop->PropType;
    if (type.Kind == tkEnumeration && !ContainsIn(type, value))
        Refuse("'" + std::string(value) + "' is no value; there are " + Choices(type));
    Naming(path, [&] { SetPropByText(*target.Object, *target.Prop, value); });
}

} // namespace tarn
