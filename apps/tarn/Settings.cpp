#include "Settings.h"

#include "ScriptSource.h"
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
        if (next + 1 == parts.size()) return {object, prop};
        TObject* below = nullptr;
        if (prop->PropType->Kind == tkClass) prop->Get(*object, &below);
        if (!below) Refuse("'" + parts[next] + "' has no properties");
        object = below;
    }
}

} // namespace

std::string GetSetting(std::string_view path) {
    const TTarget target = Find(path);
    const TTypeInfo& type = *target.Prop->PropType;
    if (type.Kind == tkLString) {
        std::string text;
        target.Prop->Get(*target.Object, &text);
        return text;
    }
    if (type.Kind != tkInteger && type.Kind != tkEnumeration)
        Refuse("'" + std::string(path) + "' has no text form");
    std::int32_t value = 0;
    target.Prop->Get(*target.Object, &value);
    if (type.Kind == tkEnumeration)
        return std::string(type.Names[static_cast<std::size_t>(value - type.MinValue)]);
    // A cardinal number travels in the same 32 bits.
    return type.MinValue < 0 ? IntToStr(value) : IntToStr(static_cast<std::uint32_t>(value));
}

void SetSetting(std::string_view path, std::string_view value) {
    const TTarget target = Find(path);
    const TTypeInfo& type = *target.Prop->PropType;
    if (!target.Prop->Set) Refuse("'" + std::string(path) + "' cannot be set");
    if (type.Kind == tkLString) {
        const std::string text(value);
        target.Prop->Set(*target.Object, &text);
        return;
    }
    std::int32_t number = 0;
    if (type.Kind == tkEnumeration) {
        std::string names;
        bool found = false;
        for (std::size_t i = 0; i < type.Names.size(); ++i) {
            names.append(i > 0 ? ", " : "").append(type.Names[i]);
            if (!SameText(type.Names[i], value)) continue;
            number = static_cast<std::int32_t>(type.MinValue + static_cast<std::int64_t>(i));
            found = true;
        }
        if (!found) Refuse("'" + std::string(value) + "' is no value; there are " + names);
    } else if (type.Kind == tkInteger) {
        try {
            number = StrToInt(value);
        } catch (const EConvertError&) {
            Refuse("'" + std::string(value) + "' is no whole number that fits");
        }
        if (number < type.MinValue || number > type.MaxValue)
            Refuse(Format("%s is outside %d to %d", {value, type.MinValue, type.MaxValue}));
    } else
        Refuse("'" + std::string(path) + "' cannot be set from a text");
    target.Prop->Set(*target.Object, &number);
}

} // namespace tarn
