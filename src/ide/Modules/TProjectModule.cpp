#include "Modules/TProjectModule.h"

#include "Modules/FileNames.h"
#include "Modules/TResourceEditor.h"
#include "Services/OtaModules.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <filesystem>

namespace tarn {

// --- TProjectModule ---------------------------------------------------------------------------

TProjectModule::TProjectModule(TIde& ide, std::string_view fileName, TProjectFile project,
                               TIdeModule* former)
    : TIdeModule(ide, fileName, former) {
    ReadUnits(std::move(project));
}

void TProjectModule::ReadUnits(TProjectFile project) {
    const std::filesystem::path file(FileName());
    const auto resolve = [&](std::string_view name) {
        return NormalFileName(ResolveProjectPath(file.parent_path(), name).string());
    };
    for (TProjectEntry& entry : project.Entries) {
        if (entry.FileName.empty()) continue; // a unit of the library, not of the project
        std::string unitFile = resolve(entry.FileName);
        FUnits.push_back({std::move(entry), std::move(unitFile)});
    }
    std::string resource = project.ResourceFile;
    if (const std::size_t star = resource.find('*'); star != resource.npos)
        resource.replace(star, 1, file.stem().string());
    if (!resource.empty()) AddEditor(std::make_unique<TResourceEditor>(*this, resolve(resource)));
}

bool TProjectModule::Lists(std::string_view fileName) const {
    return std::any_of(FUnits.begin(), FUnits.end(),
                       [&](const TUnit& unit) { return AnsiSameText(unit.FileName, fileName); });
}

TIntf<IOTAProject> TProjectModule::ProjectInterface() {
    return Supports<IOTAProject>(Interface());
}

TIntf<IOTAModule> TProjectModule::MakeInterface() {
    return MakeProjectInterface(*this);
}

// --- TProjectGroupModule ----------------------------------------------------------------------

std::vector<TProjectModule*> TProjectGroupModule::Projects() const {
    std::vector<TProjectModule*> open;
    for (const auto& project : FProjects)
        if (project) open.push_back(project.Get());
    return open;
}

void TProjectGroupModule::AddProject(TProjectModule& project) {
    FProjects.emplace_back(&project);
    if (!FActive) FActive = &project;
}

TIntf<IOTAModule> TProjectGroupModule::MakeInterface() {
    return MakeProjectGroupInterface(*this);
}

} // namespace tarn
