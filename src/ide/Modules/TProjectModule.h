#pragma once

#include "Modules/TIdeModule.h"
#include "Projects/ProjectFile.h"

namespace tarn {

/// An open project. Its source editor is the project file.
class TProjectModule : public TIdeModule {
public:
    /// \param former a module that has the file open as a source, or null
    TProjectModule(TIde& ide, std::string_view fileName, TProjectFile project, TIdeModule* former);

    /// One unit of the project that has a file of its own.
    struct TUnit {
        TProjectEntry Entry;
        std::string FileName; ///< full
    };
    int UnitCount() const { return static_cast<int>(FUnits.size()); }
    const TUnit& Unit(int index) const { return FUnits.at(static_cast<std::size_t>(index)); }
    /// Whether the file is one of the project's units; file names are compared without case.
    bool Lists(std::string_view fileName) const;

    TIntf<IOTAProject> ProjectInterface();

protected:
    TIntf<IOTAModule> MakeInterface() override;

private:
    void ReadUnits(TProjectFile project);

    std::vector<TUnit> FUnits;
};

/// An open group of projects; the first one is active until another is made so.
class TProjectGroupModule : public TIdeModule {
public:
    using TIdeModule::TIdeModule;

    /// The projects of the group that are open.
    std::vector<TProjectModule*> Projects() const;
    void AddProject(TProjectModule& project);
    TProjectModule* ActiveProject() const { return FActive.Get(); }
    void SetActiveProject(TProjectModule& project) { FActive = &project; }

protected:
    TIntf<IOTAModule> MakeInterface() override;

private:
    std::vector<TWeak<TProjectModule>> FProjects;
    TWeak<TProjectModule> FActive;
};

} // namespace tarn
