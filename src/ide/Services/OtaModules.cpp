#include "Services/OtaModules.h"

#include "Modules/TProjectModule.h"
#include "Modules/TResourceEditor.h"
#include "Services/TOtaAdapter.h"
#include "TIde.h"

namespace tarn {
namespace {

bool IsIndex(int index, int count) {
    return index >= 0 && index < count;
}

/// The form of an editor; null when its file cannot be read, since these are only questions.
TForm* FormOf(TFormEditor& editor) {
    try {
        return editor.Form();
    } catch (const EFileError&) {
        return nullptr;
    }
}

// --- Editors ----------------------------------------------------------------------------------

class TOtaFormDesigner : public TOtaAdapter<TFormEditor, IFormDesigner> {
public:
    using TOtaAdapter::TOtaAdapter;

    TComponent* GetRoot() override {
        return Ask([](TFormEditor& editor) -> TComponent* { return FormOf(editor); });
    }
};

class TOtaFormEditor : public TOtaFileEditor<TFormEditor, IOTAFormEditor> {
public:
    using TOtaFileEditor::TOtaFileEditor;

    TForm* GetForm() override { return Ask(FormOf); }
    TIntf<IFormDesigner> GetFormDesigner() override {
        return Ask([](TFormEditor& editor) -> TIntf<IFormDesigner> {
            return new TOtaFormDesigner(editor);
        });
    }
};

class TOtaProjectResource : public TOtaFileEditor<TResourceEditor, IOTAProjectResource> {
public:
    using TOtaFileEditor::TOtaFileEditor;
};

// --- Modules ----------------------------------------------------------------------------------

/// The part of an adapter that all modules share.
template <class TModel, class I> class TOtaModuleBase : public TOtaAdapter<TModel, I> {
public:
    using TOtaAdapter<TModel, I>::TOtaAdapter;

    std::string GetFileName() override {
        return this->Ask([](TModel& module) { return std::string(module.FileName()); });
    }
    int GetModuleFileCount() override {
        return this->Ask([](TModel& module) { return module.EditorCount(); });
    }
    TIntf<IOTAEditor> GetModuleFileEditor(int index) override {
        return this->Ask([=](TModel& module) {
            return IsIndex(index, module.EditorCount()) ? module.Editor(index).Interface()
                                                        : nullptr;
        });
    }
    int GetOwnerCount() override {
        return this->Ask([](TModel& module) { return static_cast<int>(module.Owners().size()); });
    }
    TIntf<IOTAProject> GetOwner(int index) override {
        return this->Ask([=](TModel& module) -> TIntf<IOTAProject> {
            const auto owners = module.Owners();
            if (!IsIndex(index, static_cast<int>(owners.size()))) return nullptr;
            return owners[static_cast<std::size_t>(index)]->ProjectInterface();
        });
    }
    bool Close() override {
        return this->Ask([](TModel& module) { return module.Ide().Modules().Close(module); });
    }
};

class TOtaModule : public TOtaModuleBase<TIdeModule, IOTAModule> {
public:
    using TOtaModuleBase::TOtaModuleBase;
};

class TOtaModuleInfo : public TOtaAdapter<TProjectModule, IOTAModuleInfo> {
public:
    TOtaModuleInfo(TProjectModule& project, int index) : TOtaAdapter(project), FIndex(index) {}

    std::string GetName() override { return Text(&TProjectEntry::UnitName); }
    std::string GetFormName() override { return Text(&TProjectEntry::FormName); }
    std::string GetDesignClass() override { return Text(&TProjectEntry::DesignClass); }
    std::string GetFileName() override {
        return Ask([this](TProjectModule& project) { return project.Unit(FIndex).FileName; });
    }
    TIntf<IOTAModule> OpenModule() override {
        return Ask([this](TProjectModule& project) -> TIntf<IOTAModule> {
            try {
                return project.Ide().Modules().OpenUnit(project.Unit(FIndex).FileName).Interface();
            } catch (...) {
                Application()->HandleException(Application());
                return nullptr;
            }
        });
    }

private:
    std::string Text(std::string TProjectEntry::*field) {
        return Ask([&](TProjectModule& project) { return project.Unit(FIndex).Entry.*field; });
    }

    int FIndex;
};

class TOtaProject : public TOtaModuleBase<TProjectModule, IOTAProject> {
public:
    using TOtaModuleBase::TOtaModuleBase;

    int GetModuleCount() override {
        return Ask([](TProjectModule& project) { return project.UnitCount(); });
    }
    TIntf<IOTAModuleInfo> GetModule(int index) override {
        return Ask([=](TProjectModule& project) -> TIntf<IOTAModuleInfo> {
            if (!IsIndex(index, project.UnitCount())) return nullptr;
            return new TOtaModuleInfo(project, index);
        });
    }
};

class TOtaProjectGroup : public TOtaModuleBase<TProjectGroupModule, IOTAProjectGroup> {
public:
    using TOtaModuleBase::TOtaModuleBase;

    int GetProjectCount() override {
        return Ask(
            [](TProjectGroupModule& group) { return static_cast<int>(group.Projects().size()); });
    }
    TIntf<IOTAProject> GetProject(int index) override {
        return Ask([=](TProjectGroupModule& group) -> TIntf<IOTAProject> {
            const auto projects = group.Projects();
            if (!IsIndex(index, static_cast<int>(projects.size()))) return nullptr;
            return projects[static_cast<std::size_t>(index)]->ProjectInterface();
        });
    }
    TIntf<IOTAProject> GetActiveProject() override {
        return Ask([](TProjectGroupModule& group) {
            TProjectModule* const active = group.ActiveProject();
            return active ? active->ProjectInterface() : TIntf<IOTAProject>();
        });
    }
};

} // namespace

TIntf<IOTAModule> MakeModuleInterface(TIdeModule& module) {
    return new TOtaModule(module);
}

TIntf<IOTAModule> MakeProjectInterface(TProjectModule& project) {
    return new TOtaProject(project);
}

TIntf<IOTAModule> MakeProjectGroupInterface(TProjectGroupModule& group) {
    return new TOtaProjectGroup(group);
}

TIntf<IOTAFormEditor> MakeFormEditorInterface(TFormEditor& editor) {
    return new TOtaFormEditor(editor);
}

TIntf<IOTAProjectResource> MakeProjectResourceInterface(TResourceEditor& editor) {
    return new TOtaProjectResource(editor);
}

} // namespace tarn
