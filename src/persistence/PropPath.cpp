// Properties and components by dotted paths, and the classes of fields.

#include "qsDataHndl2.h"

#include "vcl/TComponent.h"

#include <algorithm>

namespace tarn {
namespace {

/// The name in front of the first "."; `path` becomes what is behind it.
std::string_view TakeName(std::string_view& path) {
    const std::size_t point = path.find('.');
    const std::string_view name = path.substr(0, point);
    path.remove_prefix(std::min(name.size() + 1, path.size()));
    return name;
}

/// The object that a property of kind Class refers to; null for other kinds.
TObject* SubObject(const TObject& instance, const TPropInfo& prop) {
    TObject* object = nullptr;
    if (prop.PropType->Kind == tkClass) prop.Get(instance, &object);
    return object;
}

} // namespace

const TPropInfo* FindPropInfo(TObject*& instance, std::string_view path,
                              TTypeInfoProvider provider) {
    TObject* object = instance;
    while (object) {
        const std::string_view name = path.substr(0, path.find('.'));
        const bool last = name.size() == path.size();
        const TClassRecord& record = provider ? provider(*object) : object->ClassType();
        const TPropInfo* const prop = record.FindProp(name);
        if (!prop) return nullptr;
        TObject* const below = last ? nullptr : SubObject(*object, *prop);
        if (!below) {
            instance = object;
            return prop;
        }
        object = below;
        path.remove_prefix(name.size() + 1);
    }
    return nullptr;
}

TPropRef::TPropRef(std::string_view path) {
    for (bool more = true; more; ++FCount) {
        if (FCount == MaxDepth)
            throw EListError(Format("a property path has more than %d names", {MaxDepth}));
        more = path.find('.') != std::string_view::npos;
        FSteps[FCount].Name = TakeName(path);
    }
}

const TPropInfo* TPropRef::Find(TObject*& instance) {
    TObject* object = instance;
    for (std::size_t i = 0; object; ++i) {
        TStep& step = FSteps[i];
        const TClassRecord& record = object->ClassType();
        if (step.Record != &record) {
            step.Prop = record.FindProp(step.Name);
            step.Record = &record;
        }
        if (!step.Prop) return nullptr;
        TObject* const below = i + 1 == FCount ? nullptr : SubObject(*object, *step.Prop);
        if (!below) {
            instance = object;
            return step.Prop;
        }
        object = below;
    }
    return nullptr;
}

// --- Components -------------------------------------------------------------------------------

TComponent* FindComponentEx(TComponent* root, std::string_view path) {
    if (path.empty() || path.back() == '.') return nullptr;
    while (root && !path.empty()) root = root->FindComponent(TakeName(path));
    return root;
}

TComponent* AnalyseNamePath(TComponent* root, std::string_view path, std::string& compPath,
                            std::string& propName) {
    TComponent* component = path.empty() ? nullptr : root;
    std::string_view front, rest = path;
    for (std::size_t point = path.rfind('.'); point != std::string_view::npos && point > 0;
         point = path.rfind('.', point - 1)) {
        TComponent* const found = FindComponentEx(root, path.substr(0, point));
        if (!found) continue;
        component = found;
        front = path.substr(0, point);
        rest = path.substr(point + 1);
        break;
    }
    // Both are made before either is stored: a caller's path may lie in one of them.
    std::string made(rest);
    compPath = std::string(front);
    propName = std::move(made);
    return component;
}

bool AnalyseNamePath(TComponent* root, std::string_view path, TAnalysisFindings& findings) {
    TComponent* const component = AnalyseNamePath(root, path, findings.CompPath, findings.PropName);
    findings.Instance = component ? component : root;
    TObject* instance = component;
    findings.PropInfo = FindPropInfo(instance, findings.PropName);
    return component != nullptr;
}

// --- Field classes ----------------------------------------------------------------------------

namespace {

/// Calls `visit(const TClassRecord&)` for the field classes of the object's class and its ancestors
/// below TPersistent until it returns true.
template <class F> void VisitFieldClasses(const TObject& instance, F&& visit) {
    for (const TClassRecord* record = &instance.ClassType();
         record && record != &TPersistent::ClassRecord; record = record->Parent)
        for (const TClassRecord* const field : record->FieldClasses)
            if (visit(*field)) return;
}

} // namespace

const TClassRecord* GetFieldClass(const TObject& instance, std::string_view className) {
    const TClassRecord* found = nullptr;
    VisitFieldClasses(instance, [&](const TClassRecord& field) {
        if (!SameText(field.Name, className)) return false;
        found = &field;
        return true;
    });
    return found ? found : GetClass(className);
}

void RegisterFieldClasses(const TObject& instance, std::vector<const TClassRecord*>& registered) {
    registered.clear();
    VisitFieldClasses(instance, [&](const TClassRecord& field) {
        if (!GetClass(field.Name)) {
            registered.push_back(&field);
            RegisterClass(field);
        }
        return false;
    });
}

void UnRegisterFieldClasses(const std::vector<const TClassRecord*>& registered) {
    UnRegisterClasses(registered);
}

} // namespace tarn
